#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace brindle {

/// The raw values of the enumeration E, in the order of its cases, which must be numbered from 0. Each such
/// enumeration specialises it beside its definition, as an array of std::string_view.
template <typename E>
inline constexpr std::array<std::string_view, 0> kRawValues{};

template <typename E>
[[nodiscard]] constexpr std::string_view rawValue(E value)
{
    return kRawValues<E>[static_cast<std::size_t>(value)];
}

/// The case whose raw value is exactly \a text.
template <typename E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view text)
{
    const auto found = std::ranges::find(kRawValues<E>, text);
    if (found == kRawValues<E>.end())
        return std::nullopt;
    return static_cast<E>(found - kRawValues<E>.begin());
}

} // namespace brindle
