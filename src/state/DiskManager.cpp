#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "records/Preferences.h"

#include <algorithm>
#include <utility>

namespace brindle {

DiskManager::DiskManager(const Surroundings &surroundings)
    : m_tools(surroundings.tools),
      m_paths(surroundings.paths),
      m_defaults(surroundings.defaults),
      m_scheduler(surroundings.scheduler),
      m_diskDetector(m_tools, m_paths, m_defaults),
      m_filesystemDetector(m_tools, m_paths),
      m_systemInfoDetector(surroundings.systemInfoDetector),
      m_keychain(surroundings.keychain),
      m_efiOperations(surroundings.efiOperations),
      m_workspace(surroundings.workspace),
      m_unfinishedWork(surroundings.unfinishedWork),
      m_mountsMarkedDisks(surroundings.mountsMarkedDisks)
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
