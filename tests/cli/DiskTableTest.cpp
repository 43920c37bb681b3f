#include "cli/DiskTable.h"

#include "base/Text.h"
#include "cli/DisplayText.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

PhysicalDisk openCoreStick()
{
    PhysicalDisk disk;
    disk.identifier = "disk2";
    disk.name = "SanDisk Ultra Fit";
    disk.size = "30.8 GB";
    disk.diskType = PhysicalDisk::DiskType::removable;
    disk.hasOpenCore = true;
    disk.efiPartitions = {
        {.identifier = "disk2s1", .isMounted = true, .mountPoint = "/Volumes/OPENCORE", .volumeName = "OPENCORE"},
        {.identifier = "disk2s2", .volumeName = "EFI"}};
    return disk;
}

PhysicalDisk internalDisk()
{
    PhysicalDisk disk;
    disk.identifier = "disk0";
    disk.name = "APPLE SSD AP0512N";
    disk.size = "500.3 GB";
    disk.smartStatus = SMARTStatus::verified;
    disk.volumeName = "Macintosh HD • Windows";
    disk.isBootDisk = true;
    disk.hasMacOS = true;
    disk.totalSpaceBytes = 1000;
    disk.usedSpaceBytes = 500;
    return disk;
}

TEST(DiskTable, GivesALineToADiskAndALineToAPartition)
{
    EXPECT_EQ(
        diskTable({internalDisk(), openCoreStick()}, {}),
        "DISK       NAME               TYPE           SIZE  USED  SMART     HOLDS             VOLUMES\n"
        "disk0      APPLE SSD AP0512N  internal   500.3 GB   50%  verified  Boot Disk, macOS  Macintosh HD • Windows\n"
        "disk2      SanDisk Ultra Fit  removable   30.8 GB     –  –         OC\n"
        "  disk2s1  OPENCORE           EFI        mounted at /Volumes/OPENCORE\n"
        "  disk2s2  EFI                EFI        not mounted\n");
}

TEST(DiskTable, TellsAllThatABootDiskHolds)
{
    PhysicalDisk disk = internalDisk();
    disk.hasOpenCore = true;
    disk.hasWindows = true;

    EXPECT_THAT(diskTable({disk}, {}), HasSubstr("  Boot Disk, OC, macOS, Windows  "));
}

TEST(DiskTable, LeavesOutWhatIsNotKnown)
{
    PhysicalDisk disk = internalDisk();
    disk.isBootDisk = false;
    disk.hasMacOS = false;
    disk.usedSpaceBytes.reset();

    EXPECT_THAT(diskTable({disk}, {}), HasSubstr("  500.3 GB     –  verified  –      Macintosh"));
}

/// The header line at a width of the terminal.
std::string headerAt(std::size_t width)
{
    const std::string table = diskTable({internalDisk(), openCoreStick()}, {.width = width});
    return table.substr(0, table.find('\n'));
}

TEST(DiskTable, GoesWithoutColumnsInANarrowTerminalOneAfterTheOther)
{
    EXPECT_EQ(headerAt(100),
              "DISK       NAME               TYPE           SIZE  USED  SMART     HOLDS             VOLUMES");
    EXPECT_EQ(headerAt(84), "DISK       NAME               TYPE           SIZE  USED  SMART     HOLDS");
    EXPECT_EQ(headerAt(72), "DISK       NAME              TYPE           SIZE  USED  HOLDS");
    EXPECT_EQ(headerAt(64), "DISK       NAME            TYPE           SIZE  HOLDS");
    EXPECT_EQ(headerAt(56), "DISK       NAME                   SIZE  HOLDS");
    EXPECT_EQ(headerAt(46), "DISK       NAME               HOLDS");
    EXPECT_EQ(headerAt(30), "DISK       NAME");
}

TEST(DiskTable, HasNoLineWiderThanTheTerminal)
{
    PhysicalDisk absurd = internalDisk();
    absurd.identifier = "disk" + std::string(40, '9');
    absurd.size = std::string(150, '7') + " GB";
    absurd.name = "A Drive That Was Given A Very Long Media Name Indeed";

    for (std::size_t width = 4; width < 140; ++width) {
        const std::string table = diskTable({absurd, internalDisk(), openCoreStick()}, {.width = width});
        for (const std::string_view line : Lines(table))
            EXPECT_LE(displayWidth(line), width) << line;
    }
}

TEST(DiskTable, KeepsAbsurdTextsOutOfTheOtherColumnsWay)
{
    PhysicalDisk absurd = internalDisk();
    absurd.identifier = "disk" + std::string(40, '9');
    absurd.size = std::string(150, '7') + " GB";

    const std::string table = diskTable({absurd}, {.width = 120});

    EXPECT_THAT(table, HasSubstr("disk99999999999…"));
    EXPECT_THAT(table, HasSubstr("  77777777777…  "));
    EXPECT_THAT(table, HasSubstr("VOLUMES"));
    EXPECT_THAT(diskTable({absurd}, {}), HasSubstr(absurd.size));
}

TEST(DiskTable, FitsAHundredColumnsByCuttingVolumesFirstAndThenNames)
{
    PhysicalDisk disk = internalDisk();
    disk.name = "A Drive That Was Given A Very Long Media Name Indeed";
    disk.volumeName = "Macintosh HD • Windows • Backup of everything";

    const std::string table = diskTable({disk, openCoreStick()}, {.width = 100});

    for (const std::string_view line : Lines(table))
        EXPECT_LE(displayWidth(line), 100U) << line;
    EXPECT_THAT(table, HasSubstr("A Drive That Was"));
    EXPECT_THAT(table, HasSubstr("Macintosh…"));
}

TEST(DiskTable, CutsTheStartOfALongMountPoint)
{
    PhysicalDisk disk = openCoreStick();
    disk.efiPartitions[0].mountPoint = "/run/media/somebody/with/a/long/way/to/OPENCORE";

    const std::string table = diskTable({disk}, {.width = 80});

    EXPECT_THAT(table, HasSubstr("mounted at …"));
    EXPECT_THAT(table, HasSubstr("/way/to/OPENCORE\n"));
}

TEST(DiskTable, AlignsByCellsNotByCharacters)
{
    PhysicalDisk wide = internalDisk();
    wide.name = "无标题💾";
    PhysicalDisk narrow = internalDisk();
    narrow.name = "12345678";

    const std::string table = diskTable({wide, narrow}, {});

    EXPECT_THAT(table, HasSubstr("disk0  无标题💾  internal"));
    EXPECT_THAT(table, HasSubstr("disk0  12345678  internal"));
}

TEST(DiskTable, NeverLetsANameReachTheTerminalAsACommand)
{
    PhysicalDisk disk = openCoreStick();
    disk.name = "\x1b]0;owned\x07";
    disk.volumeName = "\u202Etxt";
    disk.efiPartitions[0].volumeName = "two\nlines";
    disk.efiPartitions[0].mountPoint = "/Volumes/\x1b[2J";

    const std::string table = diskTable({disk}, {});

    EXPECT_THAT(table, Not(HasSubstr("\x1b")));
    EXPECT_THAT(table, Not(HasSubstr("\u202E")));
    EXPECT_THAT(table, HasSubstr("two<U+000A>lines"));
}

TEST(DiskTable, ColoursByStateWhereTheTerminalHasColour)
{
    PhysicalDisk disk = openCoreStick();
    disk.smartStatus = SMARTStatus::failing;

    const std::string coloured = diskTable({disk}, {.width = 80, .hasColour = true});

    EXPECT_THAT(coloured, HasSubstr("\x1b[1;31mFAILING\x1b[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[32mmounted at /Volumes/OPENCORE\x1b[0m"));
    EXPECT_THAT(diskTable({disk}, {.width = 80}), Not(HasSubstr("\x1b")));
}

TEST(DiskTable, SaysSoWhenThereIsNoDisk)
{
    EXPECT_EQ(diskTable({}, {}), "No disks found.\n");
}

} // namespace
} // namespace brindle
