#pragma once

#include "base/Text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace brindle {

/// Whether \a text is UTF-8 in lines of which none holds more than the colon of its label, or a control character.
inline bool isPlain(std::string_view text)
{
    const auto isPlainLine = [](std::string_view line) {
        return std::ranges::count(line, ':') <= 1 &&
               std::ranges::none_of(line, [](char character) { return character >= '\0' && character < ' '; });
    };
    for (const std::string_view line : Lines(text))
        if (!isPlainLine(line))
            return false;
    return isUtf8(text);
}

/// Ends the program, which the fuzzer takes for a fault, unless \a text is plain.
inline void requirePlain(std::string_view text)
{
    if (!isPlain(text))
        std::abort();
}

} // namespace brindle
