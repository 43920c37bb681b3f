#pragma once

#include <string>
#include <string_view>

namespace brindle {

/// \a text with all that a terminal or a window would obey or hide made visible: control characters, the characters
/// that change the direction of writing and other invisible ones as <U+001B>, bytes that are no UTF-8 as U+FFFD. A name
/// read from a disk is a stranger's text.
[[nodiscard]] std::string visibleText(std::string_view text);

/// visibleText() of each line of \a text, which stay lines; without the newlines at its end.
[[nodiscard]] std::string visibleLines(std::string_view text);

/// Takes the first character off \a text, which is not empty; U+FFFD for a byte that begins none.
char32_t takeCharacter(std::string_view &text);

} // namespace brindle
