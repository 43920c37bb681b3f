#pragma once

#include "kernel/BlockDevices.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// One line of /proc/self/mountinfo (proc_pid_mountinfo(5)), its octal escapes decoded.
struct MountEntry {
    DeviceNumber device; ///< Of the file system; of no block device (major 0) for btrfs, overlay, ….
    std::string root;    ///< Which folder of the file system is mounted; "/" for all of it.
    std::string mountPoint;
    std::string fileSystem; ///< "ext4"
    std::string source;     ///< "/dev/sda1"
    std::string options;    ///< Of the file system, parted by commas.
    bool isReadOnly = false;
};

/// The entries in the order of the text. A line that isn't one is left out.
[[nodiscard]] std::vector<MountEntry> parseMountTable(std::string_view text);

/// The folders that an overlay is made of, the one for reading first; empty for any other file system.
[[nodiscard]] std::vector<std::string> overlayLayers(const MountEntry &entry);

} // namespace brindle::tools
