#pragma once

#include "hardware/HardwareFacts.h"

#include <string>

namespace brindle::tools {

/// How much is told of a device.
enum class DetailLevel {
    mini,  ///< No serial number, and of graphics the cards alone, without what is plugged into them.
    basic, ///< All but serial numbers.
    full
};

// The texts of the data types. A label without a value is left out. What the hardware says of itself is shown as one
// line of UTF-8 in which no colon stands: a colon makes a label of what is before it.

/// SPHardwareDataType: model, serial number, processor and size of the memory.
[[nodiscard]] std::string hardwareText(const HardwareFacts &facts, DetailLevel detail);

/// SPMemoryDataType: the memory by its sockets, or as a whole where none are known.
[[nodiscard]] std::string memoryText(const HardwareFacts &facts, DetailLevel detail);

/// SPDisplaysDataType: the graphics cards and their displays.
[[nodiscard]] std::string displaysText(const HardwareFacts &facts, DetailLevel detail);

} // namespace brindle::tools
