#include "kernel/KernelInventory.h"

#include "inventory/Identifier.h"
#include "kernel/DiskReader.h"
#include "kernel/EfiVariables.h"
#include "kernel/MountReader.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace brindle::tools {
namespace {

/// The disks that a name may stand for: that of a device node, else all.
std::vector<const BlockDevice *> candidates(const BlockDevices &devices, std::string_view name)
{
    const auto isNamed = [&](const BlockDevice &device) { return BlockDevices::node(device) == name; };
    const auto named = name.starts_with("/dev/") ? std::ranges::find_if(devices.all(), isNamed) : devices.all().end();
    std::vector<const BlockDevice *> disks;
    for (const BlockDevice &device : devices.all()) {
        const bool isAsked = named == devices.all().end() || &*named == &device || named->parent == device.name;
        if (isShown(device) && isAsked)
            disks.push_back(&device);
    }
    return disks;
}

std::vector<Disk> readDisks(const BlockDevices &devices, const Scope &scope)
{
    std::vector<std::pair<std::uint64_t, const BlockDevice *>> numbered;
    const auto identifier = parseIdentifier(scope.name);
    for (const BlockDevice *device : candidates(devices, scope.name)) {
        const std::uint64_t number = diskNumber(devices, *device);
        if (!identifier || identifier->disk == number)
            numbered.emplace_back(number, device);
    }
    std::ranges::sort(numbered);
    std::vector<Disk> disks;
    for (const auto &[number, device] : numbered) {
        if (auto disk = DiskReader(devices, *device, scope).read(number))
            disks.push_back(std::move(*disk));
    }
    return disks;
}

} // namespace

KernelInventory::KernelInventory(KernelRoots roots) : m_roots(std::move(roots)) {}

Inventory KernelInventory::read(const Scope &scope)
{
    const BlockDevices devices(m_roots);
    Inventory inventory;
    inventory.disks = readDisks(devices, scope);
    if (scope.withMounts)
        inventory.mounts = readMounts(devices, inventory.disks, scope);
    return inventory;
}

std::optional<NvramVariable> KernelInventory::nvramVariable(std::string_view name)
{
    return readEfiVariable(m_roots.sys + "/firmware/efi/efivars", name);
}

} // namespace brindle::tools
