#pragma once

#include "inventory/InventorySource.h"
#include "kernel/BlockDevices.h"

#include <vector>

namespace brindle::tools {

/// The mounts of the file systems that lie on \a disks, as this process sees them.
[[nodiscard]] std::vector<Mount> readMounts(const BlockDevices &devices, const std::vector<Disk> &disks,
                                            const Scope &scope);

} // namespace brindle::tools
