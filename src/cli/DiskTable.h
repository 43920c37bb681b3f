#pragma once

#include "cli/Terminal.h"
#include "records/PhysicalDisk.h"

#include <string>
#include <vector>

namespace brindle {

/// The disks as a table: a line for each disk, and beneath it one for each of its EFI partitions.
///
/// Columns are aligned by the cells that a terminal gives to a character. On a terminal the names and the volumes are
/// cut to its width; elsewhere nothing is cut.
[[nodiscard]] std::string diskTable(const std::vector<PhysicalDisk> &disks, const Terminal &terminal);

} // namespace brindle
