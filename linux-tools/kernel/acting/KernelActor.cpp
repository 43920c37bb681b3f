#include "kernel/acting/KernelActor.h"

#include "acting/ActionWords.h"
#include "acting/DeviceFacts.h"
#include "acting/VolumeLabel.h"
#include "inventory/Identifier.h"
#include "kernel/DiskQualities.h"
#include "kernel/UDisksModule.h"
#include "kernel/acting/DiskUse.h"
#include "kernel/acting/Dissenters.h"
#include "kernel/acting/FileSystemPrograms.h"
#include "kernel/acting/IgnoredTermination.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ranges>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

struct Mountable {
    std::string_view fileSystem; ///< libblkid's name.
    std::string_view kernelName;
    bool hasOwners = false; ///< Its files tell to whom they belong.
};

// Of two with one name the first that the kernel has is taken.
constexpr std::array kMountables{
    Mountable{"vfat", "vfat"},       Mountable{"exfat", "exfat"},     Mountable{"ntfs", "ntfs3"},
    Mountable{"ntfs", "ntfs"},       Mountable{"hfsplus", "hfsplus"}, Mountable{"hfs", "hfs"},
    Mountable{"ext2", "ext2", true}, Mountable{"ext3", "ext3", true}, Mountable{"ext4", "ext4", true},
    Mountable{"iso9660", "iso9660"}, Mountable{"udf", "udf"},
};

bool isRefusedByRights(int error)
{
    return error == EPERM || error == EACCES;
}

/// Why a mount failed.
std::string mountReason(int error, const Device &device)
{
    if (error == ENODEV)
        return std::string(kUnsupported);
    if (isRefusedByRights(error))
        return std::string(isEfi(device) ? kNotPermitted : kNotPrivileged);
    return fmt::format("The kernel says: {}", std::strerror(error));
}

void writeFile(const std::string &path, std::string_view text)
{
    const Descriptor file(path, O_WRONLY);
    if (!file.isValid() || ::write(file.get(), text.data(), text.size()) < 0)
        throw ActionError(fmt::format("{}: {}", path, std::strerror(errno)));
}

} // namespace

KernelActor::KernelActor(KernelRoots kernel, ActorRoots roots, KernelCalls &calls)
    : m_kernel(std::move(kernel)),
      m_roots(std::move(roots)),
      m_places(m_roots.media),
      m_calls(calls)
{
}

std::string KernelActor::mount(const Target &target)
{
    const Device &device = target.device;
    std::string name = nameOf(device);
    if (device.mount)
        return name;
    const std::string fileSystem = fileSystemOf(device);
    if (std::ranges::find(kMountables, fileSystem, &Mountable::fileSystem) == kMountables.end())
        throw mountFailure(target, kUnsupported);
    const LiveDevice live(m_kernel, target);
    if (const int error = tryToMount(live, live.device(), fileSystem, name))
        throw mountFailure(target, mountReason(error, device));
    return name;
}

/// Gives 0, or why the kernel refused.
int KernelActor::tryToMount(const LiveDevice &live, const BlockDevice &device, std::string_view fileSystem,
                            std::string_view label)
{
    if (!m_calls.isPrivileged())
        return EPERM;
    const Descriptor held = live.open(device, O_RDONLY, m_calls); // Until it is mounted.
    const VolumeUser user = m_roots.user();
    const std::string place = m_places.make(user, label, live, m_calls);
    const std::string owner = fmt::format("uid={},gid={},umask=077", user.uid, user.gid);
    int error = ENODEV;
    for (const Mountable &mountable : kMountables) {
        if (mountable.fileSystem != fileSystem || error != ENODEV)
            continue;
        error = m_calls.mount({.source = live.devices().file(device),
                               .target = place,
                               .fileSystem = std::string(mountable.kernelName),
                               .options = mountable.hasOwners ? std::string() : owner,
                               .isReadOnly = live.devices().number(live.disk(), "ro") != 0});
    }
    if (error != 0)
        m_places.drop(place);
    return error;
}

std::string KernelActor::unmount(const Target &target, bool isForced)
{
    std::string name = nameOf(target.device);
    if (!target.device.mount)
        return name;
    const LiveDevice live(m_kernel, target);
    const auto mounts = live.mounts();
    const bool hasOwn = std::ranges::any_of(mounts, &CarriedMount::isOwn);
    for (const CarriedMount &mount : mounts | std::views::reverse) {
        // Of what is made of the device only the volume that was named is meant.
        if (hasOwn ? mount.isOwn : mount.entry->mountPoint == target.device.mount->mountPoint)
            endMount(target, mount, isForced);
    }
    return name;
}

void KernelActor::endMount(const Target &target, const CarriedMount &mount, bool isForced)
{
    const std::string &place = mount.entry->mountPoint;
    const std::string name = nameOf(target.device);
    if (isSystemRoot(mount)) // The kernel would only make it read-only.
        throw unmountDissent(target, name, systemDissenter());
    int error = m_calls.unmount(place);
    if (error == EBUSY && isForced && isPassing(place)) {
        const Descriptor folder(place, O_RDONLY | O_DIRECTORY);
        if (folder.isValid())
            ::syncfs(folder.get());
        error = m_calls.detach(place);
    }
    if (isRefusedByRights(error))
        throw unmountRefusal(target, name, kNotPrivileged);
    const auto dissenter = error == EBUSY ? findDissenter(m_roots.processes, place) : std::nullopt;
    if (dissenter)
        throw unmountDissent(target, name, *dissenter);
    if (error != 0)
        throw unmountRefusal(target, name, fmt::format("{}: {}", printable(place), std::strerror(error)));
    m_places.drop(place);
}

std::string KernelActor::rename(const Target &target, std::string_view name)
{
    const std::string fileSystem = fileSystemOf(target.device);
    const auto labeller = labellerOf(fileSystem);
    if (!labeller)
        throw renameFailure(target, kUnsupported);
    const std::string program = m_roots.programs.require(*labeller);
    const LiveDevice live(m_kernel, target);
    const auto mounts = live.mounts();
    const auto isElsewhere = [&](const CarriedMount &mount) {
        return !mount.entry->mountPoint.starts_with(m_roots.media + '/');
    };
    const auto elsewhere = std::ranges::find_if(mounts, isElsewhere);
    if (elsewhere != mounts.end())
        throw renameFailure(target,
                            fmt::format("It is mounted at {}, where only its own name may lead: unmount it first",
                                        printable(elsewhere->entry->mountPoint)));
    const IgnoredTermination untilItIsMountedAgain;
    for (const CarriedMount &mount : mounts | std::views::reverse)
        endMount(target, mount, false);
    const std::string label = fittedLabel(name, fileSystem);
    try {
        const Descriptor lock = live.lock(m_calls);
        (void)live.open(live.device(), O_RDWR | O_EXCL, m_calls); // Nobody else makes use of it.
        m_roots.programs.run(program, labellerArguments(fileSystem, label, live.devices().file(live.device())));
    } catch (const ActionError &error) {
        if (mounts.empty() || mountAgain(live, fileSystem, nameOf(target.device)))
            throw;
        throw ActionError(fmt::format("{}\n{} is not mounted again", error.what(), target.argument));
    }
    letUdevRead(live, {live.device()});
    if (!mounts.empty() && !mountAgain(live, fileSystem, label))
        throw ActionError(fmt::format("Volume on {} renamed to {}, but not mounted again", target.argument, label));
    return label;
}

/// Whether the volume, which was unmounted to be changed, is mounted again.
bool KernelActor::mountAgain(const LiveDevice &live, std::string_view fileSystem, std::string_view label)
{
    try {
        return tryToMount(live, live.device(), fileSystem, label) == 0;
    } catch (const ActionError &) {
        return false; // What was done to the volume tells more.
    }
}

void KernelActor::eject(const Target &target)
{
    const Target whole{target.argument, {.disk = target.device.disk}};
    const LiveDevice live(m_kernel, whole);
    const std::string &disk = whole.identifier();
    const auto mounts = live.mounts();
    if (std::ranges::any_of(mounts, isSystemRoot))
        throw ejectDissent(disk, systemDissenter());
    const std::string holder = holderOf(live, swaps());
    if (!holder.empty())
        throw ejectFailure(disk, holder);
    if (!m_calls.isPrivileged()) {
        ejectAsUser(live, mounts);
        return;
    }
    for (const CarriedMount &mount : mounts | std::views::reverse) {
        if (const auto dissenter = findDissenter(m_roots.processes, mount.entry->mountPoint))
            throw ejectDissent(disk, *dissenter);
        endMount(target, mount, false);
    }
    giveOut(live, live.open(live.disk(), O_RDONLY | O_EXCL, m_calls));
}

void KernelActor::ejectAsUser(const LiveDevice &live, const std::vector<CarriedMount> &mounts) const
{
    std::vector<std::string> mounted;
    for (const CarriedMount &mount : mounts | std::views::reverse) {
        if (std::ranges::find(mounted, mount.carrier->name) == mounted.end())
            mounted.push_back(mount.carrier->name);
    }
    const auto refusal = ejectThroughUDisks(m_kernel.systemBus, live.disk().name, mounted);
    if (!refusal || !refusal->empty())
        throw ejectFailure(live.identifierOf(live.disk()), refusal ? printable(*refusal) : std::string(kNotPrivileged));
}

void KernelActor::giveOut(const LiveDevice &live, const Descriptor &disk)
{
    const BlockDevices &devices = live.devices();
    ::fsync(disk.get());
    if (live.disk().isLoop()) {
        if (const int error = m_calls.detachImage(disk.get()))
            throw ejectFailure(live.identifierOf(live.disk()), std::strerror(error));
        return;
    }
    if (isRemovable(devices, live.disk()) && m_calls.ejectMedium(disk.get()) == 0)
        return;
    // An internal disk stays: it could come back at the next start only.
    const std::string removal = devices.roots().sys + live.disk().path + "/device/delete";
    if (attachmentOf(devices, live.disk()).isExternal && ::access(removal.c_str(), W_OK) == 0)
        writeFile(removal, "1");
}

std::string KernelActor::swaps() const
{
    return fileBytes(m_roots.processes + "/swaps");
}

} // namespace brindle::tools
