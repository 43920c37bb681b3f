#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "records/Preferences.h"

#include <algorithm>
#include <utility>

namespace brindle {

DiskManager::DiskManager(ToolRunner &tools, const ToolPaths &paths, UserDefaults &defaults, Scheduler &scheduler,
                         SystemInfoDetector &systemInfoDetector)
    : m_tools(tools),
      m_paths(paths),
      m_defaults(defaults),
      m_scheduler(scheduler),
      m_diskDetector(tools, paths, defaults),
      m_filesystemDetector(tools, paths),
      m_efiPartitionReader(tools, paths),
      m_systemInfoDetector(systemInfoDetector)
{
    initializePreferences(m_defaults);
    restorePersistedState();
}

bool DiskManager::isDiskVisible(const PhysicalDisk &disk) const
{
    switch (disk.diskType) {
    case PhysicalDisk::DiskType::physicalInternal:
        return isOn(m_defaults, DefaultsKeys::kShowInternalDisks);
    case PhysicalDisk::DiskType::physicalExternal:
        return isOn(m_defaults, DefaultsKeys::kShowExternalDisks);
    case PhysicalDisk::DiskType::removable:
        return isOn(m_defaults, DefaultsKeys::kShowRemovableDisks);
    case PhysicalDisk::DiskType::diskImage:
        return isOn(m_defaults, DefaultsKeys::kShowDiskImages);
    }
    return true;
}

void DiskManager::toggleExpanded(const std::string &identifier)
{
    std::set<std::string> expandedDisks = m_expandedDisks;
    if (expandedDisks.erase(identifier) == 0)
        expandedDisks.insert(identifier);
    setExpandedDisks(std::move(expandedDisks));
    persistState();
}

void DiskManager::setDisks(std::vector<PhysicalDisk> disks)
{
    m_disks = std::move(disks);
    Q_EMIT disksChanged();
}

void DiskManager::updateEFIStates()
{
    for (const PhysicalDisk &disk : m_disks)
        m_efiStates[disk.identifier] = mountedEFIPartition(disk) != nullptr;
    Q_EMIT efiStatesChanged();
}

void DiskManager::setIsLoadingDisks(bool isLoadingDisks)
{
    if (std::exchange(m_isLoadingDisks, isLoadingDisks) != isLoadingDisks)
        Q_EMIT isLoadingDisksChanged();
}

void DiskManager::setExpandedDisks(std::set<std::string> expandedDisks)
{
    if (m_expandedDisks == expandedDisks)
        return;
    m_expandedDisks = std::move(expandedDisks);
    Q_EMIT expandedDisksChanged();
}

void DiskManager::setHasCompletedInitialScan(bool hasCompletedInitialScan)
{
    if (std::exchange(m_hasCompletedInitialScan, hasCompletedInitialScan) != hasCompletedInitialScan)
        Q_EMIT hasCompletedInitialScanChanged();
}

const EFIPartition *mountedEFIPartition(const PhysicalDisk &disk)
{
    const auto mounted = std::find_if(disk.efiPartitions.begin(), disk.efiPartitions.end(),
                                      [](const EFIPartition &partition) { return partition.isMounted; });
    return mounted == disk.efiPartitions.end() ? nullptr : &*mounted;
}

} // namespace brindle
