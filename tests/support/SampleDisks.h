#pragma once

#include "records/PhysicalDisk.h"

namespace brindle {

/// A disk in which no field has its start value, so that one that is lost or mixed up shows.
inline PhysicalDisk completeDisk()
{
    return {
        .identifier = "disk4",
        .mediaUUID = "6D1A1F5E-0000-4000-8000-000000000001",
        .name = "Example SSD",
        .size = "500.1 GB",
        .fileSystem = "GUID_partition_scheme",
        .mountPoint = "/Volumes/Whole",
        .volumeName = "System • Work",
        .isRemovable = true,
        .isWritable = false,
        .efiPartitions = {{.identifier = "disk4s1",
                           .mediaUUID = "6D1A1F5E-0000-4000-8000-000000000002",
                           .isMounted = true,
                           .mountPoint = "/Volumes/EFI",
                           .volumeName = "EFI"},
                          {.identifier = "disk4s2"}},
        .diskType = PhysicalDisk::DiskType::removable,
        .isBootDisk = true,
        .totalSpaceBytes = 500'000'000'000,
        .usedSpaceBytes = 123'456'789'012,
        .hasMacOS = true,
        .hasOpenCore = true,
        .hasClover = true,
        .hasWindows = true,
        .hasLinux = true,
        .hasExFAT = true,
        .isDiskImage = true,
        .smartStatus = SMARTStatus::failing,
        .isSolidState = true,
        .trimSupported = true,
        .busProtocol = "USB",
    };
}

} // namespace brindle
