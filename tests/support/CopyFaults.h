#pragma once

#include <cerrno>
#include <string_view>

namespace brindle {

/// Whether a copy is whole although a call of \a function failed: another way is taken, or what is missed is a quality
/// that the target doesn't have. The close of a file that was read, which tells nothing, is not counted.
inline bool isTolerated(std::string_view function, int errorNumber)
{
    if (function == "lseek" || function == "utimensat")
        return true;
    const bool isQuality = function == "fchmod" || function == "futimens" || function.find("xattr") != function.npos;
    return isQuality && errorNumber == EACCES;
}

} // namespace brindle
