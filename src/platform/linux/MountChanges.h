#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// The mount points that came and went between two states of the mount table, in the order of the table.
struct MountChanges {
    std::vector<std::string> mounted;
    std::vector<std::string> unmounted;

    bool operator==(const MountChanges &) const = default;
};

/// Compares two texts of /proc/self/mountinfo (proc_pid_mountinfo(5)), the octal escapes of the paths decoded.
///
/// Only volumes count: file systems on a block device that could be a listed disk's, or lie on one through
/// device-mapper, md or a loop device. A folder of a volume that is mounted at a second place (a bind mount) is no
/// volume; but on btrfs, bcachefs and ZFS, where it looks like a subvolume, it counts. A remount is no change, a moved
/// mount is both. A line that isn't one is left out.
[[nodiscard]] MountChanges compareMountTables(std::string_view before, std::string_view after);

} // namespace brindle
