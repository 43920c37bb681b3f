#pragma once

namespace brindle {

/// What was found on a disk. A finding is never taken back: flags only ever join.
struct FilesystemFlags {
    bool hasMacOS = false;
    bool hasWindows = false;
    bool hasLinux = false;
    bool hasExFAT = false;

    constexpr FilesystemFlags &operator|=(const FilesystemFlags &other)
    {
        hasMacOS = hasMacOS || other.hasMacOS;
        hasWindows = hasWindows || other.hasWindows;
        hasLinux = hasLinux || other.hasLinux;
        hasExFAT = hasExFAT || other.hasExFAT;
        return *this;
    }

    bool operator==(const FilesystemFlags &) const = default;
};

} // namespace brindle
