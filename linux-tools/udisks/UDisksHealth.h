#pragma once

#include "inventory/Inventory.h"

#include <chrono>
#include <string>

namespace brindle::tools {

/// What UDisks2 found when it last asked a drive for its health, \a device being the kernel's name of the disk
/// ("sda"), on the bus of that address.
///
/// Only properties that UDisks2 keeps are read: no drive is woken, and UDisks2 is not started where it doesn't run.
/// Smart::notSupported where nothing is known, or not within \a limit in all.
[[nodiscard]] Smart udisksHealth(const std::string &busAddress, const std::string &device,
                                 std::chrono::milliseconds limit);

} // namespace brindle::tools
