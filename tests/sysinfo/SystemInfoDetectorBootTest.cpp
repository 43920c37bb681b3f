#include "sysinfo/SystemInfoDetectorFixture.h"

#include "base/Text.h"
#include "support/Patience.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// --- the boot disk

TEST_F(SystemInfoDetectorTest, TakesTheStoreOfAContainerForTheBootDisk)
{
    tools.answer(bootInfo, "   Part of Whole:   disk1\n   Volume Name:   Macintosh HD\n"
                           "   APFS Physical Store:   disk0s2\n");

    refresh();

    EXPECT_EQ(detector->bootDiskIdentifier(), "disk0");
    EXPECT_EQ(detector->bootVolumePath(), "Macintosh HD");
}

TEST_F(SystemInfoDetectorTest, KnowsNoBootDiskWhereItsWholeIsNotApplicableAndThereIsNoStore)
{
    tools.answer(bootInfo, "   Part of Whole:   Not applicable\n");

    refresh();

    EXPECT_EQ(detector->bootDiskIdentifier(), std::nullopt);
    EXPECT_EQ(detector->bootVolumePath(), std::nullopt);
}

TEST_F(SystemInfoDetectorTest, ForgetsTheBootDiskWhenTheToolFailsLater)
{
    tools.answer(bootInfo, "Part of Whole: disk1\nVolume Name: Macintosh HD\n");
    refresh();
    ASSERT_EQ(detector->bootDiskIdentifier(), "disk1");

    tools.fail(bootInfo, Error("CommandError", 1, "no"));
    refresh();

    EXPECT_EQ(detector->bootDiskIdentifier(), std::nullopt);
    EXPECT_EQ(detector->bootVolumePath(), std::nullopt);
}

// --- OpenCore's version

TEST_F(SystemInfoDetectorTest, ReadsTheVersionOfOpenCore)
{
    startOpenCoreFrom(kUUID, {});

    refresh();

    EXPECT_EQ(detector->openCoreVersion(), "REL-099-2024-03-04");
}

TEST_F(SystemInfoDetectorTest, ForgetsTheVersionOfOpenCoreWhenItsVariableIsGone)
{
    startOpenCoreFrom(kUUID, {});
    refresh();

    tools.fail(openCoreVersion, Error("CommandError", 1, "data was not found"));
    refresh();

    EXPECT_EQ(detector->openCoreVersion(), std::nullopt);
}

TEST_F(SystemInfoDetectorTest, AsksNothingOfTheBootPathWithoutAVersionOfOpenCore)
{
    tools.answer(bootPath, bootPathLine(kUUID));
    tools.answer(openCoreVersion, "4D1FDA02 of another program\tREL\n");

    refresh();

    EXPECT_THAT(tools.calls(), Not(Contains(HasSubstr("boot-path"))));
}

TEST_F(SystemInfoDetectorTest, AsksNothingOfTheBootPathWhereOpenCoresVariableIsMissing)
{
    tools.answer(bootPath, bootPathLine(kUUID));
    tools.fail(openCoreVersion, Error("CommandError", 1, "data was not found"));

    refresh();

    EXPECT_THAT(tools.calls(), Contains(openCoreVersion));
    EXPECT_THAT(tools.calls(), Not(Contains(HasSubstr("boot-path"))));
}

TEST_F(SystemInfoDetectorTest, AsksForTheBootPathOnlyOnceTheVersionOfOpenCoreIsThere)
{
    startOpenCoreFrom(kUUID, {});
    tools.hold(openCoreVersion);
    auto pass = detector->refreshBootInfo();

    drainEventLoop();
    EXPECT_THAT(tools.calls(), Not(Contains(bootPath)));
    tools.release(openCoreVersion);
    blockOn(std::move(pass), kPatience);

    EXPECT_THAT(tools.calls(), Contains(bootPath));
}

// --- the disk that OpenCore started from

TEST_F(SystemInfoDetectorTest, FindsTheDiskWhoseFirstPartitionHasTheUUID)
{
    startOpenCoreFrom(kUUID, {"disk0", "disk1"});
    tools.answer(info("disk0s1"), infoWith("0E239BC6-F960-3107-89CF-1C97F78BB46B"));
    tools.answer(info("disk1s1"), infoWith(kUUID));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk1");
    EXPECT_THAT(tools.calls(), Not(Contains(info("disk1s2"))));
}

TEST_F(SystemInfoDetectorTest, FindsTheDiskWhoseSecondPartitionHasTheUUID)
{
    startOpenCoreFrom(kUUID, {"disk0"});
    tools.answer(info("disk0s1"), infoWith("0E239BC6-F960-3107-89CF-1C97F78BB46B"));
    tools.answer(info("disk0s2"), infoWith(kUUID));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk0");
}

TEST_F(SystemInfoDetectorTest, AsksTheSecondPartitionAlsoWhereTheToolFailedForTheFirst)
{
    startOpenCoreFrom(kUUID, {"disk0"});
    tools.answer(info("disk0s2"), infoWith(kUUID));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk0");
}

TEST_F(SystemInfoDetectorTest, FindsNoDiskForTheUUIDOfAThirdPartition)
{
    startOpenCoreFrom(kUUID, {"disk0"});
    tools.answer(info("disk0s1"), infoWith("none"));
    tools.answer(info("disk0s2"), infoWith("none"));
    tools.answer(info("disk0s3"), infoWith(kUUID));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), std::nullopt);
    EXPECT_THAT(tools.calls(), Not(Contains(info("disk0s3"))));
}

TEST_F(SystemInfoDetectorTest, ComparesTheUUIDOfTheBootPathIgnoringCase)
{
    startOpenCoreFrom("e04c1a41-f007-43fc-84f8-8b92ff102291", {"disk0"});
    tools.answer(info("disk0s1"), infoWith("E04C1a41-F007-43FC-84F8-8B92FF102291"));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk0");
}

TEST_F(SystemInfoDetectorTest, GoesOnToTheNextBootPathUntilADiskIsFound)
{
    const std::string second = "0E239BC6-F960-3107-89CF-1C97F78BB46B";
    const std::string third = "11111111-2222-3333-4444-555555555555";
    startOpenCoreFrom(kUUID, {"disk0", "disk1"});
    tools.answer(bootPath, "boot-path\tPciRoot(0x0)/\\EFI\\OC\\OpenCore.efi\n" + bootPathLine(kUUID) +
                               bootPathLine(second) + bootPathLine(third));
    tools.answer(info("disk0s1"), infoWith(third));
    tools.answer(info("disk1s1"), infoWith(second));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk1");
    EXPECT_EQ(std::ranges::count(tools.calls(), physicalList), 2);
}

TEST_F(SystemInfoDetectorTest, AsksAllDisksAtOnceWithoutABound)
{
    constexpr std::size_t kDisks = 40;
    std::vector<std::string> disks;
    for (std::size_t number = 0; number < kDisks; ++number) {
        disks.push_back(fmt::format("disk{}", number));
        tools.hold(info(disks.back() + "s1"));
    }
    startOpenCoreFrom(kUUID, disks);
    auto pass = detector->refreshBootInfo();

    drainEventLoop();

    for (const std::string &disk : disks) {
        EXPECT_THAT(tools.calls(), Contains(info(disk + "s1")));
        EXPECT_THAT(tools.calls(), Not(Contains(info(disk + "s2"))));
        tools.release(info(disk + "s1"));
    }
    blockOn(std::move(pass), kPatience);
}

TEST_F(SystemInfoDetectorTest, EndsTheToolsOfAllOtherDisksOnceOneHasTheUUID)
{
    startOpenCoreFrom(kUUID, {"disk0", "disk1", "disk2"});
    for (const char *partition : {"disk0s1", "disk2s1"}) {
        tools.hold(info(partition)); // never released: only a cancellation ends it
        tools.answer(info(partition), infoWith(kUUID));
    }
    tools.answer(info("disk1s1"), infoWith(kUUID));

    refresh();

    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk1");
    EXPECT_TRUE(detector->isDetectionComplete());
}

TEST_F(SystemInfoDetectorTest, LetsTheFirstDiskDecideThatAnswersWhereSeveralHaveTheUUID)
{
    startOpenCoreFrom(kUUID, {"disk0", "disk1"});
    tools.hold(info("disk0s1"));
    tools.answer(info("disk0s2"), infoWith(kUUID)); // is still asked after the cancellation, too late
    tools.answer(info("disk1s1"), infoWith(kUUID));

    refresh();

    EXPECT_THAT(tools.calls(), Contains(info("disk0s2")));
    EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk1");
}

class KeepsTheBootloaderDisk : public SystemInfoDetectorTest {
protected:
    void SetUp() override
    {
        startOpenCoreFrom(kUUID, {"disk3"});
        tools.answer(info("disk3s1"), infoWith(kUUID));
        refresh();
        ASSERT_EQ(detector->bootloaderDiskIdentifier(), "disk3");
    }

    void TearDown() override
    {
        refresh();

        EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk3");
        SystemInfoDetectorTest::TearDown();
    }

    const Error gone{"CommandError", 1, "gone"};
};

TEST_F(KeepsTheBootloaderDisk, WhenOpenCoreIsGone)
{
    tools.fail(openCoreVersion, gone);
}

TEST_F(KeepsTheBootloaderDisk, WhenTheBootPathIsGone)
{
    tools.fail(bootPath, gone);
}

TEST_F(KeepsTheBootloaderDisk, WhenTheBootPathNamesNoPartition)
{
    tools.answer(bootPath, "4D1FDA02:boot-path\tPciRoot(0x0)/USB(0x1,0x0)/\\EFI\\OC\\OpenCore.efi\n");
}

TEST_F(KeepsTheBootloaderDisk, WhenTheListOfDisksFails)
{
    tools.fail(physicalList, gone);
}

TEST_F(KeepsTheBootloaderDisk, WhenNoDiskHasTheUUID)
{
    tools.answer(info("disk3s1"), infoWith("none"));
}

// --- Clover's version

TEST_F(SystemInfoDetectorTest, FindsAVersionOfCloverUnderItsLastNameAfterThreeFailedRuns)
{
    tools.answer(clover("Clover.Revision"), "Clover.Revision\t5152\n");

    refresh();

    EXPECT_EQ(detector->cloverVersion(), "5152");
    std::vector<std::string> asked;
    std::ranges::copy_if(tools.calls(), std::back_inserter(asked),
                         [](const std::string &call) { return findIgnoringCase(call, "clover") != std::string::npos; });
    EXPECT_THAT(asked, ElementsAre(clover("Clover.Version"), clover("clover-version"), clover("clover.revision"),
                                   clover("Clover.Revision")));
}

TEST_F(SystemInfoDetectorTest, TriesNoOtherNameOnceCloverHasAVersion)
{
    tools.answer(clover("clover-version"), "clover-version\tr5150\n");
    tools.answer(clover("clover.revision"), "clover.revision\t1\n");

    refresh();

    EXPECT_EQ(detector->cloverVersion(), "r5150");
    EXPECT_THAT(tools.calls(), Not(Contains(clover("clover.revision"))));
}

TEST_F(SystemInfoDetectorTest, TriesTheNextNameWhereAVariableOfCloverSaysNothing)
{
    tools.answer(clover("Clover.Version"), "Clover.Version\tNot found\n");
    tools.answer(clover("clover-version"), "clover-version\t\n");
    tools.answer(clover("clover.revision"), "clover.revision\t5140\n");

    refresh();

    EXPECT_EQ(detector->cloverVersion(), "5140");
}

TEST_F(SystemInfoDetectorTest, ForgetsTheVersionOfCloverWhenItsVariablesAreGone)
{
    tools.answer(clover("Clover.Version"), "Clover.Version\t5152\n");
    refresh();
    ASSERT_EQ(detector->cloverVersion(), "5152");

    tools.fail(clover("Clover.Version"), Error("CommandError", 1, "gone"));
    refresh();

    EXPECT_EQ(detector->cloverVersion(), std::nullopt);
}

} // namespace
} // namespace brindle
