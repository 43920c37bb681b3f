#pragma once

#include "inventory/Inventory.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle::tools {

/// What a command is going to tell, so that a source reads no more than that. More may be read, never less.
struct Scope {
    std::string name;          ///< Only what this name may stand for (see findDevice()); empty: everything.
    bool onlyNamed = false;    ///< Of a disk only what is named, not the partitions below or beside it.
    bool withContents = false; ///< What the tables and file systems say: types, UUIDs, volumes.
    bool withDetails = false;  ///< The medium's name and qualities, and its health.
    bool withMounts = false;
    bool withSpace = false; ///< Of what is mounted.
};

/// Where the facts of a machine come from: its running kernel, or a file that describes a machine.
class InventorySource {
public:
    InventorySource() = default;
    InventorySource(const InventorySource &) = delete;
    InventorySource &operator=(const InventorySource &) = delete;
    virtual ~InventorySource() = default;

    /// One reading. A device that vanishes or can't be read meanwhile is left out or told without what is unknown.
    [[nodiscard]] virtual Inventory read(const Scope &scope) = 0;

    /// The variable of a "GUID:name" or of a plain name, which is looked for under the usual GUIDs in their order.
    [[nodiscard]] virtual std::optional<NvramVariable> nvramVariable(std::string_view name) = 0;
};

} // namespace brindle::tools
