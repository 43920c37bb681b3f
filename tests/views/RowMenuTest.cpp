#include "views/RowMenu.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

PhysicalDisk stick(std::vector<EFIPartition> partitions = {{.identifier = "disk2s1"}})
{
    return {.identifier = "disk2",
            .mediaUUID = "UUID",
            .name = "Stick",
            .size = "16.0 GB",
            .volumeName = "WORK",
            .efiPartitions = std::move(partitions),
            .diskType = PhysicalDisk::DiskType::physicalExternal,
            .smartStatus = SMARTStatus::verified};
}

EFIPartition mounted(std::string identifier)
{
    return {.identifier = std::move(identifier), .isMounted = true, .mountPoint = "/Volumes/EFI", .volumeName = "EFI"};
}

/// The menu as a person reads it: a divider as "-", a status in brackets.
std::vector<std::string> read(const std::vector<RowMenuEntry> &menu)
{
    std::vector<std::string> lines;
    for (const RowMenuEntry &entry : menu) {
        if (entry.kind == RowMenuEntry::Kind::divider)
            lines.emplace_back("-");
        else if (entry.kind == RowMenuEntry::Kind::status)
            lines.push_back("(" + entry.label + ")");
        else
            lines.push_back(entry.label + " | " + std::string(entry.symbol));
    }
    return lines;
}

std::vector<std::string> tips(const std::vector<RowButton> &buttons)
{
    std::vector<std::string> lines;
    for (const RowButton &button : buttons)
        lines.push_back(std::string(button.symbol) + " | " + std::string(button.tip));
    return lines;
}

TEST(DiskMenu, OffersForAnUnmountedPartitionToMountAndToErase)
{
    EXPECT_THAT(read(diskMenu(stick(), false, false, {})),
                ElementsAre("Mount EFI | arrow.down.circle", "Erase EFI Partition... | trash", "-",
                            "Enable EFI Auto-Mount | bolt.fill", "-", "View SMART Details... | heart.text.square",
                            "Rename Volume... | pencil", "Eject Disk | eject.circle", "Erase Disk... | trash", "-",
                            "Refresh Disks | arrow.clockwise", "-", "(Stick)", "(16.0 GB)", "(WORK)",
                            "(SMART: Verified)"));
}

TEST(DiskMenu, OffersForAMountedPartitionAllThatItsFilesAllow)
{
    EXPECT_THAT(
        read(diskMenu(stick({mounted("disk2s1")}), false, true, {})),
        ElementsAre("Unmount EFI | eject", "Open in Finder | magnifyingglass", "Copy EFI | doc.on.doc",
                    "Rename EFI... | pencil", "Erase EFI Partition... | trash", "-",
                    "Disable EFI Auto-Mount | bolt.slash.fill", "-", "View SMART Details... | heart.text.square",
                    "Rename Volume... | pencil", "Eject Disk | eject.circle", "Erase Disk... | trash", "-",
                    "Refresh Disks | arrow.clockwise", "-", "(Stick)", "(16.0 GB)", "(WORK)", "(SMART: Verified)"));
}

TEST(DiskMenu, OpensAndClosesTheListOfSeveralPartitionsInsteadOfActingOnThem)
{
    const PhysicalDisk disk = stick({{.identifier = "disk2s1"}, mounted("disk2s3")});

    EXPECT_EQ(read(diskMenu(disk, false, false, {})).front(), "Expand EFI List | chevron.down");
    EXPECT_EQ(read(diskMenu(disk, true, false, {})).front(), "Collapse EFI List | chevron.up");
    EXPECT_THAT(read(diskMenu(disk, false, false, {})), Not(Contains("Mount EFI | arrow.down.circle")));
}

TEST(DiskMenu, OffersForTheBootDiskNeitherEjectNorErase)
{
    PhysicalDisk disk = stick({mounted("disk2s1")});
    disk.isBootDisk = true;

    EXPECT_THAT(read(diskMenu(disk, false, false, {})),
                ElementsAre("Unmount EFI | eject", "Open in Finder | magnifyingglass", "Copy EFI | doc.on.doc",
                            "Rename EFI... | pencil", "-", "Enable EFI Auto-Mount | bolt.fill", "-",
                            "View SMART Details... | heart.text.square", "Rename Volume... | pencil", "-",
                            "Refresh Disks | arrow.clockwise", "-", "(Stick)", "(16.0 GB)", "(WORK)",
                            "(SMART: Verified)"));
}

TEST(DiskMenu, OffersForABuiltInDiskNeitherEjectNorErase)
{
    PhysicalDisk disk = stick({});
    disk.diskType = PhysicalDisk::DiskType::physicalInternal;

    const std::vector<std::string> menu = read(diskMenu(disk, false, false, {}));

    EXPECT_THAT(menu, Not(Contains("Eject Disk | eject.circle")));
    EXPECT_THAT(menu, Not(Contains("Erase Disk... | trash")));
    EXPECT_EQ(menu.front(), "Enable EFI Auto-Mount | bolt.fill");
}

TEST(DiskMenu, OffersForADiskImageNoHealthAndWithoutUUIDNoAutoMount)
{
    PhysicalDisk image = stick({});
    image.diskType = PhysicalDisk::DiskType::diskImage;
    image.mediaUUID.reset();
    image.volumeName.reset();
    image.smartStatus = SMARTStatus::unknown;

    EXPECT_THAT(read(diskMenu(image, false, false, {})),
                ElementsAre("Eject Disk | eject.circle", "Erase Disk... | trash", "-",
                            "Refresh Disks | arrow.clockwise", "-", "(Stick)", "(16.0 GB)"));
}

TEST(DiskMenu, OffersNoNewNameForSeveralVolumes)
{
    PhysicalDisk disk = stick();
    disk.volumeName = "WORK • PLAY";

    EXPECT_THAT(read(diskMenu(disk, false, false, {})), Not(Contains("Rename Volume... | pencil")));
}

TEST(DiskMenu, NamesTheHealthUnlessItIsUnknown)
{
    PhysicalDisk disk = stick();
    disk.smartStatus = SMARTStatus::failing;
    EXPECT_EQ(read(diskMenu(disk, false, false, {})).back(), "(SMART: Failing)");
    disk.smartStatus = SMARTStatus::notSupported;
    EXPECT_EQ(read(diskMenu(disk, false, false, {})).back(), "(SMART: N/A)");
    disk.smartStatus = SMARTStatus::unknown;
    EXPECT_EQ(read(diskMenu(disk, false, false, {})).back(), "(WORK)");
}

TEST(DiskMenu, HidesWhatHasNoScreen)
{
    const PhysicalDisk disk = stick({mounted("disk2s1")});

    const std::vector<std::string> menu = read(diskMenu(disk, false, false, {.copy = false, .erase = false}));

    EXPECT_THAT(menu, Not(Contains("Copy EFI | doc.on.doc")));
    EXPECT_THAT(menu, Not(Contains("Erase EFI Partition... | trash")));
    EXPECT_THAT(menu, Not(Contains("Erase Disk... | trash")));
    EXPECT_THAT(menu, Contains("Eject Disk | eject.circle"));
}

TEST(PartitionMenu, HasTheEntriesOfThePartitionAndTheNamesOfBoth)
{
    const PhysicalDisk disk = stick({{.identifier = "disk2s1"}, mounted("disk2s3")});

    EXPECT_THAT(read(partitionMenu(disk, disk.efiPartitions[0], {})),
                ElementsAre("Mount EFI | arrow.down.circle", "Erase EFI Partition... | trash", "-", "(Stick)"));
    EXPECT_THAT(read(partitionMenu(disk, disk.efiPartitions[1], {})),
                ElementsAre("Unmount EFI | eject", "Open in Finder | magnifyingglass", "Copy EFI | doc.on.doc",
                            "Rename EFI... | pencil", "Erase EFI Partition... | trash", "-", "(Stick)", "(EFI)"));
}

// --- buttons and tips

TEST(DiskButtons, StandInTheirOrder)
{
    EXPECT_THAT(tips(diskButtons(stick({mounted("disk2s1")}), {})),
                ElementsAre("doc.on.doc | Copy EFI folder to another disk", "eject | Eject disk",
                            "slider.horizontal.3 | Quick Edit config.plist", "magnifyingglass | Open in Finder",
                            "eject | Unmount EFI partition"));
    EXPECT_THAT(tips(diskButtons(stick(), {})),
                ElementsAre("eject | Eject disk", "arrow.down.circle | Mount EFI partition"));
}

TEST(DiskButtons, AreForTheFirstPartitionButCopiesTakeAnyMountedOne)
{
    const PhysicalDisk disk = stick({{.identifier = "disk2s1"}, mounted("disk2s3")});

    EXPECT_THAT(tips(diskButtons(disk, {})),
                ElementsAre("doc.on.doc | Copy EFI folder to another disk", "eject | Eject disk",
                            "arrow.down.circle | Mount EFI partition"));
}

TEST(DiskButtons, AreNoneForABootDiskWithoutPartition)
{
    PhysicalDisk disk = stick({});
    disk.isBootDisk = true;

    EXPECT_THAT(diskButtons(disk, {}), IsEmpty());
}

TEST(PartitionButtons, StandInTheirOrder)
{
    EXPECT_THAT(tips(partitionButtons(mounted("disk2s1"), {})),
                ElementsAre("doc.on.doc | Copy EFI", "slider.horizontal.3 | Quick Edit config.plist",
                            "magnifyingglass | Open in Finder", "eject | Unmount EFI partition"));
    EXPECT_THAT(tips(partitionButtons({.identifier = "disk2s1"}, {})),
                ElementsAre("arrow.down.circle | Mount EFI partition"));
}

TEST(DiskToolTip, OffersTheDoubleClickAlsoWhereItDoesNothing)
{
    EXPECT_EQ(diskToolTip(stick({})), "No EFI partition");
    EXPECT_EQ(diskToolTip(stick()), "Double click to mount EFI");
    EXPECT_EQ(diskToolTip(stick({{.identifier = "disk2s1"}, {.identifier = "disk2s3"}})), "Double click to mount EFI");
    EXPECT_EQ(diskToolTip(stick({{.identifier = "disk2s1"}, mounted("disk2s3")})), "Double click to unmount EFI");
}

} // namespace
} // namespace brindle
