#include "kernel/KernelInventory.h"

#include "inventory/FindDevice.h"
#include "inventory/Identifier.h"
#include "inventory/RealPath.h"
#include "kernel/DiskReader.h"
#include "kernel/EfiVariables.h"
#include "kernel/Files.h"
#include "kernel/MountReader.h"

#include <fmt/format.h>

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

Asked askedNode(const BlockDevices &devices, const MountReader &mounts, const BlockDevice &device, const Scope &scope)
{
    const BlockDevice &carrier = devices.lowestOf(device);
    Asked asked = askedDevice(devices, carrier, scope.onlyNamed);
    asked.link = {.path = scope.name, .target = targetOf(device, carrier, mounts)};
    return asked;
}

/// What a path is about that is no node's and no mount point's own.
Asked askPath(const BlockDevices &devices, const MountReader &mounts, const Scope &scope)
{
    const std::string path = realPath(scope.name);
    if (path.empty())
        return {};
    if (const BlockDevice *device = devices.byFile(path))
        return askedNode(devices, mounts, *device, scope);
    const BlockDevice *carrier = mounts.carrierAt(path);
    if (!carrier)
        return {};
    Asked asked = askedDevice(devices, *carrier, scope.onlyNamed);
    asked.link = {.path = scope.name, .target = path};
    return asked;
}

Asked ask(const BlockDevices &devices, const MountReader &mounts, const Scope &scope)
{
    if (const auto identifier = parseIdentifier(scope.name)) {
        const DiskParts parts = scope.onlyNamed ? DiskParts(identifier->partition.value_or(kNoPart)) : kAllParts;
        return {.number = identifier->disk, .disk = nullptr, .parts = parts, .link = {}};
    }
    if (const BlockDevice *device = devices.byNode(scope.name))
        return askedNode(devices, mounts, *device, scope);
    if (const BlockDevice *carrier = mounts.carrierAt(scope.name))
        return askedDevice(devices, *carrier, scope.onlyNamed);
    return askPath(devices, mounts, scope);
}

std::vector<std::pair<std::uint64_t, const BlockDevice *>> numberedDisks(const BlockDevices &devices,
                                                                         const Asked &asked)
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
    return numbered;
}

/// Where a name leads that no disk and no mounted volume bears: to what carries a mapped device of that name, or of a
/// volume of that name.
std::optional<Link> linkToMapped(const BlockDevices &devices, const MountReader &mounts, const std::string &name)
{
    for (const BlockDevice &device : devices.all()) {
        if (!device.isVirtual() || device.isLoop())
            continue;
        const auto record = udevRecord(devices, device);
        const bool isLabelled = record && record->volume && record->volume->name == name;
        if (isLabelled || devices.attribute(device, "dm/name") == name)
            return Link{.path = name, .target = targetOf(device, devices.lowestOf(device), mounts)};
    }
    return std::nullopt;
}

/// Reads the details of what is named, or of all.
void readDetails(Inventory &inventory, std::vector<DiskReader> &readers, const std::string &name)
{
    const auto named = findDevice(inventory, name);
    for (std::size_t index = 0; index < readers.size(); ++index) {
        Disk &disk = inventory.disks[index];
        if (name.empty() || (named && named->disk == &disk))
            readers[index].readDetails(disk, !named || !named->partition);
    }
}

/// What is missing of disks that the caller may not read.
std::optional<std::string> noteOfRefused(const std::vector<Disk> &disks, const std::vector<DiskReader> &readers)
{
    std::vector<std::string_view> nodes;
    for (std::size_t index = 0; index < readers.size(); ++index) {
        if (readers[index].isRefused())
            nodes.push_back(disks[index].node);
    }
    if (nodes.empty())
        return std::nullopt;
    return fmt::format("types and names are missing, for udev does not tell what lies on {}, and this user may not "
                       "read it",
                       fmt::join(nodes, ", "));
}

void noteWhyNothing(Inventory &inventory, const MountReader &mounts, const std::string &name)
{
    const std::string path = realPath(name);
    std::string why = mounts.whyWithoutCarrier(path.empty() ? name : path);
    if (!why.empty())
        inventory.notes.push_back(std::move(why));
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
    std::vector<DiskReader> readers; // Of the inventory's disks.
    for (const auto &[number, device] : numberedDisks(devices, asked)) {
        DiskReader reader(devices, *device, scope, asked.parts);
        if (auto disk = reader.read(number)) {
            inventory.disks.push_back(std::move(*disk));
            readers.push_back(std::move(reader));
        }
    }
    inventory.mounts = mounts.read(inventory.disks, scope.withSpace);
    inventory.link = std::move(asked.link);
    const bool isFound = scope.name.empty() || findDevice(inventory, scope.name);
    if (!isFound && !asked.number)
        inventory.link = linkToMapped(devices, mounts, scope.name);
    if (scope.withDetails)
        readDetails(inventory, readers, scope.name);
    if (auto note = noteOfRefused(inventory.disks, readers))
        inventory.notes.push_back(std::move(*note));
    if (!isFound && !inventory.link)
        noteWhyNothing(inventory, mounts, scope.name);
    return inventory;
}

std::optional<NvramVariable> KernelInventory::nvramVariable(std::string_view name)
{
    return readEfiVariable(m_roots.sys + "/firmware/efi/efivars", name);
}

} // namespace brindle::tools
