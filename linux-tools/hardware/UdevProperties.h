#pragma once

#include "hardware/HardwareFacts.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// What udev's database keeps of a device, readable for everybody: a file of `/run/udev/data` with a line
/// "E:NAME=VALUE" for each property.
class UdevProperties {
public:
    explicit UdevProperties(std::string_view file);

    [[nodiscard]] std::string property(const std::string &name) const; ///< Empty without it.

private:
    std::map<std::string, std::string> m_properties;
};

/// The sockets of the main memory, which udev's program `dmi_memory_id` reads as root from the firmware's table when
/// the machine starts, from the \a record of the device "dmi/id".
[[nodiscard]] std::vector<MemorySlot> memorySlots(const UdevProperties &record);

} // namespace brindle::tools
