#include "inventory/FindDevice.h"

#include "inventory/Identifier.h"

#include <algorithm>
#include <set>
#include <utility>

namespace brindle::tools {
namespace {

/// What a device can be named by, besides its mount points.
struct Names {
    std::string_view identifier;
    std::string_view node;
    std::string_view volume;
};

std::string_view nameOf(const std::optional<Volume> &volume)
{
    return volume ? std::string_view(volume->name) : std::string_view();
}

const Mount *mountOf(const Inventory &inventory, std::string_view identifier)
{
    const Mount *partial = nullptr;
    for (const Mount &mount : inventory.mounts) {
        if (mount.carrier != identifier)
            continue;
        if (mount.isWhole)
            return &mount;
        partial = partial ? partial : &mount;
    }
    return partial;
}

template <typename Matcher>
std::optional<Device> findOnDisks(const Inventory &inventory, Matcher matches)
{
    for (const Disk &disk : inventory.disks) {
        if (matches(Names{disk.identifier, disk.node, nameOf(disk.volume)}))
            return Device{.disk = &disk, .mount = mountOf(inventory, disk.identifier)};
        for (const Partition &partition : disk.partitions) {
            if (matches(Names{partition.identifier, partition.node, nameOf(partition.volume)}))
                return Device{
                    .disk = &disk, .partition = &partition, .mount = mountOf(inventory, partition.identifier)};
        }
    }
    return std::nullopt;
}

Device inContainer(const Inventory &inventory, const ApfsContainer &container, const ApfsVolume *volume)
{
    const auto isStore = [&](const Names &names) { return names.identifier == container.store; };
    Device device = findOnDisks(inventory, isStore).value_or(Device{});
    device.container = &container;
    device.apfsVolume = volume;
    device.mount = volume ? mountOf(inventory, volume->identifier) : nullptr;
    return device;
}

template <typename Matcher>
std::optional<Device> findInContainers(const Inventory &inventory, Matcher matches)
{
    for (const ApfsContainer &container : inventory.containers) {
        if (matches(Names{.identifier = container.identifier, .node = {}, .volume = {}}))
            return inContainer(inventory, container, nullptr);
        for (const ApfsVolume &volume : container.volumes) {
            if (matches(Names{.identifier = volume.identifier, .node = {}, .volume = volume.name}))
                return inContainer(inventory, container, &volume);
        }
    }
    return std::nullopt;
}

template <typename Matcher>
std::optional<Device> find(const Inventory &inventory, Matcher matches)
{
    auto device = findOnDisks(inventory, matches);
    return device ? device : findInContainers(inventory, matches);
}

template <typename Matcher>
std::optional<Device> findByMount(const Inventory &inventory, Matcher matches)
{
    // Of several mounts at one place the last hides the others.
    const auto mount = std::find_if(inventory.mounts.rbegin(), inventory.mounts.rend(), matches);
    if (mount == inventory.mounts.rend())
        return std::nullopt;
    auto device = find(inventory, [&](const Names &names) { return names.identifier == mount->carrier; });
    if (device)
        device->mount = &*mount;
    return device;
}

/// Whether what is mounted bears the name where its carrier, encryption or a volume group, doesn't.
bool isMountedUnder(const Mount &mount, std::string_view name)
{
    return mount.volume && mount.volume->name == name;
}

} // namespace

std::optional<Device> findDevice(const Inventory &inventory, std::string_view name)
{
    if (name.empty())
        return std::nullopt;
    if (inventory.link && inventory.link->path == name)
        name = inventory.link->target;
    if (parseIdentifier(name)) {
        const std::string_view identifier = name.substr(name.rfind('/') + 1);
        return find(inventory, [&](const Names &names) { return names.identifier == identifier; });
    }
    if (auto device = find(inventory, [&](const Names &names) { return names.node == name; }))
        return device;
    if (auto device = findByMount(inventory, [&](const Mount &mount) { return mount.mountPoint == name; }))
        return device;
    if (auto device = find(inventory, [&](const Names &names) { return names.volume == name; }))
        return device;
    return findByMount(inventory, [&](const Mount &mount) { return isMountedUnder(mount, name); });
}

int volumesNamed(const Inventory &inventory, std::string_view name)
{
    int count = 0;
    const auto countName = [&](const Names &names) {
        count += names.volume == name;
        return false;
    };
    (void)find(inventory, countName);
    std::set<std::pair<std::string_view, std::string_view>> mounted; // One volume may have many mounts.
    for (const Mount &mount : inventory.mounts) {
        if (isMountedUnder(mount, name))
            mounted.emplace(mount.carrier, mount.volume->uuid);
    }
    return count + static_cast<int>(mounted.size());
}

} // namespace brindle::tools
