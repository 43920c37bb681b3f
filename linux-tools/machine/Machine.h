#pragma once

#include "acting/ActionWords.h"
#include "inventory/Inventory.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

/// What a machine file says of a disk, a partition or an APFS volume beyond the inventory.
struct DescribedCarrier {
    std::string content;                ///< Name of the folder under contents/ that holds its files; empty without any.
    std::string holder;                 ///< What uses it ("swap"), so that it must not be erased; empty for nothing.
    std::optional<Space> space;         ///< How full it is; absent: as full as its folder.
    std::uint64_t sizeBytes = 0;        ///< Of the disk, partition or container.
    std::optional<Dissenter> dissenter; ///< Refuses an unmount that isn't forced.
};

/// A machine as its file describes it.
struct Machine {
    std::string password;                             ///< The administrator's, for the simulated sudo.
    std::uint64_t nextDisk = 0;                       ///< N of the next diskN: greater than each that ever was.
    Inventory inventory;                              ///< What is plugged in; mount points as written in the file.
    std::vector<Disk> shelf;                          ///< What is plugged out, under its last identifiers.
    std::map<std::string, DescribedCarrier> carriers; ///< By identifier, those on the shelf too.
    std::vector<NvramVariable> nvram;
};

/// Reads a machine file's JSON. Throws JsonValueError where a key is missing or wrong.
[[nodiscard]] Machine readMachine(const nlohmann::ordered_json &json);

} // namespace brindle::tools
