#include "kernel/acting/KernelActor.h"

#include "acting/ActionWords.h"
#include "acting/DeviceFacts.h"
#include "acting/VolumeLabel.h"
#include "inventory/Identifier.h"
#include "kernel/PartitionTypes.h"
#include "kernel/acting/DiskUse.h"
#include "kernel/acting/FileSystemPrograms.h"
#include "kernel/acting/IgnoredTermination.h"
#include "kernel/acting/Signatures.h"
#include "kernel/acting/TableWriter.h"

#include <fmt/format.h>

#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <ranges>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kSector = 512; // sysfs counts in these, whatever the disk's blocks are.

std::uint64_t sizeOf(const LiveDevice &live, const BlockDevice &device)
{
    return live.devices().number(device, "size") * kSector;
}

/// The device of a partition that the kernel was told of since the devices were read.
BlockDevice newPartition(const BlockDevice &disk, int number)
{
    const bool endsWithDigit = std::isdigit(static_cast<unsigned char>(disk.name.back())) != 0;
    BlockDevice device{.name = fmt::format("{}{}{}", disk.name, endsWithDigit ? "p" : "", number)};
    device.path = disk.path + '/' + device.name;
    device.parent = disk.name;
    return device;
}

/// Tries again while somebody still reads the device. Gives 0 or errno's number.
int whileBusy(const std::function<int()> &call)
{
    using namespace std::chrono_literals;
    constexpr int kTries = 100;
    int error = call();
    for (int tries = 0; error == EBUSY && tries < kTries; ++tries) {
        std::this_thread::sleep_for(50ms);
        error = call();
    }
    return error;
}

} // namespace

Erased KernelActor::eraseVolume(const Target &target, const Format &format, std::string_view name,
                                const Announce &announce)
{
    requireVolumeFor(format, target);
    (void)m_roots.programs.require(makerOf(format));
    const LiveDevice live(m_kernel, target);
    const bool wasMounted = target.device.mount != nullptr;
    Erased erased{.identifier = target.identifier(),
                  .label = fittedLabel(name, format.fileSystem),
                  .sizeBytes = sizeOf(live, live.device())};
    endMountsToErase(live, target);
    {
        const Descriptor lock = live.lock(m_calls);
        const IgnoredTermination untilItIsWhole;
        {
            const Descriptor volume = live.open(live.device(), O_RDWR | O_EXCL, m_calls);
            setType(live, target.device, format);
        }
        announce(erased);
        makeFileSystem(live, live.device(), format, erased.label);
    }
    letUdevRead(live, {live.disk(), live.device()});
    if (wasMounted || !isEfi(target.device))
        erased.isMounted = tryToMount(live, live.device(), format.fileSystem, erased.label) == 0;
    return erased;
}

Erased KernelActor::eraseDisk(const Target &target, const Format &format, std::string_view name,
                              const Announce &announce)
{
    requireDiskForTable(format, target);
    const Format &efiFormat = *findFormat("FAT32");
    (void)m_roots.programs.require(makerOf(format));
    (void)m_roots.programs.require(makerOf(efiFormat));
    const LiveDevice live(m_kernel, target);
    endMountsToErase(live, target);
    const auto layout = erasedLayout(sizeOf(live, live.disk()), gptTypeCode(format.gptType));
    const BlockDevice efi = newPartition(live.disk(), layout.front().extent.number);
    const BlockDevice volume = newPartition(live.disk(), layout.back().extent.number);
    Erased erased{.identifier = live.identifierOf(volume),
                  .label = fittedLabel(name, format.fileSystem),
                  .sizeBytes = layout.back().extent.sizeBytes};
    {
        const Descriptor lock = live.lock(m_calls);
        const IgnoredTermination untilItIsWhole;
        makeTable(live, layout);
        makeFileSystem(live, efi, efiFormat, "EFI");
        announce(erased);
        makeFileSystem(live, volume, format, erased.label);
    }
    letUdevRead(live, {live.disk(), efi, volume});
    erased.isMounted = tryToMount(live, volume, format.fileSystem, erased.label) == 0;
    return erased;
}

/// Looks first, so that nothing is unmounted where the erase is refused.
void KernelActor::endMountsToErase(const LiveDevice &live, const Target &target)
{
    if (live.devices().number(live.disk(), "ro") != 0)
        throw ActionError(fmt::format("{} is read-only", live.identifierOf(live.disk())));
    requireUnused(live, swaps());
    (void)live.open(live.device(), O_RDWR, m_calls); // Who may not write is told so before anything is unmounted.
    for (const CarriedMount &mount : live.mounts() | std::views::reverse) {
        try {
            endMount(target, mount, false);
        } catch (const ActionError &error) {
            throw eraseRefusal(error.what());
        }
    }
}

void KernelActor::makeTable(const LiveDevice &live, const std::vector<NewPartition> &partitions)
{
    const Descriptor disk = live.open(live.disk(), O_RDWR | O_EXCL, m_calls);
    const auto sectorBytes = live.devices().number(live.disk(), "queue/logical_block_size");
    TableWriter writer(disk.get(), sizeOf(live, live.disk()),
                       static_cast<unsigned>(sectorBytes ? sectorBytes : kSector));
    writer.makeTable(partitions);
    wipeSignatures(disk.get(), true);
    ::fsync(disk.get());
    activate(live, disk.get(), partitions);
}

/// Tells the kernel of the new partitions: by itself it reads a table only where it knows its kind.
void KernelActor::activate(const LiveDevice &live, int disk, const std::vector<NewPartition> &partitions)
{
    const auto check = [](int error) {
        if (error != 0)
            throw ActionError(
                fmt::format("The kernel did not take the new partitions: {}\n{}", std::strerror(error), kCantOpen));
    };
    for (const BlockDevice *old : live.devices().partitionsOf(live.disk()))
        check(whileBusy([&] { return m_calls.removePartition(disk, static_cast<int>(old->partitionNumber())); }));
    for (const NewPartition &partition : partitions)
        check(whileBusy([&] { return m_calls.addPartition(disk, partition.extent); }));
}

void KernelActor::makeFileSystem(const LiveDevice &live, const BlockDevice &device, const Format &format,
                                 const std::string &label)
{
    {
        const Descriptor volume = live.open(device, O_RDWR | O_EXCL, m_calls);
        wipeSignatures(volume.get(), false);
        ::fsync(volume.get());
    }
    const std::string program = m_roots.programs.require(makerOf(format));
    m_roots.programs.run(program, makerArguments(format, label, live.devices().file(device)));
}

/// Gives the partition the type that its new file system has in its table.
void KernelActor::setType(const LiveDevice &live, const Device &device, const Format &format)
{
    const std::string &scheme = device.disk->scheme;
    const std::string name = typeFor(device, format);
    const bool isGpt = scheme == "GUID_partition_scheme";
    if (!device.partition || device.partition->type == name || (!isGpt && scheme != "FDisk_partition_scheme"))
        return;
    const Descriptor disk = live.open(live.disk(), O_RDWR, m_calls);
    const auto sectorBytes = live.devices().number(live.disk(), "queue/logical_block_size");
    TableWriter writer(disk.get(), sizeOf(live, live.disk()),
                       static_cast<unsigned>(sectorBytes ? sectorBytes : kSector));
    writer.setType(static_cast<unsigned>(live.device().partitionNumber()),
                   isGpt ? gptTypeCode(name) : mbrTypeCode(name));
}

/// Has udev look at what was changed and waits, so that who asks next is told of it.
void KernelActor::letUdevRead(const LiveDevice &live, const std::vector<BlockDevice> &changed) const
{
    const std::string udevadm = m_roots.programs.find("udevadm");
    if (udevadm.empty())
        return;
    for (const BlockDevice &device : changed) {
        const Descriptor event(live.devices().roots().sys + device.path + "/uevent", O_WRONLY);
        if (event.isValid())
            (void)!::write(event.get(), "change", 6);
    }
    try {
        m_roots.programs.run(udevadm, {"settle", "--timeout=10"});
    } catch (const ActionError &) {
        // Where udev doesn't run, or is slow, the device itself tells.
    }
}

} // namespace brindle::tools
