#include "state/DiskManager.h"

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "base/Spawn.h"
#include "support/FakeToolRunner.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "support/SimulatedMachine.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

PhysicalDisk diskOf(PhysicalDisk::DiskType diskType)
{
    PhysicalDisk disk;
    disk.diskType = diskType;
    return disk;
}

class DiskManagerTest : public testing::Test {
protected:
    LogCapture log;
    ManualClock clock;
    MemoryUserDefaults defaults;
    FakeToolRunner tools;
    DiskManager manager{tools, ToolPaths::system(), defaults, clock};
};

// --- visibility

TEST_F(DiskManagerTest, HidesDiskImagesAndShowsAllElseWhenNothingWasEverWritten)
{
    EXPECT_TRUE(manager.isDiskVisible(diskOf(PhysicalDisk::DiskType::physicalInternal)));
    EXPECT_TRUE(manager.isDiskVisible(diskOf(PhysicalDisk::DiskType::physicalExternal)));
    EXPECT_TRUE(manager.isDiskVisible(diskOf(PhysicalDisk::DiskType::removable)));
    EXPECT_FALSE(manager.isDiskVisible(diskOf(PhysicalDisk::DiskType::diskImage)));
}

struct VisibilityCase {
    const char *name;
    const char *key;
    PhysicalDisk::DiskType diskType;
    bool byDefault;
};

class Visibility : public DiskManagerTest, public testing::WithParamInterface<VisibilityCase> {};

TEST_P(Visibility, FollowsTheKeyOfTheDisksType)
{
    const PhysicalDisk disk = diskOf(GetParam().diskType);

    defaults.set(GetParam().key, false);
    EXPECT_FALSE(manager.isDiskVisible(disk));
    defaults.set(GetParam().key, true);
    EXPECT_TRUE(manager.isDiskVisible(disk));
}

TEST_P(Visibility, PassesOverAValueThatIsNoBoolean)
{
    defaults.set(GetParam().key, GetParam().byDefault ? 0 : 1);

    EXPECT_EQ(manager.isDiskVisible(diskOf(GetParam().diskType)), GetParam().byDefault);
}

INSTANTIATE_TEST_SUITE_P(
    DiskManager, Visibility,
    testing::Values(VisibilityCase{"Internal", "ShowInternalDisks", PhysicalDisk::DiskType::physicalInternal, true},
                    VisibilityCase{"External", "ShowExternalDisks", PhysicalDisk::DiskType::physicalExternal, true},
                    VisibilityCase{"Removable", "ShowRemovableDisks", PhysicalDisk::DiskType::removable, true},
                    VisibilityCase{"Image", "ShowDiskImages", PhysicalDisk::DiskType::diskImage, false}),
    [](const auto &row) { return row.param.name; });

// --- order

PhysicalDisk diskNamed(std::string identifier)
{
    PhysicalDisk disk;
    disk.identifier = std::move(identifier);
    return disk;
}

TEST(DisplayOrder, PutsDisk2BeforeDisk10)
{
    EXPECT_TRUE(standsBefore(diskNamed("disk2"), diskNamed("disk10")));
    EXPECT_FALSE(standsBefore(diskNamed("disk10"), diskNamed("disk2")));
}

TEST(DisplayOrder, PutsABootDiskWithoutALoaderBeforeAnyOtherWithOpenCore)
{
    PhysicalDisk boot = diskNamed("disk9");
    boot.isBootDisk = true;
    PhysicalDisk openCore = diskNamed("disk0");
    openCore.hasOpenCore = true;

    EXPECT_TRUE(standsBefore(boot, openCore));
    EXPECT_FALSE(standsBefore(openCore, boot));
}

TEST(DisplayOrder, PutsOpenCoreBeforeCloverAloneAndCloverBeforeNone)
{
    PhysicalDisk openCore = diskNamed("disk9");
    openCore.hasOpenCore = true;
    PhysicalDisk clover = diskNamed("disk5");
    clover.hasClover = true;

    EXPECT_TRUE(standsBefore(openCore, clover));
    EXPECT_TRUE(standsBefore(clover, diskNamed("disk0")));
    EXPECT_FALSE(standsBefore(clover, openCore));
}

// --- scans on a simulated machine

TEST(Scan, ListsTheDisksInDisplayOrderWhateverTheirOrderOfCompletion)
{
    SimulatedMachine machine;
    machine.addDisk("disk10");
    machine.addDisk("disk2");
    machine.addDisk("disk1");

    EXPECT_THAT(machine.scan().identifiers(), ElementsAre("disk1", "disk2", "disk10"));
}

TEST(Scan, FillsTheMediaUUIDFromTheFirstEFIPartition)
{
    SimulatedMachine machine;
    machine.addDisk("disk2").withEFI("EFI", "/Volumes/EFI");

    const SimulatedScan scan = machine.scan();

    ASSERT_EQ(scan.disks.size(), 1U);
    EXPECT_EQ(scan.disks[0].mediaUUID, "0E239BC6-F960-3107-89CF-1C97F78BB46B");
    ASSERT_EQ(scan.disks[0].efiPartitions.size(), 1U);
    EXPECT_EQ(scan.disks[0].efiPartitions[0].mountPoint, "/Volumes/EFI");
}

TEST(Scan, LeavesOutADiskWhoseInfoToolFails)
{
    SimulatedMachine machine;
    machine.addDisk("disk1");
    machine.addDisk("disk2").infoFails();

    EXPECT_THAT(machine.scan().identifiers(), ElementsAre("disk1"));
    EXPECT_THAT(machine.log(), Contains("Failed to get info for disk2: Could not find disk: disk2\n"));
}

TEST(Scan, LogsItsStepsInOrder)
{
    SimulatedMachine machine;
    machine.addDisk("disk0").named("Drive");

    machine.scan();

    EXPECT_THAT(machine.log(),
                ElementsAre("   ➡️ Fetching disk list", "Found 1 physical disks: [\"disk0\"]",
                            "Found 1 disks to process: [\"disk0\"]", "   ✅ Disk list fetched: 1 disks",
                            "   ➡️ Running diskutil list", "   ✅ diskutil list finished",
                            "   ➡️ Processing disks in parallel", "Created disk: Drive (disk0) - Volume: none",
                            "✅ Processed 1 visible disks", "   ✅ Processing disks finished",
                            StartsWith("✅ Disk scan completed in 0.")));
}

TEST(Scan, GoesOnWithoutSectionsWhenTheListToolFails)
{
    SimulatedMachine machine;
    machine.addDisk("disk0").withEFI("EFI");
    machine.answer("diskutil", "list", {.standardError = "no", .status = 1});

    const SimulatedScan scan = machine.scan();

    EXPECT_THAT(scan.identifiers(), ElementsAre("disk0"));
    EXPECT_TRUE(scan.disks[0].efiPartitions.empty());
    EXPECT_THAT(machine.log(), Contains("   ✅ diskutil list finished"));
}

/// The most disks whose tools ran at the same time, from the lines that the tools leave.
int mostDisksAtOnce(const std::vector<std::string> &calls)
{
    int running = 0;
    int most = 0;
    for (const std::string &call : calls) {
        running += call.starts_with("start diskutil info") ? 1 : call.starts_with("end diskutil info") ? -1 : 0;
        most = std::max(most, running);
    }
    return most;
}

TEST(Scan, ReadsThreeDisksAtATimeAndNoMore)
{
    SimulatedMachine machine;
    for (int i = 0; i < 9; ++i)
        machine.addDisk("disk" + std::to_string(i));
    for (int i = 0; i < 9; ++i) {
        const std::string identifier = "disk" + std::to_string(i);
        machine.answer("diskutil", "info " + identifier, {.standardOutput = "Whole: Yes\n", .delay = "50"});
    }

    EXPECT_EQ(machine.scan().disks.size(), 9U);

    EXPECT_EQ(mostDisksAtOnce(machine.calls()), 3);
}

// --- the pipeline's flags

TEST_F(DiskManagerTest, EndsAScanWithoutDisksAtOnce)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    blockOn(manager.startScan(false), 1s);

    EXPECT_TRUE(manager.disks().empty());
    EXPECT_FALSE(manager.isLoadingDisks());
    EXPECT_TRUE(manager.hasCompletedInitialScan());
    EXPECT_THAT(log.lines(), Contains("   ⚠️ No disks found, exiting scan"));
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

TEST_F(DiskManagerTest, LeavesTheFlagSetWhenACancelledScanMakesWayForOneWithoutForce)
{
    tools.answer("/usr/sbin/diskutil list physical", "/dev/disk0 (internal, physical):\n");
    tools.hold("/usr/sbin/diskutil list physical");
    auto first = manager.startScan(false);
    while (tools.calls().empty())
        QCoreApplication::processEvents();

    auto second = manager.startScan(false);
    blockOn(std::move(second), 1s);
    blockOn(std::move(first), 1s);

    EXPECT_TRUE(manager.isLoadingDisks());
    EXPECT_FALSE(manager.hasCompletedInitialScan());
    EXPECT_THAT(log.lines(), Contains("   ⏸️ Scan already in progress, skipping"));
    EXPECT_THAT(log.lines(), Contains("   ❌ Task cancelled before processing disks"));
}

TEST_F(DiskManagerTest, MendsTheFlagByAForcedScanThatWaitsForTheCancelledOnesTools)
{
    tools.answer("/usr/sbin/diskutil list physical", "");
    tools.hold("/usr/sbin/diskutil list physical");
    auto first = manager.startScan(false);
    while (tools.calls().empty())
        QCoreApplication::processEvents();

    auto second = manager.startScan(true);
    tools.release("/usr/sbin/diskutil list physical");
    blockOn(std::move(first), 1s);
    clock.advance(199ms);
    EXPECT_EQ(tools.calls().size(), 1U);
    clock.advance(1ms);
    blockOn(std::move(second), 1s);

    EXPECT_EQ(tools.calls().size(), 2U);
    EXPECT_FALSE(manager.isLoadingDisks());
    EXPECT_TRUE(manager.hasCompletedInitialScan());
}

TEST_F(DiskManagerTest, DropsTheResultOfAScanThatIsCancelledWhileItReadsDisks)
{
    tools.answer("/usr/sbin/diskutil list physical", "/dev/disk0 (internal, physical):\n");
    tools.answer("/usr/sbin/diskutil list", "");
    tools.answer("/usr/sbin/diskutil info disk0", "Whole: Yes\n");
    tools.hold("/usr/sbin/diskutil info disk0");
    auto first = manager.startScan(false);
    while (tools.calls().size() < 3)
        QCoreApplication::processEvents();

    auto second = manager.startScan(false);
    blockOn(std::move(first), 1s);
    blockOn(std::move(second), 1s);

    EXPECT_TRUE(manager.disks().empty());
    EXPECT_TRUE(manager.isLoadingDisks());
    EXPECT_THAT(log.lines(), Contains("   ❌ Task cancelled after processing disks"));
}

TEST_F(DiskManagerTest, GivesWayToTheSecondOfTwoScansOfOneTurn)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    auto first = manager.startScan(false);
    auto second = manager.startScan(false);
    blockOn(std::move(first), 1s);
    blockOn(std::move(second), 1s);

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

} // namespace
} // namespace brindle
