#pragma once

#include "inventory/Inventory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

/// An entry of a table that libblkid read.
struct ProbedEntry {
    std::uint64_t number = 0;
    std::string type; ///< A GUID, "0x83" or a name, by the table.
    std::string uuid;
    std::uint64_t offsetBytes = 0;
    std::uint64_t sizeBytes = 0;
};

/// What the bytes of a device say.
struct ProbedContents {
    std::string table; ///< "gpt", "dos", "mac", …; empty for none.
    std::vector<ProbedEntry> entries;
    std::optional<Volume> volume;
};

/// Reads the device that \a descriptor is open on. Empty where it can't be read or holds nothing that is known.
[[nodiscard]] ProbedContents probeContents(int descriptor);

/// The file system in a part of that device.
[[nodiscard]] std::optional<Volume> probeVolume(int descriptor, std::uint64_t offsetBytes, std::uint64_t sizeBytes);

} // namespace brindle::tools
