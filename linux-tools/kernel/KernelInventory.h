#pragma once

#include "inventory/InventorySource.h"
#include "kernel/BlockDevices.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle::tools {

/// The disks of the running kernel.
///
/// udev's database is asked first. Only where udev doesn't know a device, or the kernel hasn't read its table, is the
/// device itself opened: once, when the caller may, and never while it sleeps. Drives without a medium, and what the
/// kernel makes out of other devices (device-mapper, md, zram, ram), are no disks; loop devices are disk images.
class KernelInventory final : public InventorySource {
public:
    explicit KernelInventory(KernelRoots roots = {});

    [[nodiscard]] Inventory read(const Scope &scope) override;
    [[nodiscard]] std::optional<NvramVariable> nvramVariable(std::string_view name) override;

private:
    KernelRoots m_roots;
};

} // namespace brindle::tools
