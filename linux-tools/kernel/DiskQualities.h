#pragma once

#include "kernel/BlockDevices.h"
#include "kernel/UdevRecord.h"

#include <optional>
#include <string>

namespace brindle::tools {

/// How a disk is attached.
struct Attachment {
    std::string protocol; ///< "SATA", "NVMe", "USB", …; empty where the path doesn't tell.
    bool isExternal = false;
};

[[nodiscard]] Attachment attachmentOf(const BlockDevices &devices, const BlockDevice &disk);

/// "Samsung SSD 980 PRO (nvme0n1)": what the drive calls itself, or the file of a disk image, and the kernel's name.
[[nodiscard]] std::string mediaName(const BlockDevices &devices, const BlockDevice &disk, const Attachment &attachment,
                                    const std::optional<UdevRecord> &record);

/// Whether the medium can be taken out, or the disk says that it can: cards and sticks.
[[nodiscard]] bool isRemovable(const BlockDevices &devices, const BlockDevice &disk);

} // namespace brindle::tools
