#include "state/DiskManagerFixture.h"

#include "base/DefaultsKeys.h"
#include "support/Patience.h"

#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;

PhysicalDisk diskOf(PhysicalDisk::DiskType diskType)
{
    PhysicalDisk disk;
    disk.diskType = diskType;
    return disk;
}

class DiskManagerTest : public DiskManagerFixture {};

// --- visibility

/// The first-run settings, which would stand in for missing ones, count as written long ago.
class DiskVisibility : public DiskManagerFixture {
protected:
    DiskVisibility() { defaults.set(DefaultsKeys::kPreferencesInitialized, true); }
};

TEST_F(DiskVisibility, HidesDiskImagesAndShowsAllElseWhenNothingWasEverWritten)
{
    EXPECT_TRUE(manager().isDiskVisible(diskOf(PhysicalDisk::DiskType::physicalInternal)));
    EXPECT_TRUE(manager().isDiskVisible(diskOf(PhysicalDisk::DiskType::physicalExternal)));
    EXPECT_TRUE(manager().isDiskVisible(diskOf(PhysicalDisk::DiskType::removable)));
    EXPECT_FALSE(manager().isDiskVisible(diskOf(PhysicalDisk::DiskType::diskImage)));
}

struct VisibilityCase {
    const char *name;
    const char *key;
    PhysicalDisk::DiskType diskType;
    bool byDefault;
};

class VisibilityOfAType : public DiskVisibility, public testing::WithParamInterface<VisibilityCase> {};

TEST_P(VisibilityOfAType, FollowsItsKey)
{
    const PhysicalDisk disk = diskOf(GetParam().diskType);

    defaults.set(GetParam().key, false);
    EXPECT_FALSE(manager().isDiskVisible(disk));
    defaults.set(GetParam().key, true);
    EXPECT_TRUE(manager().isDiskVisible(disk));
}

TEST_P(VisibilityOfAType, PassesOverAValueThatIsNoBoolean)
{
    defaults.set(GetParam().key, GetParam().byDefault ? 0 : 1);

    EXPECT_EQ(manager().isDiskVisible(diskOf(GetParam().diskType)), GetParam().byDefault);
}

INSTANTIATE_TEST_SUITE_P(
    DiskManager, VisibilityOfAType,
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

// --- the pipeline's flags

TEST_F(DiskManagerTest, EndsAScanWithoutDisksAtOnce)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    blockOn(manager().startScan(false), kPatience);

    EXPECT_TRUE(manager().disks().empty());
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_TRUE(manager().hasCompletedInitialScan());
    EXPECT_THAT(log.lines(), Contains("   ⚠️ No disks found, exiting scan"));
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

TEST_F(DiskManagerTest, EmptiesTheListAndLeavesTheTimeOfTheLastScanWhenNoDiskIsLeft)
{
    plugIn({"disk0"});
    scan();
    const Scheduler::Date scanned = clock.date();
    clock.advance(10s);
    tools.answer("/usr/sbin/diskutil list physical", "");

    scan();

    EXPECT_TRUE(manager().disks().empty());
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_EQ(manager().lastRefreshTime(), scanned);
}

TEST_F(DiskManagerTest, LeavesTheFlagSetWhenACancelledScanMakesWayForOneWithoutForce)
{
    tools.answer("/usr/sbin/diskutil list physical", "/dev/disk0 (internal, physical):\n");
    tools.hold("/usr/sbin/diskutil list physical");
    auto first = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");

    auto second = manager().startScan(false);
    blockOn(std::move(second), kPatience);
    blockOn(std::move(first), kPatience);

    EXPECT_TRUE(manager().isLoadingDisks());
    EXPECT_FALSE(manager().hasCompletedInitialScan());
    EXPECT_THAT(log.lines(), Contains("   ⏸️ Scan already in progress, skipping"));
    EXPECT_THAT(log.lines(), Contains("   ❌ Task cancelled before processing disks"));
}

TEST_F(DiskManagerTest, SkipsEveryScanWithoutForceWhileTheFlagIsLeftSet)
{
    plugIn({"disk0"});
    tools.hold("/usr/sbin/diskutil list physical");
    auto first = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");
    auto second = manager().startScan(false);
    blockOn(std::move(second), kPatience);
    blockOn(std::move(first), kPatience);
    tools.release("/usr/sbin/diskutil list physical");

    scan();
    EXPECT_TRUE(manager().isLoadingDisks());
    EXPECT_THAT(log.lines(), Contains("   ⏸️ Scan already in progress, skipping").Times(2));

    auto forced = manager().startScan(true);
    clock.advance(200ms);
    blockOn(std::move(forced), kPatience);
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_EQ(manager().disks().size(), 1U);
}

TEST_F(DiskManagerTest, MendsTheFlagByAForcedScanThatWaitsForTheCancelledOnesTools)
{
    tools.answer("/usr/sbin/diskutil list physical", "");
    tools.hold("/usr/sbin/diskutil list physical");
    auto first = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");

    auto second = manager().startScan(true);
    tools.release("/usr/sbin/diskutil list physical");
    blockOn(std::move(first), kPatience);
    clock.advance(199ms);
    EXPECT_EQ(tools.calls().size(), 1U);
    clock.advance(1ms);
    blockOn(std::move(second), kPatience);

    EXPECT_EQ(tools.calls().size(), 2U);
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_TRUE(manager().hasCompletedInitialScan());
}

TEST_F(DiskManagerTest, ScansWithoutForceAlsoForAForcedRefresh)
{
    tools.answer("/usr/sbin/diskutil list physical", "");
    tools.hold("/usr/sbin/diskutil list physical");
    auto running = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");

    blockOn(manager().refresh(true), kPatience);
    blockOn(std::move(running), kPatience);

    EXPECT_THAT(log.lines(), Contains("   ⏸️ Scan already in progress, skipping"));
    EXPECT_TRUE(manager().isLoadingDisks());
}

TEST_F(DiskManagerTest, DropsTheResultOfAScanThatIsCancelledWhileItReadsDisks)
{
    plugIn({"disk0"});
    tools.hold("/usr/sbin/diskutil info disk0");
    auto first = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil info disk0");

    auto second = manager().startScan(false);
    blockOn(std::move(first), kPatience);
    blockOn(std::move(second), kPatience);

    EXPECT_TRUE(manager().disks().empty());
    EXPECT_TRUE(manager().isLoadingDisks());
    EXPECT_THAT(log.lines(), Contains("   ❌ Task cancelled after processing disks"));
}

TEST_F(DiskManagerTest, StopsItsScanByEndingTheToolThatRuns)
{
    plugIn({"disk0"});
    tools.hold("/usr/sbin/diskutil info disk0");
    auto scanning = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil info disk0");

    blockOn(manager().stopScan(), kPatience);

    EXPECT_TRUE(manager().disks().empty());
    EXPECT_THAT(log.lines(), Contains("   ❌ Task cancelled after processing disks"));
}

TEST_F(DiskManagerTest, HasNothingToStopWhenNoScanIsUnderWay)
{
    plugIn({"disk0"});
    scan();

    blockOn(manager().stopScan(), kPatience);

    EXPECT_EQ(manager().disks().size(), 1U);
}

TEST_F(DiskManagerTest, GivesWayToTheSecondOfTwoScansOfOneTurn)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    auto first = manager().startScan(false);
    auto second = manager().startScan(false);
    blockOn(std::move(first), kPatience);
    blockOn(std::move(second), kPatience);

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
    EXPECT_TRUE(manager().hasCompletedInitialScan());
    EXPECT_FALSE(manager().isLoadingDisks());
}

} // namespace
} // namespace brindle
