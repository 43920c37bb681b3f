#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "base/Error.h"
#include "base/FileExists.h"
#include "base/Log.h"
#include "records/FindDisk.h"
#include "records/Preferences.h"
#include "sysinfo/SystemInfoDetector.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;

namespace {

// The first that exists is opened.
constexpr std::array kConfigPaths{"EFI/OC/config.plist", "EFI/CLOVER/config.plist"};

} // namespace

QCoro::Task<std::optional<std::string>> configPlistAt(std::string mountPoint)
{
    for (const char *path : kConfigPaths) {
        const std::string file = std::filesystem::path(mountPoint) / path;
        auto looking = fileExists(file);
        if (co_await looking)
            co_return file;
    }
    co_return std::nullopt;
}

QCoro::Task<> DiskManager::mountEFI(std::string identifier, std::string diskName)
{
    auto mounting = m_efiOperations.mount(identifier, std::move(diskName));
    co_await mounting;
    auto updating = updateEFIPartitionState(identifier);
    co_await updating;
    persistState();
    if (!isOn(m_defaults, DefaultsKeys::kAutoOpenConfigOnMount))
        co_return;
    auto opening = openConfigPlist(identifier);
    co_await opening;
}

QCoro::Task<> DiskManager::updateEFIPartitionState(std::string identifier)
{
    Log::line("🔄 Updating EFI partition state for {}", identifier);
    auto reading = m_efiOperations.partitionInfo(identifier);
    const std::optional<EFIPartition> partition = co_await reading;
    if (!partition)
        co_return;
    auto replacing = replaceEFIPartition(*partition);
    co_await replacing;
}

QCoro::Task<> DiskManager::replaceEFIPartition(EFIPartition partition)
{
    const auto renewed = [&](const PhysicalDisk *found) {
        PhysicalDisk disk = *found;
        std::ranges::replace(disk.efiPartitions, partition.identifier, partition, &EFIPartition::identifier);
        return disk;
    };
    const PhysicalDisk *place = findDiskOfEFIPartition(m_disks, partition.identifier);
    if (!place)
        co_return;
    auto detection = bootloaderFlags(renewed(place));
    const BootloaderFlags flags = co_await detection;
    Log::line("   🔍 Bootloader re-detection — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover);
    place = findDiskOfEFIPartition(m_disks, partition.identifier);
    if (!place)
        co_return;
    PhysicalDisk disk = renewed(place);
    disk.hasOpenCore = flags.hasOpenCore;
    disk.hasClover = flags.hasClover;
    m_disks[static_cast<std::size_t>(place - m_disks.data())] = disk;
    Q_EMIT disksChanged();
    setEFIState(disk.identifier, mountedEFIPartition(disk) != nullptr);
    Q_EMIT changed();
    Log::line("✅ EFI state updated: {} mounted={}", partition.identifier, partition.isMounted);
}

QCoro::Task<> DiskManager::openConfigPlist(std::string identifier)
{
    const PhysicalDisk *const disk = findDiskOfEFIPartition(m_disks, identifier);
    const auto mountPoint = disk ? findEFIPartition(*disk, identifier)->mountPoint : std::nullopt;
    if (!mountPoint) {
        Log::line("   ⚠️ Auto-open config.plist: couldn't resolve mount point for {}", identifier);
        co_return;
    }
    const std::string diskName = disk->name;
    auto looking = configPlistAt(*mountPoint);
    const std::optional<std::string> path = co_await looking;
    if (!path) {
        Log::line("   ⚠️ No config.plist found in OC or CLOVER folders for {}", diskName);
        co_return;
    }
    Log::line("   📄 Auto-opening config.plist at {}", *path);
    m_workspace.openFile(*path);
}

QCoro::Task<std::string> DiskManager::ejectDisk(std::string identifier)
{
    auto lettingGo = letDiskGo(std::move(identifier));
    std::string output = co_await lettingGo;
    auto pause = m_scheduler.sleep(500ms); // the system takes notice of what has gone
    co_await pause;
    auto refreshing = refresh(false);
    co_await refreshing;
    co_return output;
}

QCoro::Task<std::string> DiskManager::letDiskGo(std::string identifier)
{
    Log::line("🔄 Ejecting disk: {}", identifier);
    const UnfinishedWork::Piece piece(m_unfinishedWork);
    const PhysicalDisk *const disk = findDisk(m_disks, identifier);
    const bool hadMountedEFI = disk && mountedEFIPartition(*disk);
    auto ejecting = m_tools.run(m_paths.diskutil(), {"eject", identifier});
    std::string output = co_await ejecting;
    forgetDisk(identifier);
    if (hadMountedEFI)
        Log::line("   📢 Disk with mounted EFI ejected — forcing icon update");
    co_return output;
}

void DiskManager::setEFIState(const std::string &identifier, bool isMounted)
{
    m_efiStates[identifier] = isMounted;
    Q_EMIT efiStatesChanged();
}

void DiskManager::forgetDisk(const std::string &identifier)
{
    std::vector<PhysicalDisk> disks = m_disks;
    std::erase_if(disks, [&](const PhysicalDisk &disk) { return disk.identifier == identifier; });
    setDisks(std::move(disks));
    std::set<std::string> expandedDisks = m_expandedDisks;
    expandedDisks.erase(identifier);
    setExpandedDisks(std::move(expandedDisks));
    m_efiStates.erase(identifier);
    Q_EMIT efiStatesChanged();
    Q_EMIT changed();
    persistState();
}

QCoro::Task<> DiskManager::requireVolumeOn(std::string diskIdentifier, std::string volume)
{
    auto asking = m_tools.outputIfAny(m_paths.diskutil(), {"info", volume});
    const std::optional<std::string> info = co_await asking;
    const auto carrier = info ? SystemInfoDetector::readBootDisk(*info).identifier : std::nullopt;
    if (carrier && !carrier->empty() && *carrier != diskIdentifier)
        throw Error("DiskManager", 1, fmt::format("\"{}\" is on {}, not on {}", volume, *carrier, diskIdentifier));
}

QCoro::Task<> DiskManager::formatEFIPartition(std::string identifier, std::string name)
{
    return erase({"eraseVolume", "FAT32", std::move(name), std::move(identifier)});
}

QCoro::Task<> DiskManager::eraseVolume(std::string identifier, std::string name, std::string format)
{
    return erase({"eraseVolume", std::move(format), std::move(name), std::move(identifier)});
}

QCoro::Task<> DiskManager::eraseDisk(std::string identifier, std::string name, std::string format)
{
    return erase({"eraseDisk", std::move(format), std::move(name), "GPT", std::move(identifier)});
}

QCoro::Task<> DiskManager::erase(std::vector<std::string> arguments)
{
    auto erasing = m_keychain.runPrivileged(m_paths.diskutil(), std::move(arguments));
    co_await erasing;
    auto pause = m_scheduler.sleep(1500ms); // the system settles
    co_await pause;
    auto scan = startScan(false);
    co_await scan;
}

} // namespace brindle
