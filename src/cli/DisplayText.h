#pragma once

#include "base/VisibleText.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace brindle {

/// How many cells a terminal gives to \a text: two for wide East Asian characters and emoji, none for marks that stand
/// on the character before. \a text is visibleText().
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// \a text cut to at most \a width cells, with "…" in the last one where anything was cut. Nothing is cut off from
/// what it stands on or is joined to by U+200D.
[[nodiscard]] std::string elided(std::string_view text, std::size_t width);

/// \a text without its beginning, "…" in its place, where it is wider than \a width cells: the end of a path tells
/// most.
[[nodiscard]] std::string elidedAtStart(std::string_view text, std::size_t width);

} // namespace brindle
