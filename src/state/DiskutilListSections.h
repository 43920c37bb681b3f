#pragma once

#include <map>
#include <string>
#include <string_view>

namespace brindle {

/// Sections of `diskutil list` by whole-disk identifier.
using DiskutilListSections = std::map<std::string, std::string>;

/// Cuts the text of `diskutil list` into one section for each whole disk, its header line included.
///
/// What stands above the first header is dropped; of two sections of one disk the later stays. A header that names no
/// disk begins a section anew without a change of disk.
[[nodiscard]] DiskutilListSections parseDiskutilListSections(std::string_view list);

} // namespace brindle
