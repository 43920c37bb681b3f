#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace brindle::tools {

/// Takes what stands before the first \a separator, or all of it, off \a text, with the separator.
inline std::string_view takeField(std::string_view &text, char separator)
{
    const std::string_view field = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(text.size(), field.size() + 1));
    return field;
}

/// Takes the first line off \a text, without its newline.
[[nodiscard]] inline std::string_view takeLine(std::string_view &text)
{
    return takeField(text, '\n');
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
