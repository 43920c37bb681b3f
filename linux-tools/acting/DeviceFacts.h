#pragma once

#include "acting/Format.h"
#include "inventory/FindDevice.h"

#include <string>

namespace brindle::tools {

// What an action wants to know of a device that was found.

[[nodiscard]] bool isWholeWithTable(const Device &device);
[[nodiscard]] bool isEfi(const Device &device);

/// The file system of a disk or partition; null for none and for an APFS volume.
[[nodiscard]] const Volume *volumeOf(const Device &device);

/// The volume's name; empty for none.
[[nodiscard]] std::string nameOf(const Device &device);

/// libblkid's name of what lies on it; empty for nothing.
[[nodiscard]] std::string fileSystemOf(const Device &device);

/// The printed name of the type that the device's partition has once it is erased: that of an EFI partition stays.
[[nodiscard]] std::string typeFor(const Device &device, const Format &format);

} // namespace brindle::tools
