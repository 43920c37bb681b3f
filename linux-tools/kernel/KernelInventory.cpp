#include "kernel/KernelInventory.h"

#include "inventory/Identifier.h"
#include "kernel/DiskReader.h"
#include "kernel/EfiVariables.h"
#include "kernel/Files.h"
#include "kernel/MountReader.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace brindle::tools {
namespace {

/// What a name is about.
struct Asked {
    std::optional<std::uint64_t> number; ///< The N of the one disk "diskN", where it is named so.
    const BlockDevice *disk = nullptr;   ///< The one disk, where it is named otherwise; neither: all disks.
    DiskParts parts;
    std::optional<Link> link;
};

Asked askedDevice(const BlockDevices &devices, const BlockDevice &device, bool onlyNamed)
{
    return {.number = {},
            .disk = device.parent.empty() ? &device : devices.byName(device.parent),
            .parts = onlyNamed ? DiskParts(device.partitionNumber()) : kAllParts,
            .link = {}};
}

/// What is made of other devices is told as what carries it, with its own mount where it has one.
std::string targetOf(const BlockDevice &device, const BlockDevice &carrier, const MountReader &mounts)
{
    const std::string mountPoint = &device == &carrier ? std::string() : mounts.mountPointOf(device);
    return mountPoint.empty() ? BlockDevices::node(carrier) : mountPoint;
}

Asked ask(const BlockDevices &devices, const MountReader &mounts, const Scope &scope)
{
    if (const auto identifier = parseIdentifier(scope.name)) {
        const DiskParts parts = scope.onlyNamed ? DiskParts(identifier->partition.value_or(kNoPart)) : kAllParts;
        return {.number = identifier->disk, .disk = nullptr, .parts = parts, .link = {}};
    }
    if (const BlockDevice *device = devices.byNode(scope.name)) {
        const BlockDevice &carrier = devices.lowestOf(*device);
        Asked asked = askedDevice(devices, carrier, scope.onlyNamed);
        asked.link = {.path = scope.name, .target = targetOf(*device, carrier, mounts)};
        return asked;
    }
    if (const BlockDevice *carrier = mounts.carrierAt(scope.name))
        return askedDevice(devices, *carrier, scope.onlyNamed);
    return {};
}

std::vector<Disk> readDisks(const BlockDevices &devices, const Asked &asked, const Scope &scope)
{
    std::vector<std::pair<std::uint64_t, const BlockDevice *>> numbered;
    for (const BlockDevice &device : devices.all()) {
        if (!isShown(device) || (asked.disk && asked.disk != &device))
            continue;
        const std::uint64_t number = diskNumber(devices, device);
        if (!asked.number || asked.number == number)
            numbered.emplace_back(number, &device);
    }
    std::ranges::sort(numbered);
    std::vector<Disk> disks;
    for (const auto &[number, device] : numbered) {
        if (auto disk = DiskReader(devices, *device, scope, asked.parts).read(number))
            disks.push_back(std::move(*disk));
    }
    return disks;
}

} // namespace

KernelInventory::KernelInventory(KernelRoots roots) : m_roots(std::move(roots)) {}

Inventory KernelInventory::read(const Scope &scope)
{
    const BlockDevices devices(m_roots);
    const std::string mountTable = scope.withMounts ? fileBytes(m_roots.mountInfo) : std::string();
    const MountReader mounts(devices, mountTable);
    Asked asked = ask(devices, mounts, scope);
    Inventory inventory;
    inventory.disks = readDisks(devices, asked, scope);
    inventory.mounts = mounts.read(inventory.disks, scope.withSpace);
    inventory.link = std::move(asked.link);
    return inventory;
}

std::optional<NvramVariable> KernelInventory::nvramVariable(std::string_view name)
{
    return readEfiVariable(m_roots.sys + "/firmware/efi/efivars", name);
}

} // namespace brindle::tools
