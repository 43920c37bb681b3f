#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brindle {

/// \a text with all that a terminal would obey or hide made visible: control characters, the characters that change the
/// direction of writing and other invisible ones as <U+001B>, bytes that are no UTF-8 as U+FFFD. A name read from a
/// disk is a stranger's text.
[[nodiscard]] std::string visibleText(std::string_view text);

/// How many cells a terminal gives to \a text: two for wide East Asian characters and emoji, none for marks that stand
/// on the character before. \a text is visibleText().
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// \a text cut to at most \a width cells, with "…" in the last one where anything was cut.
[[nodiscard]] std::string elided(std::string_view text, std::size_t width);

/// \a text without its beginning, "…" in its place, where it is wider than \a width cells: the end of a path tells
/// most.
[[nodiscard]] std::string elidedAtStart(std::string_view text, std::size_t width);

} // namespace brindle
