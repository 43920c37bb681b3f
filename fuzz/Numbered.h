#pragma once

#include "base/Text.h"

#include <algorithm>
#include <string_view>

namespace brindle {

/// Whether \a text is \a stem and then digits, at least one.
inline bool isNumbered(std::string_view text, std::string_view stem)
{
    return text.starts_with(stem) && text.size() > stem.size() &&
           std::ranges::all_of(text.substr(stem.size()), isDigit);
}

} // namespace brindle
