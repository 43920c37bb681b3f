#include "machine/MachineFileActor.h"

#include "acting/VolumeLabel.h"
#include "machine/MachineEdit.h"
#include "text/Words.h"

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
constexpr std::string_view kEfiType = "EFI";
constexpr std::string_view kUnsupported = "Perhaps the operation is not supported (kDAReturnUnsupported)";
constexpr std::string_view kNotPermitted = "Perhaps the operation is not appropriate (kDAReturnNotPermitted)";
constexpr std::string_view kNotPrivileged =
    "Perhaps the operation is not allowed by the invoking user (kDAReturnNotPrivileged)";
constexpr std::string_view kTryDisk = "If it has a partitioning scheme, use \"diskutil mountDisk\"";
constexpr std::string_view kTryReadOnly =
    "If you think the volume is supported but damaged, try the \"readOnly\" option";
constexpr std::string_view kCantUnmount = "Error: -69888: Couldn't unmount disk";
constexpr std::string_view kCantOpen = "Error: -69877: Couldn't open device";

/// The device as it is in the file now: what was named may be gone or changed since it was looked up.
Device locate(const Machine &machine, const std::string &identifier, const std::string &argument)
{
    const auto device = findDevice(machine.inventory, identifier);
    if (!device)
        throw ActionError(fmt::format("Unable to find disk for {}", argument));
    return *device;
}

bool isWholeWithTable(const Device &device)
{
    return !device.partition && !device.container && !device.disk->scheme.empty();
}

bool isEfi(const Device &device)
{
    return device.partition && !device.container && device.partition->type == kEfiType;
}

/// The file system of a disk or partition; null for none and for an APFS volume.
const Volume *volumeOf(const Device &device)
{
    if (device.container)
        return nullptr;
    const auto &volume = device.partition ? device.partition->volume : device.disk->volume;
    return volume ? &*volume : nullptr;
}

std::string nameOf(const Device &device)
{
    const Volume *const volume = volumeOf(device);
    if (volume)
        return volume->name;
    return device.apfsVolume ? device.apfsVolume->name : std::string();
}

std::string fileSystemOf(const Device &device)
{
    const Volume *const volume = volumeOf(device);
    if (volume)
        return volume->fileSystem;
    return device.apfsVolume ? "apfs" : "";
}

bool isMountable(const Device &device)
{
    return device.apfsVolume || std::ranges::find(kMountable, fileSystemOf(device)) != kMountable.end();
}

ActionError mountFailure(const std::string &argument, std::string_view reason, const Device &device)
{
    const std::string advice = isWholeWithTable(device) ? std::string(kTryDisk) + '\n' : std::string();
    return ActionError(fmt::format("Volume on {} failed to mount\n{}\n{}{}", argument, reason, advice, kTryReadOnly));
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
        return Dissenter{0, "kernel"};
    const auto &dissenter = machine.carriers.at(mount.carrier).dissenter;
    return isForced ? std::nullopt : dissenter;
}

std::string dissent(const Dissenter &dissenter)
{
    return fmt::format("dissented by PID {} ({})\nDissenter parent PPID 1 (/sbin/launchd)", dissenter.pid,
                       printable(dissenter.program));
}

/// What uses a part of \a device and is not a mount; empty for nothing.
std::string holderOn(const Machine &machine, const Device &device)
{
    const auto holder = [&](const std::string &identifier) -> std::string {
        const std::string &name = machine.carriers.at(identifier).holder;
        return name.empty() ? name : fmt::format("{} is in use by {}", identifier, printable(name));
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
        throw ActionError(fmt::format("{}\n{}", holder, kCantUnmount));
    std::vector<Mount> mounts = mountsOn(machine, device);
    for (const Mount &mount : mounts) {
        if (dissenterOf(machine, mount, false))
            throw ActionError(std::string(kCantUnmount));
        removeMount(json, mount.carrier);
    }
    return mounts;
}

void requireWritable(const Device &device)
{
    if (device.disk->isReadOnly)
        throw ActionError(fmt::format("{} is read-only", device.disk->identifier));
}

/// An EFI partition keeps its type, and an APFS container needs its own.
void requireVolumeFor(const Format &format, const Device &device, const std::string &argument)
{
    if (isWholeWithTable(device) || (device.container && !device.apfsVolume))
        throw ActionError(fmt::format("{} is not a volume: use eraseDisk for a whole disk", argument));
    if (isEfi(device) && format.fileSystem == "apfs")
        throw ActionError(fmt::format("{} is an EFI partition, which can't be erased to APFS", argument));
}

/// Whether only root changes what is on the device: an EFI partition, or a disk that isn't made to be taken out.
bool needsPrivilege(const Device &device)
{
    return isEfi(device) || !(device.disk->isExternal || device.disk->isRemovable);
}

std::string typeFor(const Device &device, const Format &format)
{
    if (isEfi(device))
        return device.partition->type;
    return std::string(device.disk->scheme == "GUID_partition_scheme" ? format.gptType : format.mbrType);
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
        const Device device = locate(machine, target.identifier(), target.argument);
        name = nameOf(device);
        if (device.mount)
            return;
        if (!isMountable(device))
            throw mountFailure(target.argument, kUnsupported, device);
        if (isEfi(device) && !m_isPrivileged)
            throw mountFailure(target.argument, kNotPermitted, device);
        addMount(json, target.identifier(), m_file.folders().freeMountPoint(machine, name));
    });
    return name;
}

std::string MachineFileActor::unmount(const Target &target, bool isForced)
{
    std::string name;
    m_file.change([&](Json &json, const Machine &machine) {
        const Device device = locate(machine, target.identifier(), target.argument);
        name = nameOf(device);
        if (!device.mount)
            return;
        requirePrivilege(device, [&] {
            return fmt::format("Volume {} on {} failed to unmount\n{}", printable(name), target.argument,
                               kNotPrivileged);
        });
        if (const auto dissenter = dissenterOf(machine, *device.mount, isForced))
            throw ActionError(fmt::format("Volume {} on {} failed to unmount: {}", printable(name), target.argument,
                                          dissent(*dissenter)));
        removeMount(json, target.identifier());
    });
    return name;
}

std::string MachineFileActor::rename(const Target &target, std::string_view name)
{
    std::string label;
    m_file.change([&](Json &json, const Machine &machine) {
        const Device device = locate(machine, target.identifier(), target.argument);
        const std::string fileSystem = fileSystemOf(device);
        if (!isMountable(device) && !fileSystem.starts_with("ext"))
            throw ActionError(fmt::format("Volume on {} failed to rename\n{}", target.argument, kUnsupported));
        requirePrivilege(
            device, [&] { return fmt::format("Volume on {} failed to rename\n{}", target.argument, kNotPrivileged); });
        requireWritable(device);
        label = fittedLabel(name, fileSystem);
        setName(*findObject(json, target.identifier()), label);
    });
    return label;
}

void MachineFileActor::eject(const Target &target)
{
    m_file.change([&](Json &json, const Machine &machine) {
        Device device = locate(machine, target.identifier(), target.argument);
        const std::string &disk = device.disk->identifier;
        const auto mounts = mountsOn(machine, Device{.disk = device.disk});
        for (const Mount &mount : mounts) {
            if (const auto dissenter = dissenterOf(machine, mount, false))
                throw ActionError(fmt::format("Unmount of {} failed: at least one volume could not be unmounted\n"
                                              "Unmount was {}",
                                              disk, dissent(*dissenter)));
            removeMount(json, mount.carrier);
        }
        const std::string holder = holderOn(machine, Device{.disk = device.disk});
        if (!holder.empty())
            throw ActionError(fmt::format("Ejection of {} failed: {}", disk, holder));
        unplug(json, disk);
    });
}

Erased MachineFileActor::eraseVolume(const Target &target, const Format &format, std::string_view name)
{
    Erased erased;
    m_file.change([&](Json &json, const Machine &machine) {
        const Device device = locate(machine, target.identifier(), target.argument);
        requireVolumeFor(format, device, target.argument);
        requireErasable(device);
        const std::vector<Mount> ended = unmountToErase(json, machine, device);
        erased.label = fittedLabel(name, format.fileSystem);
        erased.identifier = eraseOne(json, device, format, erased.label);
        erased.sizeBytes = device.partition ? device.partition->sizeBytes : device.disk->sizeBytes;
        erased.isMounted = device.mount || !isEfi(device);
        if (erased.isMounted)
            addMount(json, erased.identifier, m_file.folders().freeMountPoint(machine, erased.label, ended));
    });
    return erased;
}

Erased MachineFileActor::eraseDisk(const Target &target, const Format &format, std::string_view name)
{
    Erased erased;
    m_file.change([&](Json &json, const Machine &machine) {
        const Device device = locate(machine, target.identifier(), target.argument);
        if (device.partition || device.container)
            throw ActionError(fmt::format("{} is not a whole disk: use eraseVolume", target.argument));
        requireErasable(device);
        if (device.disk->sizeBytes < kSmallestDiskBytes)
            throw ActionError(fmt::format("{} is too small for an EFI partition and a volume", target.argument));
        const std::vector<Mount> ended = unmountToErase(json, machine, device);
        erased.label = fittedLabel(name, format.fileSystem);
        Json &partition = makeTable(*findObject(json, device.disk->identifier), format);
        erased.sizeBytes = partition.at("sizeBytes").get<std::uint64_t>();
        erased.isMounted = true;
        erased.identifier = tools::format(json, partition, format, erased.label);
        addMount(json, erased.identifier, m_file.folders().freeMountPoint(machine, erased.label, ended));
    });
    return erased;
}

void MachineFileActor::requireErasable(const Device &device) const
{
    requirePrivilege(device, [] { return std::string(kCantOpen); });
    requireWritable(device);
}

void MachineFileActor::requirePrivilege(const Device &device, const std::function<std::string()> &refusal) const
{
    if (!m_isPrivileged && needsPrivilege(device))
        throw ActionError(refusal());
}

bool hasSimulatedPrivilege()
{
    const char *const value = std::getenv(kPrivilegeVariable);
    return value && value == "1"sv;
}

} // namespace brindle::tools
