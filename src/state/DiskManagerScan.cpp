#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"
#include "base/NaturalOrder.h"
#include "base/Spawn.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;

/// What the disks that are read side by side share: the ones still to begin, and the records in order of completion.
struct DiskManager::ScanBatch {
    std::vector<std::string> identifiers;
    DiskUsage usage;
    DiskutilListSections sections;
    std::size_t next = 0;
    std::vector<PhysicalDisk> records;
};

QCoro::Task<> DiskManager::refresh(bool force)
{
    const auto last = lastRefreshTime();
    // A clock that was put back leaves a date in the future: that is no recent scan.
    if (!force && last && std::chrono::abs(m_scheduler.date() - *last) < kMinimumManualRefresh) {
        Log::line("⏸️ Throttling manual refresh");
        co_return;
    }
    auto scan = startScan(false);
    co_await scan;
}

QCoro::Task<> DiskManager::startScan(bool force)
{
    m_refreshToken.cancel();
    if (m_scansUnderWay++ == 0)
        m_scansEnded = Completion<bool>();
    if (force && m_isLoadingDisks) {
        // The cancelled scan's tools are given time to end.
        auto pause = m_scheduler.sleep(200ms);
        co_await pause;
    }
    const auto token = CancellationToken::cancellable();
    m_refreshToken = token;
    auto scan = spawn([this, force, token] { return scanDisks(force, token); });
    co_await scan;
    if (--m_scansUnderWay == 0)
        m_scansEnded.complete(true);
}

QCoro::Task<> DiskManager::stopScan()
{
    m_refreshToken.cancel();
    if (m_scansUnderWay == 0)
        co_return;
    const Completion<bool> ended = m_scansEnded;
    co_await ended;
}

QCoro::Task<> DiskManager::scanDisks(bool force, CancellationToken token)
{
    if (token.isCancelled())
        co_return;
    if (!force && m_isLoadingDisks) {
        Log::line("   ⏸️ Scan already in progress, skipping");
        co_return;
    }
    setIsLoadingDisks(true);
    const auto start = m_scheduler.date();

    auto detection = detectSystemInfo();
    co_await detection;
    Log::line("   ➡️ Fetching disk list");
    auto listing = m_diskDetector.listPhysicalDisks(token);
    std::vector<std::string> identifiers = co_await listing;
    Log::line("   ✅ Disk list fetched: {} disks", identifiers.size());
    if (token.isCancelled()) {
        Log::line("   ❌ Task cancelled before processing disks");
        co_return;
    }
    if (identifiers.empty()) {
        endWithoutDisks();
        co_return;
    }
    m_bootloaderDetector.forgetScans();
    syncBootloaderInfo();
    auto usageReading = readUsage(token);
    DiskUsage usage = co_await usageReading;
    auto sectionsReading = readSections(token);
    DiskutilListSections sections = co_await sectionsReading;
    Log::line("   ➡️ Processing disks in parallel");
    auto processing = processDisks(std::move(identifiers), std::move(usage), std::move(sections), token);
    std::vector<PhysicalDisk> disks = co_await processing;
    Log::line("   ✅ Processing disks finished");
    if (token.isCancelled()) {
        Log::line("   ❌ Task cancelled after processing disks");
        co_return;
    }
    Log::line("✅ Disk scan completed in {:.2f}s", std::chrono::duration<double>(m_scheduler.date() - start).count());
    publishDisks(std::move(disks));
}

QCoro::Task<> DiskManager::detectSystemInfo()
{
    if (m_systemInfoDetector.isDetectionComplete())
        co_return;
    Log::line("   ➡️ Starting system info detection");
    auto detection = m_systemInfoDetector.refreshBootInfo();
    co_await detection;
    Log::line("   ✅ System info detection finished");
}

QCoro::Task<DiskUsage> DiskManager::readUsage(CancellationToken token)
{
    Log::line("   ➡️ Running df -k");
    auto reading = m_tools.outputIfAny(m_paths.df(), {"-k"}, {}, token);
    const std::optional<std::string> text = co_await reading;
    Log::line("   ✅ df -k finished");
    co_return parseDfOutput(text.value_or(""));
}

QCoro::Task<DiskutilListSections> DiskManager::readSections(CancellationToken token)
{
    Log::line("   ➡️ Running diskutil list");
    auto reading = m_tools.outputIfAny(m_paths.diskutil(), {"list"}, {}, token);
    const std::optional<std::string> text = co_await reading;
    Log::line("   ✅ diskutil list finished");
    co_return parseDiskutilListSections(text.value_or(""));
}

QCoro::Task<std::vector<PhysicalDisk>> DiskManager::processDisks(std::vector<std::string> identifiers, DiskUsage usage,
                                                                 DiskutilListSections sections, CancellationToken token)
{
    ScanBatch batch{.identifiers = std::move(identifiers), .usage = std::move(usage), .sections = std::move(sections)};
    std::vector<QCoro::Task<>> children;
    for (std::size_t i = 0; i < std::min(kMaxConcurrentScans, batch.identifiers.size()); ++i)
        children.push_back(processNextDisks(&batch, token));
    auto all = joinAll(std::move(children));
    co_await all;

    std::erase_if(batch.records, [this](const PhysicalDisk &disk) { return !isDiskVisible(disk); });
    std::sort(batch.records.begin(), batch.records.end(), standsBefore);
    Log::line("✅ Processed {} visible disks", batch.records.size());
    co_return std::move(batch.records);
}

QCoro::Task<> DiskManager::processNextDisks(ScanBatch *batch, CancellationToken token)
{
    while (batch->next < batch->identifiers.size()) {
        const std::string identifier = batch->identifiers[batch->next++];
        const auto section = batch->sections.find(identifier);
        auto reading = processDisk(identifier, &batch->usage,
                                   section == batch->sections.end() ? std::string() : section->second, token);
        if (std::optional<PhysicalDisk> disk = co_await reading)
            batch->records.push_back(std::move(*disk));
    }
}

QCoro::Task<std::optional<PhysicalDisk>> DiskManager::processDisk(std::string identifier, const DiskUsage *usage,
                                                                  std::string section, CancellationToken token)
{
    auto reading = m_diskDetector.diskRecord(identifier, section, token);
    DiskDetector::DiskRecord record = co_await reading;
    if (!record.disk)
        co_return std::nullopt;
    PhysicalDisk disk = std::move(*record.disk);

    auto detection = m_filesystemDetector.detectFilesystems(identifier, std::move(record.info), section, token);
    const FilesystemFlags flags = co_await detection;
    disk.hasMacOS = flags.hasMacOS;
    disk.hasWindows = flags.hasWindows;
    disk.hasLinux = flags.hasLinux;
    disk.hasExFAT = flags.hasExFAT;

    auto partitions = m_efiOperations.efiPartitions(identifier, section, token);
    disk.efiPartitions = co_await partitions;
    disk.isBootDisk = m_cachedBootloaderInfo && m_cachedBootloaderInfo->bootDisk == identifier;
    auto loaders = bootloaderFlags(disk);
    const BootloaderFlags found = co_await loaders;
    disk.hasOpenCore = found.hasOpenCore;
    disk.hasClover = found.hasClover;

    const SpaceFigures space = spaceFigures(identifier, containerDisks(section), *usage);
    disk.usedSpaceBytes = space.usedSpaceBytes;
    disk.totalSpaceBytes = space.totalSpaceBytes;
    if (!disk.mediaUUID && !disk.efiPartitions.empty())
        disk.mediaUUID = disk.efiPartitions.front().mediaUUID;
    co_return disk;
}

QCoro::Task<BootloaderFlags> DiskManager::bootloaderFlags(const PhysicalDisk &disk)
{
    const bool isBootloaderDisk = m_cachedBootloaderInfo && m_cachedBootloaderInfo->bootloaderDisk == disk.identifier;
    const EFIPartition *mounted = mountedEFIPartition(disk);
    return m_bootloaderDetector.detectBootloaders(disk.identifier, disk.isBootDisk, isBootloaderDisk,
                                                  mounted != nullptr, mounted ? mounted->mountPoint : std::nullopt);
}

void DiskManager::syncBootloaderInfo()
{
    BootloaderInfo info{.bootDisk = m_systemInfoDetector.bootDiskIdentifier(),
                        .bootloaderDisk = m_systemInfoDetector.bootloaderDiskIdentifier(),
                        .openCore = m_systemInfoDetector.openCoreVersion(),
                        .clover = m_systemInfoDetector.cloverVersion()};
    if (m_cachedBootloaderInfo == info)
        return;
    m_bootloaderDetector.bootDiskIdentifier = info.bootDisk;
    m_bootloaderDetector.bootloaderDiskIdentifier = info.bootloaderDisk;
    m_bootloaderDetector.openCoreVersion = info.openCore;
    m_bootloaderDetector.cloverVersion = info.clover;
    Log::line("🔄 Synced bootloader info: boot={} loader={} OC={} Clover={}", info.bootDisk.value_or("?"),
              info.bootloaderDisk.value_or("same"), info.openCore.value_or("none"), info.clover.value_or("none"));
    m_cachedBootloaderInfo = std::move(info);
}

void DiskManager::endWithoutDisks()
{
    setDisks({});
    setIsLoadingDisks(false);
    setHasCompletedInitialScan(true);
    Log::line("   ⚠️ No disks found, exiting scan");
}

void DiskManager::publishDisks(std::vector<PhysicalDisk> disks)
{
    std::set<std::string> knownIdentifiers;
    for (const PhysicalDisk &disk : m_disks)
        knownIdentifiers.insert(disk.identifier);
    setDisks(std::move(disks));
    closeRowsOfMissingDisks();
    persistState();
    updateEFIStates();
    if (m_mountsMarkedDisks && m_hasCompletedInitialScan)
        autoMountNewDisks(knownIdentifiers);
    setIsLoadingDisks(false);
    setHasCompletedInitialScan(true);
    m_defaults.set(DefaultsKeys::kLastRefreshTime, m_scheduler.date());
}

void DiskManager::closeRowsOfMissingDisks()
{
    std::set<std::string> stillThere;
    for (const PhysicalDisk &disk : m_disks) {
        if (m_expandedDisks.contains(disk.identifier))
            stillThere.insert(disk.identifier);
    }
    setExpandedDisks(std::move(stillThere));
}

bool standsBefore(const PhysicalDisk &left, const PhysicalDisk &right)
{
    if (left.isBootDisk != right.isBootDisk)
        return left.isBootDisk;
    if (left.hasOpenCore != right.hasOpenCore)
        return left.hasOpenCore;
    if (left.hasClover != right.hasClover)
        return left.hasClover;
    return naturallyLess(left.identifier, right.identifier);
}

} // namespace brindle
