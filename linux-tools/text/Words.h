#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::tools {

/// \a raw as one line of well-formed UTF-8: control characters, line separators and stray bytes become U+FFFD.
[[nodiscard]] std::string printable(std::string_view raw);

/// Cells of a terminal that \a text, made by printable(), takes: 2 for an East Asian wide character, else 1.
/// The wide ranges are those of the C++ standard's formatted width ([format.string.std]).
[[nodiscard]] std::size_t cellCount(std::string_view text);

/// \a text cut to \a cells, with "..." at its end where something was cut.
[[nodiscard]] std::string cutToCells(std::string_view text, std::size_t cells);

/// A decimal size with one digit behind the point: "500.3 GB", "20.5 KB", "512 B".
[[nodiscard]] std::string sizeText(std::uint64_t bytes);

/// Without the blanks, tabs and line ends at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

[[nodiscard]] std::string upperCased(std::string_view text); ///< ASCII letters alone.

} // namespace brindle::tools
