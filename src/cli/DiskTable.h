#pragma once

#include "cli/Terminal.h"
#include "records/PhysicalDisk.h"

#include <string>
#include <vector>

namespace brindle {

/// The disks as a table: a line for each disk, and beneath it one for each of its EFI partitions.
///
/// Columns are aligned by the cells that a terminal gives to a character. On a terminal long texts are cut to its
/// width, and a narrow one goes without the columns that say least; elsewhere the table is whole.
[[nodiscard]] std::string diskTable(const std::vector<PhysicalDisk> &disks, const Terminal &terminal);

} // namespace brindle
