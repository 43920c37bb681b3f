#pragma once

#include "cli/ExitStatus.h"
#include "records/PhysicalDisk.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// An EFI partition with the disk that it lies on, as they were at a scan.
struct FoundPartition {
    PhysicalDisk disk;
    EFIPartition partition;
};

/// The EFI partition of that identifier; nullopt where no visible disk has it, which is told on standard error.
[[nodiscard]] std::optional<FoundPartition> findEFIPartition(const std::vector<PhysicalDisk> &disks,
                                                             std::string_view identifier);

} // namespace brindle
