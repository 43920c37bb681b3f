#pragma once

#include "records/PhysicalDisk.h"

#include <string_view>
#include <vector>

namespace brindle {

// What is found stands in the list or disk that was looked through; null where nothing is found.

[[nodiscard]] const PhysicalDisk *findDisk(const std::vector<PhysicalDisk> &disks, std::string_view identifier);

/// The first disk that holds the EFI partition \a identifier.
[[nodiscard]] const PhysicalDisk *findDiskOfEFIPartition(const std::vector<PhysicalDisk> &disks,
                                                         std::string_view identifier);

/// The EFI partition \a identifier of the disk.
[[nodiscard]] const EFIPartition *findEFIPartition(const PhysicalDisk &disk, std::string_view identifier);

/// The first EFI partition \a identifier of the disks.
[[nodiscard]] const EFIPartition *findEFIPartition(const std::vector<PhysicalDisk> &disks, std::string_view identifier);

} // namespace brindle
