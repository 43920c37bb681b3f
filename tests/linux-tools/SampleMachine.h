#pragma once

#include "inventory/Inventory.h"

namespace brindle::tools {

/// A machine with an internal drive that holds an APFS container, an external stick with an MBR, and a disk image.
Inventory sampleMachine();

} // namespace brindle::tools
