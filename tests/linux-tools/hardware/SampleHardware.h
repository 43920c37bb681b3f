#pragma once

#include "hardware/HardwareFacts.h"

namespace brindle::tools {

/// A notebook with two cards that both have displays, and a module in one of its two sockets.
[[nodiscard]] HardwareFacts sampleNotebook();

/// A machine on one chip with soldered memory.
[[nodiscard]] HardwareFacts sampleSystemOnAChip();

} // namespace brindle::tools
