#pragma once

#include "inventory/InventorySource.h"
#include "machine/MachineFile.h"

namespace brindle::tools {

/// The machine that a machine file describes. Every reading throws MachineFileError.
class MachineFileInventory : public InventorySource {
public:
    explicit MachineFileInventory(const MachineFile &file); ///< The file outlives the inventory.

    /// Mount points below ROOT are absolute, and any path that leads to one stands for it. The space of a volume that
    /// the file doesn't give is that of its folder.
    [[nodiscard]] Inventory read(const Scope &scope) override;

    [[nodiscard]] std::optional<NvramVariable> nvramVariable(std::string_view name) override;

private:
    [[nodiscard]] Space spaceOf(const Machine &machine, const std::string &carrier) const;

    const MachineFile &m_file;
};

} // namespace brindle::tools
