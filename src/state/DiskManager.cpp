#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"

#include <utility>

namespace brindle {

DiskManager::DiskManager(ToolRunner &tools, const ToolPaths &paths, const UserDefaults &defaults, Scheduler &scheduler)
    : m_tools(tools),
      m_paths(paths),
      m_defaults(defaults),
      m_scheduler(scheduler),
      m_diskDetector(tools, paths, defaults),
      m_efiPartitionReader(tools, paths)
{
}

bool DiskManager::isDiskVisible(const PhysicalDisk &disk) const
{
    const auto isWanted = [this](const char *key, bool byDefault) {
        return m_defaults.objectAs<bool>(key).value_or(byDefault);
    };
    switch (disk.diskType) {
    case PhysicalDisk::DiskType::physicalInternal:
        return isWanted(DefaultsKeys::kShowInternalDisks, true);
    case PhysicalDisk::DiskType::physicalExternal:
        return isWanted(DefaultsKeys::kShowExternalDisks, true);
    case PhysicalDisk::DiskType::removable:
        return isWanted(DefaultsKeys::kShowRemovableDisks, true);
    case PhysicalDisk::DiskType::diskImage:
        return isWanted(DefaultsKeys::kShowDiskImages, false);
    }
    return true;
}

void DiskManager::setDisks(std::vector<PhysicalDisk> disks)
{
    m_disks = std::move(disks);
    Q_EMIT disksChanged();
}

void DiskManager::setIsLoadingDisks(bool isLoadingDisks)
{
    if (std::exchange(m_isLoadingDisks, isLoadingDisks) != isLoadingDisks)
        Q_EMIT isLoadingDisksChanged();
}

void DiskManager::setHasCompletedInitialScan(bool hasCompletedInitialScan)
{
    if (std::exchange(m_hasCompletedInitialScan, hasCompletedInitialScan) != hasCompletedInitialScan)
        Q_EMIT hasCompletedInitialScanChanged();
}

} // namespace brindle
