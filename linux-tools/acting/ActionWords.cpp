#include "acting/ActionWords.h"

#include "acting/DeviceFacts.h"
#include "text/Words.h"

#include <fmt/format.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kTryDisk = "If it has a partitioning scheme, use \"diskutil mountDisk\"";
constexpr std::string_view kTryReadOnly =
    "If you think the volume is supported but damaged, try the \"readOnly\" option";

std::string dissent(const Dissenter &dissenter)
{
    return fmt::format("dissented by PID {} ({})\nDissenter parent PPID {} ({})", dissenter.pid,
                       printable(dissenter.program), dissenter.parentPid, printable(dissenter.parent));
}

/// Of a disk that is given a table: the EFI partition, and the megabyte before and behind the partitions.
constexpr std::uint64_t kBytesBesideVolume = 202 * 1024 * 1024;

void requireRoomFor(const Format &format, const Target &target, std::uint64_t sizeBytes)
{
    if (sizeBytes < format.smallestBytes)
        throw ActionError(fmt::format("{} is too small for {}, which needs {}", target.argument, format.title,
                                      sizeText(format.smallestBytes)));
}

} // namespace

Dissenter systemDissenter()
{
    return {0, "kernel"};
}

ActionError diskNotFound(std::string_view argument)
{
    return ActionError(fmt::format("Unable to find disk for {}", printable(argument)));
}

ActionError mountFailure(const Target &target, std::string_view reason)
{
    const std::string advice = isWholeWithTable(target.device) ? std::string(kTryDisk) + '\n' : std::string();
    return ActionError(
        fmt::format("Volume on {} failed to mount\n{}\n{}{}", target.argument, reason, advice, kTryReadOnly));
}

ActionError unmountRefusal(const Target &target, std::string_view volumeName, std::string_view reason)
{
    return ActionError(
        fmt::format("Volume {} on {} failed to unmount\n{}", printable(volumeName), target.argument, reason));
}

ActionError unmountDissent(const Target &target, std::string_view volumeName, const Dissenter &dissenter)
{
    return ActionError(fmt::format("Volume {} on {} failed to unmount: {}", printable(volumeName), target.argument,
                                   dissent(dissenter)));
}

ActionError renameFailure(const Target &target, std::string_view reason)
{
    return ActionError(fmt::format("Volume on {} failed to rename\n{}", target.argument, reason));
}

ActionError ejectDissent(std::string_view disk, const Dissenter &dissenter)
{
    return ActionError(fmt::format("Unmount of {} failed: at least one volume could not be unmounted\nUnmount was {}",
                                   disk, dissent(dissenter)));
}

ActionError ejectFailure(std::string_view disk, std::string_view reason)
{
    return ActionError(fmt::format("Ejection of {} failed: {}", disk, reason));
}

std::string inUse(std::string_view identifier, std::string_view holder)
{
    return fmt::format("{} is in use by {}", identifier, printable(holder));
}

ActionError eraseRefusal(std::string_view reason)
{
    return ActionError(fmt::format("{}{}{}", reason, reason.empty() ? "" : "\n", kCantUnmount));
}

void requireWritable(const Device &device)
{
    if (device.disk->isReadOnly)
        throw ActionError(fmt::format("{} is read-only", device.disk->identifier));
}

void requireVolumeFor(const Format &format, const Target &target)
{
    const Device &device = target.device;
    if (isWholeWithTable(device) || (device.container && !device.apfsVolume))
        throw ActionError(fmt::format("{} is not a volume: use eraseDisk for a whole disk", target.argument));
    if (isEfi(device) && format.fileSystem == "apfs")
        throw ActionError(fmt::format("{} is an EFI partition, which can't be erased to APFS", target.argument));
    if (!device.container)
        requireRoomFor(format, target, device.partition ? device.partition->sizeBytes : device.disk->sizeBytes);
}

void requireDiskForTable(const Format &format, const Target &target)
{
    const Device &device = target.device;
    if (device.partition || device.container)
        throw ActionError(fmt::format("{} is not a whole disk: use eraseVolume", target.argument));
    if (device.disk->sizeBytes < kSmallestDiskBytes)
        throw ActionError(fmt::format("{} is too small for an EFI partition and a volume", target.argument));
    requireRoomFor(format, target, device.disk->sizeBytes - kBytesBesideVolume);
}

} // namespace brindle::tools
