#pragma once

#include <optional>
#include <string>
#include <string_view>

struct udev_device;

namespace brindle {

/// A whole disk with a medium, as sysfs and udev's database tell it.
struct UdevDisk {
    std::string mediaName; ///< As `diskutil info` tells it: "Samsung SSD 980 PRO (nvme0n1)".
    std::string contents;  ///< Differs whenever the medium, the partition table or what lies on a bare disk does.
};

/// Whether a disk is one that `diskutil list` lists, by its path in sysfs ("/sys/devices/pci0000:00/…/block/sda"): not
/// ram, zram, device-mapper and md, which are made out of something else, nor floppy drives, flash without a controller
/// and the boot areas of eMMC chips. A loop device is a disk image, and without one it has no medium.
[[nodiscard]] bool isListedDisk(std::string_view sysPath);

/// What there is of \a disk at this moment; nullopt where there is no medium in the drive. Opens no device.
[[nodiscard]] std::optional<UdevDisk> readUdevDisk(udev_device *disk);

/// \a text of a property whose name ends with "_ENC", without blanks at its ends: each "\xNN" replaced by the byte that
/// it stands for, and control characters by U+FFFD.
[[nodiscard]] std::string decodeUdevProperty(std::string_view text);

} // namespace brindle
