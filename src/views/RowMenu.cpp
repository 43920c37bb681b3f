#include "views/RowMenu.h"

#include "efi/EraseFlow.h"
#include "efi/RowActions.h"
#include "state/DiskManager.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace brindle {

namespace {

using Kind = RowMenuEntry::Kind;
using Menu = std::vector<RowMenuEntry>;

RowMenuEntry entry(std::string label, std::string_view symbol, RowAction action)
{
    return {Kind::action, std::move(label), symbol, action};
}

RowMenuEntry status(std::string text)
{
    return {Kind::status, std::move(text)};
}

/// A divider stands between what is there, never at the top and never twice.
void addDivider(Menu &menu)
{
    if (!menu.empty() && menu.back().kind != Kind::divider)
        menu.push_back({Kind::divider, {}});
}

void addPartitionEntries(Menu &menu, const PhysicalDisk &disk, const EFIPartition &partition, RowOffers offers)
{
    menu.push_back(partition.isMounted ? entry("Unmount EFI", "eject", RowAction::toggleMount)
                                       : entry("Mount EFI", "arrow.down.circle", RowAction::toggleMount));
    if (partition.isMounted) {
        menu.push_back(entry("Open in Finder", "magnifyingglass", RowAction::open));
        if (offers.copy)
            menu.push_back(entry("Copy EFI", "doc.on.doc", RowAction::copyEFI));
        menu.push_back(entry("Rename EFI...", "pencil", RowAction::renameEFI));
    }
    if (offers.erase && RowActions::canEraseEFI(disk))
        menu.push_back(entry("Erase EFI Partition...", "trash", RowAction::eraseEFI));
}

std::optional<std::string> smartLine(SMARTStatus status)
{
    switch (status) {
    case SMARTStatus::verified:
        return "SMART: Verified";
    case SMARTStatus::failing:
        return "SMART: Failing";
    case SMARTStatus::notSupported:
        return "SMART: N/A";
    case SMARTStatus::unknown:
        break;
    }
    return std::nullopt;
}

void addLabel(Menu &menu, const std::optional<std::string> &label)
{
    if (label && !label->empty())
        menu.push_back(status(*label));
}

/// The buttons for a partition that is mounted, and the one that mounts or unmounts it.
void addPartitionButtons(std::vector<RowButton> &buttons, const EFIPartition &partition)
{
    if (partition.isMounted) {
        buttons.push_back({"configButton", "slider.horizontal.3", "Quick Edit config.plist", RowAction::quickEdit});
        buttons.push_back({"findButton", "magnifyingglass", "Open in Finder", RowAction::open});
        buttons.push_back({"mountButton", "eject", "Unmount EFI partition", RowAction::toggleMount});
    } else {
        buttons.push_back({"mountButton", "arrow.down.circle", "Mount EFI partition", RowAction::toggleMount});
    }
}

} // namespace

std::vector<RowMenuEntry> diskMenu(const PhysicalDisk &disk, bool isExpanded, bool isAutoMount, RowOffers offers)
{
    Menu menu;
    if (disk.efiPartitions.size() == 1)
        addPartitionEntries(menu, disk, disk.efiPartitions.front(), offers);
    else if (disk.efiPartitions.size() > 1)
        menu.push_back(isExpanded ? entry("Collapse EFI List", "chevron.up", RowAction::toggleExpanded)
                                  : entry("Expand EFI List", "chevron.down", RowAction::toggleExpanded));
    addDivider(menu);
    if (disk.mediaUUID)
        menu.push_back(isAutoMount ? entry("Disable EFI Auto-Mount", "bolt.slash.fill", RowAction::toggleAutoMount)
                                   : entry("Enable EFI Auto-Mount", "bolt.fill", RowAction::toggleAutoMount));
    addDivider(menu);
    if (disk.diskType != PhysicalDisk::DiskType::diskImage)
        menu.push_back(entry("View SMART Details...", "heart.text.square", RowAction::viewDetails));
    if (EraseFlow::partitionTarget(disk))
        menu.push_back(entry("Rename Volume...", "pencil", RowAction::renameVolume));
    if (RowActions::canEject(disk)) {
        menu.push_back(entry("Eject Disk", "eject.circle", RowAction::eject));
        if (offers.erase)
            menu.push_back(entry("Erase Disk...", "trash", RowAction::eraseDisk));
    }
    addDivider(menu);
    menu.push_back(entry("Refresh Disks", "arrow.clockwise", RowAction::refresh));
    addDivider(menu);
    menu.push_back(status(disk.name));
    menu.push_back(status(disk.size));
    addLabel(menu, disk.volumeName);
    if (std::optional<std::string> smart = smartLine(disk.smartStatus))
        menu.push_back(status(*std::move(smart)));
    return menu;
}

std::vector<RowMenuEntry> partitionMenu(const PhysicalDisk &disk, const EFIPartition &partition, RowOffers offers)
{
    Menu menu;
    addPartitionEntries(menu, disk, partition, offers);
    addDivider(menu);
    menu.push_back(status(disk.name));
    addLabel(menu, partition.volumeName);
    return menu;
}

std::vector<RowButton> diskButtons(const PhysicalDisk &disk, RowOffers offers)
{
    std::vector<RowButton> buttons;
    if (offers.copy && mountedEFIPartition(disk))
        buttons.push_back({"copyButton", "doc.on.doc", "Copy EFI folder to another disk", RowAction::copyEFI});
    if (RowActions::canEject(disk))
        buttons.push_back({"ejectButton", "eject", "Eject disk", RowAction::eject});
    if (!disk.efiPartitions.empty())
        addPartitionButtons(buttons, disk.efiPartitions.front());
    return buttons;
}

std::vector<RowButton> partitionButtons(const EFIPartition &partition, RowOffers offers)
{
    std::vector<RowButton> buttons;
    if (offers.copy && partition.isMounted)
        buttons.push_back({"copyButton", "doc.on.doc", "Copy EFI", RowAction::copyEFI});
    addPartitionButtons(buttons, partition);
    return buttons;
}

std::string_view diskToolTip(const PhysicalDisk &disk)
{
    if (disk.efiPartitions.empty())
        return "No EFI partition";
    return mountedEFIPartition(disk) ? "Double click to unmount EFI" : "Double click to mount EFI";
}

} // namespace brindle
