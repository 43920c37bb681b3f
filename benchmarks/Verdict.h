#pragma once

#include <string_view>

namespace brindle {

/// Whether all figures that this program has judged are allowed.
inline bool areAllAllowed = true;

/// The end of a figure's line: "ok", or \a reproach where the figure is more than is allowed.
inline std::string_view verdict(bool isAllowed, std::string_view reproach = "TOO MUCH")
{
    areAllAllowed = areAllAllowed && isAllowed;
    return isAllowed ? "ok" : reproach;
}

/// The status that the program ends with: 1 where a figure is more than is allowed.
inline int verdictStatus()
{
    return areAllAllowed ? 0 : 1;
}

} // namespace brindle
