#pragma once

#include "inventory/Inventory.h"

#include <optional>

namespace brindle::tools {

// What a drive says of itself, asked on an open descriptor of its node. The kernel lets root alone ask.

/// Whether an ATA drive has stopped its motor: reading would start it, asking this doesn't. `nullopt` when it
/// doesn't say.
[[nodiscard]] std::optional<bool> isAtaDriveAsleep(int descriptor);

/// What SMART RETURN STATUS says. The drive must be awake.
[[nodiscard]] Smart ataHealth(int descriptor);

/// What the critical warnings of the health log say.
[[nodiscard]] Smart nvmeHealth(int descriptor);

} // namespace brindle::tools
