#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace brindle::tools {

/// Takes the first line off \a text, without its newline.
[[nodiscard]] inline std::string_view takeLine(std::string_view &text)
{
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// Without the blanks, tabs and newlines at both ends.
[[nodiscard]] inline std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The number that \a text begins with; `nullopt` without one or where it does not fit.
template <typename Number = std::uint64_t>
[[nodiscard]] std::optional<Number> leadingNumber(std::string_view text, int base = 10)
{
    Number number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return result.ec == std::errc() ? std::optional<Number>(number) : std::nullopt;
}

} // namespace brindle::tools
