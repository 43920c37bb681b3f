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

/// The number that \a text begins with; `nullopt` without one or where it does not fit.
template <typename Number = std::uint64_t>
[[nodiscard]] std::optional<Number> leadingNumber(std::string_view text, int base = 10)
{
    Number number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return result.ec == std::errc() ? std::optional<Number>(number) : std::nullopt;
}

} // namespace brindle::tools
