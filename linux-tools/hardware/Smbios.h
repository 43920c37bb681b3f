#pragma once

#include "hardware/HardwareFacts.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// The sockets of the main memory that \a table tells, in its order: the structures "Memory Device" of the System
/// Management BIOS (DMTF DSP0134, 7.18) that belong to a "Physical Memory Array" (7.17) used as system memory.
///
/// \a table is what firmware leaves in memory, without its entry point (`/sys/firmware/dmi/tables/DMI`). It may be any
/// bytes: reading ends where they stop making sense. A module whose size the firmware does not know, or tells absurdly,
/// is left out.
[[nodiscard]] std::vector<MemorySlot> memorySlots(std::string_view table);

/// A socket by the texts that the firmware gives for its bank and its place: "BANK 0/ChannelA-DIMM0".
[[nodiscard]] std::string slotName(const std::string &bank, const std::string &locator);

/// \a name where it names a kind of module ("DDR4"); empty where it only says that it is memory ("RAM", "Unknown").
[[nodiscard]] std::string moduleType(std::string_view name);

} // namespace brindle::tools
