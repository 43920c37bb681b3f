#pragma once

#include "kernel/BlockDevices.h"
#include "kernel/MountTable.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// What a mounted file system lies on.
struct Carrier {
    const BlockDevice *carrier = nullptr; ///< The disk or partition; null when it isn't to be seen from here.
    const BlockDevice *source = nullptr;  ///< What was mounted: the carrier itself, or a device made out of it.
    bool isBehindFiles = false;           ///< The carrier holds files that hold the file system: overlays, images.
};

/// Finds the disks and partitions below mounted file systems: through device-mapper, md, btrfs, ZFS, overlays, and
/// for the root also through an image that it was started from. Where there are several, the first.
class Carriers {
public:
    /// The first member of a ZFS pool of a name; null when none is known.
    using FindPoolMember = std::function<const BlockDevice *(std::string_view pool)>;

    /// All outlive the object.
    Carriers(const BlockDevices &devices, const std::vector<MountEntry> &mounts, FindPoolMember findPoolMember);

    [[nodiscard]] Carrier of(const MountEntry &entry) const;

private:
    [[nodiscard]] Carrier follow(const MountEntry &entry, std::size_t depth) const;
    [[nodiscard]] Carrier followImage(Carrier found, std::size_t depth) const;
    [[nodiscard]] Carrier followOverlay(const MountEntry &entry, std::size_t depth) const;
    [[nodiscard]] Carrier behind(const MountEntry *holder, std::size_t depth) const;
    [[nodiscard]] const BlockDevice *sourceOf(const MountEntry &entry) const;
    [[nodiscard]] const MountEntry *holderOf(std::string_view path) const;
    [[nodiscard]] const MountEntry *siblingOf(std::string_view hiddenPath) const;

    const BlockDevices &m_devices;
    const std::vector<MountEntry> &m_mounts;
    FindPoolMember m_findPoolMember;
};

} // namespace brindle::tools
