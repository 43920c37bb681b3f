#include "machine/MachineFileActor.h"

#include "acting/ActionWords.h"
#include "acting/DeviceFacts.h"
#include "acting/VolumeLabel.h"
#include "machine/MachineEdit.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ranges>

namespace brindle::tools {
namespace {

using namespace std::string_view_literals;
using Json = nlohmann::ordered_json;

constexpr std::array kMountable{"vfat"sv, "exfat"sv, "ntfs"sv, "hfs"sv, "hfsplus"sv, "iso9660"sv, "udf"sv};

/// The device as it is in the file now: what was named may be gone or changed since it was looked up.
Target locate(const Machine &machine, const Target &target)
{
    const auto device = findDevice(machine.inventory, target.identifier());
    if (!device)
        throw diskNotFound(target.argument);
    return {target.argument, *device};
}

bool isMountable(const Device &device)
{
    return device.apfsVolume || std::ranges::find(kMountable, fileSystemOf(device)) != kMountable.end();
}

/// The mounts of everything that lies on \a device, a whole disk or a partition, in its containers too.
std::vector<Mount> mountsOn(const Machine &machine, const Device &device)
{
    const auto liesOnIt = [&](const Mount &mount) {
        const auto carrier = findDevice(machine.inventory, mount.carrier);
        if (!carrier || carrier->disk != device.disk)
            return false;
        if (device.apfsVolume)
            return carrier->apfsVolume == device.apfsVolume;
        return !device.partition || carrier->partition == device.partition;
    };
    std::vector<Mount> mounts;
    std::ranges::copy_if(machine.inventory.mounts, std::back_inserter(mounts), liesOnIt);
    return mounts;
}

/// Who keeps a mount from ending; `nullopt` for nobody. The system's own mounts never end.
std::optional<Dissenter> dissenterOf(const Machine &machine, const Mount &mount, bool isForced)
{
    if (isSystemMount(mount))
        return systemDissenter();
    const auto &dissenter = machine.carriers.at(mount.carrier).dissenter;
    return isForced ? std::nullopt : dissenter;
}

/// What uses a part of \a device and is not a mount; empty for nothing.
std::string holderOn(const Machine &machine, const Device &device)
{
    const auto holder = [&](const std::string &identifier) -> std::string {
        const std::string &name = machine.carriers.at(identifier).holder;
        return name.empty() ? name : inUse(identifier, name);
    };
    if (device.partition)
        return holder(device.partition->identifier);
    std::string found = holder(device.disk->identifier);
    for (const Partition &partition : device.disk->partitions)
        found = found.empty() ? holder(partition.identifier) : found;
    return found;
}

/// Takes all mounts on \a device out before it is erased and gives them, or says why it must not be erased.
std::vector<Mount> unmountToErase(Json &json, const Machine &machine, const Device &device)
{
    const std::string holder = holderOn(machine, device);
    if (!holder.empty())
        throw eraseRefusal(holder);
    std::vector<Mount> mounts = mountsOn(machine, device);
    for (const Mount &mount : mounts) {
        if (dissenterOf(machine, mount, false))
            throw eraseRefusal({});
        removeMount(json, mount.carrier);
    }
    return mounts;
}

/// Whether only root changes what is on the device: an EFI partition, or a disk that isn't made to be taken out.
bool needsPrivilege(const Device &device)
{
    return isEfi(device) || !(device.disk->isExternal || device.disk->isRemovable);
}

/// Makes the new file system of a volume. An APFS volume is made anew within its container.
std::string eraseOne(Json &json, const Device &device, const Format &newFormat, const std::string &label)
{
    if (device.apfsVolume) {
        if (newFormat.fileSystem != "apfs")
            throw ActionError("A volume of an APFS container can be erased to APFS alone");
        Json &volume = *findObject(json, device.apfsVolume->identifier);
        renew(volume, label);
        return device.apfsVolume->identifier;
    }
    const std::string &identifier = device.partition ? device.partition->identifier : device.disk->identifier;
    Json &carrier = *findObject(json, identifier);
    if (device.partition)
        carrier["type"] = typeFor(device, newFormat);
    return format(json, carrier, newFormat, label);
}

} // namespace

MachineFileActor::MachineFileActor(const MachineFile &file, bool isPrivileged)
    : m_file(file),
      m_isPrivileged(isPrivileged)
{
}

std::string MachineFileActor::mount(const Target &target)
{
    std::string name;
    m_file.change([&](Json &json, const Machine &machine) {
        const Target now = locate(machine, target);
        const Device &device = now.device;
        name = nameOf(device);
        if (device.mount)
            return;
        if (!isMountable(device))
            throw mountFailure(now, kUnsupported);
        if (isEfi(device) && !m_isPrivileged)
            throw mountFailure(now, kNotPermitted);
        addMount(json, now.identifier(), m_file.folders().freeMountPoint(machine, name));
    });
    return name;
}

std::string MachineFileActor::unmount(const Target &target, bool isForced)
{
    std::string name;
    m_file.change([&](Json &json, const Machine &machine) {
        const Target now = locate(machine, target);
        const Device &device = now.device;
        name = nameOf(device);
        if (!device.mount)
            return;
        requirePrivilege(device, [&] { return unmountRefusal(now, name, kNotPrivileged); });
        if (const auto dissenter = dissenterOf(machine, *device.mount, isForced))
            throw unmountDissent(now, name, *dissenter);
        removeMount(json, now.identifier());
    });
    return name;
}

std::string MachineFileActor::rename(const Target &target, std::string_view name)
{
    std::string label;
    m_file.change([&](Json &json, const Machine &machine) {
        const Target now = locate(machine, target);
        const std::string fileSystem = fileSystemOf(now.device);
        if (!isMountable(now.device) && !fileSystem.starts_with("ext"))
            throw renameFailure(now, kUnsupported);
        requirePrivilege(now.device, [&] { return renameFailure(now, kNotPrivileged); });
        requireWritable(now.device);
        label = fittedLabel(name, fileSystem);
        setName(*findVolume(json, now.identifier()), label);
    });
    return label;
}

void MachineFileActor::eject(const Target &target)
{
    m_file.change([&](Json &json, const Machine &machine) {
        const Device device = locate(machine, target).device;
        const std::string &disk = device.disk->identifier;
        const auto mounts = mountsOn(machine, Device{.disk = device.disk});
        for (const Mount &mount : mounts) {
            if (const auto dissenter = dissenterOf(machine, mount, false))
                throw ejectDissent(disk, *dissenter);
            removeMount(json, mount.carrier);
        }
        const std::string holder = holderOn(machine, Device{.disk = device.disk});
        if (!holder.empty())
            throw ejectFailure(disk, holder);
        unplug(json, disk);
    });
}

Erased MachineFileActor::eraseVolume(const Target &target, const Format &format, std::string_view name,
                                     const Announce &announce)
{
    Erased erased;
    m_file.change([&](Json &json, const Machine &machine) {
        const Target now = locate(machine, target);
        const Device &device = now.device;
        requireVolumeFor(format, now);
        requireErasable(device);
        const std::vector<Mount> ended = unmountToErase(json, machine, device);
        erased.label = fittedLabel(name, format.fileSystem);
        erased.identifier = eraseOne(json, device, format, erased.label);
        erased.sizeBytes = device.partition ? device.partition->sizeBytes : device.disk->sizeBytes;
        erased.isMounted = device.mount || !isEfi(device);
        if (erased.isMounted)
            addMount(json, erased.identifier, m_file.folders().freeMountPoint(machine, erased.label, ended));
    });
    announce(erased);
    return erased;
}

Erased MachineFileActor::eraseDisk(const Target &target, const Format &format, std::string_view name,
                                   const Announce &announce)
{
    Erased erased;
    m_file.change([&](Json &json, const Machine &machine) {
        const Target now = locate(machine, target);
        const Device &device = now.device;
        requireDiskForTable(format, now);
        requireErasable(device);
        const std::vector<Mount> ended = unmountToErase(json, machine, device);
        erased.label = fittedLabel(name, format.fileSystem);
        Json &partition = makeTable(*findObject(json, device.disk->identifier), format);
        erased.sizeBytes = partition.at("sizeBytes").get<std::uint64_t>();
        erased.isMounted = true;
        erased.identifier = tools::format(json, partition, format, erased.label);
        addMount(json, erased.identifier, m_file.folders().freeMountPoint(machine, erased.label, ended));
    });
    announce(erased);
    return erased;
}

void MachineFileActor::requireErasable(const Device &device) const
{
    requirePrivilege(device, [] { return ActionError(std::string(kCantOpen)); });
    requireWritable(device);
}

void MachineFileActor::requirePrivilege(const Device &device, const std::function<ActionError()> &refusal) const
{
    if (!m_isPrivileged && needsPrivilege(device))
        throw refusal();
}

bool hasSimulatedPrivilege()
{
    const char *const value = std::getenv(kPrivilegeVariable);
    return value && value == "1"sv;
}

} // namespace brindle::tools
