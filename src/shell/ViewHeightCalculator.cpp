#include "shell/ViewHeightCalculator.h"

#include "base/DefaultsKeys.h"
#include "records/Preferences.h"

namespace brindle {

ViewHeightCalculator::ViewHeightCalculator(const UserDefaults &defaults) : m_defaults(defaults) {}

double ViewHeightCalculator::contentHeight(std::size_t diskCount, const std::set<std::string> &expandedDisks,
                                           const std::vector<PhysicalDisk> &disks) const
{
    if (diskCount == 0)
        return kEmptyHeight;
    if (disks.empty())
        return kBlankHeight;
    double height = kFrameHeight + kBottomGap + kGap * static_cast<double>(disks.size() - 1);
    for (const PhysicalDisk &disk : disks) {
        height += rowHeight(disk);
        if (expandedDisks.contains(disk.identifier))
            height += expansionHeight(disk);
    }
    return height;
}

double ViewHeightCalculator::rowHeight(const PhysicalDisk &disk) const
{
    const bool hasBar = isOn(m_defaults, DefaultsKeys::kShowDiskSpaceIndicator) && disk.totalSpaceBytes.value_or(0) > 0;
    return hasBar ? kRowHeightWithBar : kRowHeight;
}

double ViewHeightCalculator::rowHeight(const EFIPartition &partition)
{
    const bool hasLabel = partition.volumeName && !partition.volumeName->empty();
    return hasLabel ? kPartitionRowHeightWithLabel : kPartitionRowHeight;
}

double ViewHeightCalculator::expansionHeight(const PhysicalDisk &disk)
{
    if (disk.efiPartitions.size() < 2)
        return 0;
    double height = kGap;
    for (const EFIPartition &partition : disk.efiPartitions)
        height += rowHeight(partition) + kGap;
    return height;
}

} // namespace brindle
