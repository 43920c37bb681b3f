#include "state/DiskManager.h"

#include "base/Log.h"
#include "base/Spawn.h"
#include "state/AutoMountMarks.h"

#include <fmt/format.h>

#include <utility>

namespace brindle {

void DiskManager::autoMountNewDisks(const std::set<std::string> &knownIdentifiers)
{
    const AutoMountMarks marks = autoMountMarks(m_defaults);
    for (const PhysicalDisk &disk : m_disks) {
        if (knownIdentifiers.contains(disk.identifier))
            continue;
        if (!disk.mediaUUID || !marks.contains(*disk.mediaUUID))
            continue;
        if (disk.efiPartitions.empty() || disk.efiPartitions.front().isMounted)
            continue;
        Log::line("   🏎️ Auto-mounting EFI for disk {} ({})", disk.name, *disk.mediaUUID);
        setAutoMountingLater(true, fmt::format("Auto-mounting {}...", disk.name));
        if (m_autoMountsUnderWay++ == 0)
            m_autoMountsEnd = Completion<bool>();
        spawn([this, identifier = disk.efiPartitions.front().identifier, name = disk.name] {
            return autoMount(identifier, name);
        });
    }
}

QCoro::Task<> DiskManager::autoMount(std::string identifier, std::string diskName)
{
    try {
        auto mounting = mountEFI(identifier, diskName);
        co_await mounting;
        Log::line("   🏎️ ✅ Auto-mount successful for {}", diskName);
    } catch (const std::exception &error) {
        Log::line("   🏎️ ❌ Auto-mount failed: {}", error.what());
    }
    setAutoMountingLater(false, "");
    if (--m_autoMountsUnderWay == 0)
        m_autoMountsEnd.complete(true);
}

QCoro::Task<> DiskManager::autoMountsEnded()
{
    if (m_autoMountsUnderWay == 0)
        co_return;
    const Completion<bool> end = m_autoMountsEnd;
    co_await end;
}

void DiskManager::setAutoMountingLater(bool isAutoMounting, std::string statusMessage)
{
    QMetaObject::invokeMethod(
        this,
        [this, isAutoMounting, statusMessage = std::move(statusMessage)] {
            if (std::exchange(m_isAutoMounting, isAutoMounting) != isAutoMounting)
                Q_EMIT isAutoMountingChanged();
            if (std::exchange(m_autoMountStatusMessage, statusMessage) != statusMessage)
                Q_EMIT autoMountStatusMessageChanged();
        },
        Qt::QueuedConnection);
}

} // namespace brindle
