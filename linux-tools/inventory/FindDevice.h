#pragma once

#include "inventory/Inventory.h"

#include <optional>
#include <string_view>

namespace brindle::tools {

/// What a name on the command line stands for. The pointers lead into the inventory; which of them are set tells
/// what it is:
/// - a whole disk: disk
/// - a partition: disk and partition
/// - an APFS container: container; with the disk and partition of its store
/// - an APFS volume: the same and apfsVolume
struct Device {
    const Disk *disk = nullptr;
    const Partition *partition = nullptr;
    const ApfsContainer *container = nullptr;
    const ApfsVolume *apfsVolume = nullptr;
    const Mount *mount = nullptr; ///< The one that was named, else that of the whole volume; null for none.
};

/// The device of an identifier ("disk2s1", "/dev/disk2s1"), a device node ("/dev/sda1") or the inventory's link to one,
/// a mount point, a volume name, or the name of a mounted volume behind encryption or in a volume group, tried in this
/// order. `nullopt` when there is none. A name in the form of an identifier is nothing else.
[[nodiscard]] std::optional<Device> findDevice(const Inventory &inventory, std::string_view name);

/// How many volumes bear the name: whoever writes refuses a name of more than one.
[[nodiscard]] int volumesNamed(const Inventory &inventory, std::string_view name);

} // namespace brindle::tools
