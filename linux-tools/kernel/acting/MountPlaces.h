#pragma once

#include "kernel/acting/LiveDevice.h"

#include <string>

#include <sys/types.h>

namespace brindle::tools {

/// For whom a volume is mounted.
struct VolumeUser {
    uid_t uid = 0;
    gid_t gid = 0;
    std::string name; ///< As the folder below /run/media is named; the number where the system knows no name.
};

/// The user who called this program, through sudo or pkexec too.
[[nodiscard]] VolumeUser callingUser();

/// The folders that volumes are mounted on: ROOT/USER/LABEL, with a number behind the label where that is taken.
///
/// A folder that an earlier mount left, empty and this program's user's own, is used again; one that has anything in
/// it, or belongs to another, never. All above it must belong to this program's user and be writable by no other, or
/// a link put in its place could lead the mount elsewhere.
class MountPlaces {
public:
    explicit MountPlaces(std::string root); ///< "/run/media"

    /// A folder to mount a volume of this label on. \throws ActionError where there can be none.
    [[nodiscard]] std::string make(const VolumeUser &user, std::string_view label, const LiveDevice &live,
                                   KernelCalls &calls) const;

    /// Removes the folder of a volume that was unmounted, if it is one of ours; silent where it can't.
    void drop(const std::string &mountPoint) const;

private:
    std::string m_root;
};

} // namespace brindle::tools
