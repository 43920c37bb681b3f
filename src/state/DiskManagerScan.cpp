#include "state/DiskManager.h"

#include "base/Error.h"
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
    DiskutilListSections sections;
    std::size_t next = 0;
    std::vector<PhysicalDisk> records;
};

QCoro::Task<> DiskManager::startScan(bool force)
{
    m_refreshToken.cancel();
    if (force && m_isLoadingDisks) {
        // The cancelled scan's tools are given time to end.
        auto pause = m_scheduler.sleep(200ms);
        co_await pause;
    }
    const auto token = CancellationToken::cancellable();
    m_refreshToken = token;
    auto scan = spawn([this, force, token] { return scanDisks(force, token); });
    co_await scan;
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

    Log::line("   ➡️ Fetching disk list");
    auto listing = m_diskDetector.listPhysicalDisks(token);
    std::vector<std::string> identifiers = co_await listing;
    Log::line("   ✅ Disk list fetched: {} disks", identifiers.size());
    if (token.isCancelled()) {
        Log::line("   ❌ Task cancelled before processing disks");
        co_return;
    }
    if (identifiers.empty()) {
        setDisks({});
        setIsLoadingDisks(false);
        setHasCompletedInitialScan(true);
        Log::line("   ⚠️ No disks found, exiting scan");
        co_return;
    }

    Log::line("   ➡️ Running diskutil list");
    auto listText = textOf(m_paths.diskutil(), {"list"}, token);
    DiskutilListSections sections = parseDiskutilListSections(co_await listText);
    Log::line("   ✅ diskutil list finished");

    Log::line("   ➡️ Processing disks in parallel");
    auto processing = processDisks(std::move(identifiers), std::move(sections), token);
    std::vector<PhysicalDisk> disks = co_await processing;
    Log::line("   ✅ Processing disks finished");
    if (token.isCancelled()) {
        Log::line("   ❌ Task cancelled after processing disks");
        co_return;
    }
    Log::line("✅ Disk scan completed in {:.2f}s", std::chrono::duration<double>(m_scheduler.date() - start).count());
    publishDisks(std::move(disks));
}

QCoro::Task<std::string> DiskManager::textOf(std::string tool, std::vector<std::string> arguments,
                                             CancellationToken token)
{
    try {
        auto run = m_tools.run(std::move(tool), std::move(arguments), {}, std::move(token));
        co_return co_await run;
    } catch (const Error &) {
        co_return std::string();
    }
}

QCoro::Task<std::vector<PhysicalDisk>> DiskManager::processDisks(std::vector<std::string> identifiers,
                                                                 DiskutilListSections sections, CancellationToken token)
{
    ScanBatch batch{.identifiers = std::move(identifiers), .sections = std::move(sections)};
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
        auto reading =
            processDisk(identifier, section == batch->sections.end() ? std::string() : section->second, token);
        if (std::optional<PhysicalDisk> disk = co_await reading)
            batch->records.push_back(std::move(*disk));
    }
}

QCoro::Task<std::optional<PhysicalDisk>> DiskManager::processDisk(std::string identifier, std::string section,
                                                                  CancellationToken token)
{
    auto reading = m_diskDetector.diskRecord(identifier, section, token);
    std::optional<PhysicalDisk> disk = (co_await reading).disk;
    if (!disk)
        co_return std::nullopt;

    auto partitions = m_efiPartitionReader.efiPartitions(identifier, section, token);
    disk->efiPartitions = co_await partitions;
    if (!disk->mediaUUID && !disk->efiPartitions.empty())
        disk->mediaUUID = disk->efiPartitions.front().mediaUUID;
    co_return std::move(disk);
}

void DiskManager::publishDisks(std::vector<PhysicalDisk> disks)
{
    setDisks(std::move(disks));
    setIsLoadingDisks(false);
    setHasCompletedInitialScan(true);
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
