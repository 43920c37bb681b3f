#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::tools {

/// Whether a terminal or a window would obey the character or show nothing for it: controls, line separators, marks
/// that change the direction of writing, and blanks without width. The joiners of emoji and scripts are none.
[[nodiscard]] bool isInvisible(char32_t character);

/// \a raw as one line of well-formed UTF-8 that shows what it holds: what is invisible, and stray bytes, become U+FFFD.
[[nodiscard]] std::string printable(std::string_view raw);

/// Cells of a terminal that \a text, made by printable(), takes, as the C library counts them: 2 for a wide character
/// and most emoji, 0 for a mark on the character before it. All take 1 where the system has no locale "C.UTF-8".
[[nodiscard]] std::size_t cellCount(std::string_view text);

/// \a text cut to \a cells, with "..." at its end where something was cut.
[[nodiscard]] std::string cutToCells(std::string_view text, std::size_t cells);

/// A decimal size with one digit behind the point: "500.3 GB", "20.5 KB", "512 B".
[[nodiscard]] std::string sizeText(std::uint64_t bytes);

/// Without the blanks and ASCII's control characters at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

[[nodiscard]] std::string upperCased(std::string_view text); ///< ASCII letters alone.

} // namespace brindle::tools
