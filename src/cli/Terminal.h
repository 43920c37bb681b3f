#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace brindle {

/// What standard output is: how wide, and whether it takes colour.
struct Terminal {
    /// Cells in a line; 0 where it is no terminal and lines are never cut.
    std::size_t width = 0;
    bool hasColour = false;

    /// Reads it off standard output and NO_COLOR; TERM=dumb has no colour.
    [[nodiscard]] static Terminal ofStandardOutput();
};

/// How a piece of text is to look. Without colour all look alike.
enum class Style { plain, heading, dim, good, bad, accent };

/// \a text between the escape sequences of \a style, or as it is where \a terminal has no colour.
[[nodiscard]] std::string styled(std::string_view text, Style style, const Terminal &terminal);

/// Writes \a text at once. Where nobody reads any more it is lost, which is no failure.
void tell(std::FILE *stream, std::string_view text);

} // namespace brindle
