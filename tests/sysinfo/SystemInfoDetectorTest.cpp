#include "sysinfo/SystemInfoDetectorFixture.h"

#include "support/Patience.h"

#include <algorithm>
#include <map>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

TEST_F(SystemInfoDetectorTest, KnowsNothingBeforeItsFirstPass)
{
    drainEventLoop();

    EXPECT_EQ(detector->bootDiskIdentifier(), std::nullopt);
    EXPECT_EQ(detector->bootloaderDiskIdentifier(), std::nullopt);
    EXPECT_EQ(detector->openCoreVersion(), std::nullopt);
    EXPECT_EQ(detector->cloverVersion(), std::nullopt);
    EXPECT_EQ(detector->bootVolumePath(), std::nullopt);
    EXPECT_FALSE(detector->isDetectionComplete());
}

TEST_F(SystemInfoDetectorTest, CompletesThoughEveryToolFails)
{
    refresh();

    EXPECT_EQ(detector->bootDiskIdentifier(), std::nullopt);
    EXPECT_EQ(detector->openCoreVersion(), std::nullopt);
    EXPECT_EQ(detector->cloverVersion(), std::nullopt);
    EXPECT_TRUE(detector->isDetectionComplete());
}

// --- what a pass runs side by side

TEST_F(SystemInfoDetectorTest, FindsTheBootDiskAndBothVersionsAtTheSameTimeInARefresh)
{
    tools.hold(bootInfo);
    tools.hold(openCoreVersion);
    tools.hold(clover("Clover.Version"));
    auto pass = detector->refreshBootInfo();

    EXPECT_THAT(tools.calls(), IsEmpty()) << "a task begins at the next turn";
    drainEventLoop();

    EXPECT_THAT(tools.calls(), ElementsAre(bootInfo, openCoreVersion, clover("Clover.Version")));
    tools.release(bootInfo);
    tools.release(openCoreVersion);
    tools.release(clover("Clover.Version"));
    blockOn(std::move(pass), kPatience);
}

TEST_F(SystemInfoDetectorTest, FindsTheBootDiskAndBothVersionsAtTheSameTimeInTheFullPass)
{
    tools.hold(bootInfo);
    tools.hold(openCoreVersion);
    tools.hold(clover("Clover.Version"));
    auto pass = detector->detectSystemInfo();
    drainEventLoop();

    EXPECT_THAT(tools.calls(), ElementsAre(bootInfo, openCoreVersion, clover("Clover.Version")));
    tools.release(bootInfo);
    tools.release(openCoreVersion);
    tools.release(clover("Clover.Version"));
    blockOn(std::move(pass), kPatience);
}

TEST_F(SystemInfoDetectorTest, AsksOneThingAfterTheOtherForTheDiskOfOpenCore)
{
    startOpenCoreFrom(kUUID, {"disk0"});
    tools.answer(info("disk0s2"), infoWith(kUUID));
    tools.answer(clover("Clover.Version"), "Clover.Version\t1\n");

    refresh();

    EXPECT_THAT(tools.calls(), ElementsAre(bootInfo, openCoreVersion, clover("Clover.Version"), bootPath, physicalList,
                                           info("disk0s1"), info("disk0s2")));
}

TEST_F(SystemInfoDetectorTest, PublishesWhatEachPassFound)
{
    tools.answer(bootInfo, "Part of Whole: disk0\nVolume Name: Macintosh HD\n");
    startOpenCoreFrom(kUUID, {"disk3"});
    tools.answer(info("disk3s1"), infoWith(kUUID));
    tools.answer(clover("Clover.Version"), "Clover.Version\t5152\n");
    const auto expectAll = [&] {
        EXPECT_EQ(detector->bootDiskIdentifier(), "disk0");
        EXPECT_EQ(detector->bootloaderDiskIdentifier(), "disk3");
        EXPECT_EQ(detector->openCoreVersion(), "REL-099-2024-03-04");
        EXPECT_EQ(detector->cloverVersion(), "5152");
        EXPECT_EQ(detector->bootVolumePath(), "Macintosh HD");
    };

    detect();
    expectAll();
    detector = std::make_unique<SystemInfoDetector>(tools, ToolPaths::system());
    refresh();
    expectAll();
}

// --- isDetectionComplete

struct ToolCase {
    const char *name;
    const char *commandLine;
};

class HoldsOneReader : public SystemInfoDetectorTest, public testing::WithParamInterface<ToolCase> {
protected:
    void SetUp() override
    {
        startOpenCoreFrom(kUUID, {});
        tools.hold(GetParam().commandLine);
    }
};

TEST_P(HoldsOneReader, AndWaitsForItBeforeARefreshIsComplete)
{
    auto pass = detector->refreshBootInfo();

    drainEventLoop();
    EXPECT_FALSE(detector->isDetectionComplete());
    tools.release(GetParam().commandLine);
    blockOn(std::move(pass), kPatience);

    EXPECT_TRUE(detector->isDetectionComplete());
}

TEST_P(HoldsOneReader, AndWaitsForItBeforeTheFullPassIsComplete)
{
    auto pass = detector->detectSystemInfo();

    drainEventLoop();
    EXPECT_FALSE(detector->isDetectionComplete());
    tools.release(GetParam().commandLine);
    blockOn(std::move(pass), kPatience);

    EXPECT_TRUE(detector->isDetectionComplete());
}

INSTANTIATE_TEST_SUITE_P(
    SystemInfoDetector, HoldsOneReader,
    testing::Values(ToolCase{"BootDisk", "/usr/sbin/diskutil info /"},
                    ToolCase{"OpenCore", "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version"},
                    ToolCase{"BootPath", "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path"},
                    ToolCase{"Clover", "/usr/sbin/nvram Clover.Version"},
                    ToolCase{"CloversLastName", "/usr/sbin/nvram Clover.Revision"}),
    [](const auto &row) { return row.param.name; });

TEST_F(SystemInfoDetectorTest, TakesTheDetectionForIncompleteWhileARefreshRuns)
{
    refresh();
    tools.hold(bootInfo);

    auto pass = detector->refreshBootInfo();
    EXPECT_TRUE(detector->isDetectionComplete()) << "a task begins at the next turn";
    drainEventLoop();
    EXPECT_FALSE(detector->isDetectionComplete());
    tools.release(bootInfo);
    blockOn(std::move(pass), kPatience);

    EXPECT_TRUE(detector->isDetectionComplete());
}

TEST_F(SystemInfoDetectorTest, NeverTakesTheDetectionForIncompleteInTheFullPass)
{
    refresh();
    tools.hold(bootInfo);
    auto pass = detector->detectSystemInfo();

    drainEventLoop();
    EXPECT_TRUE(detector->isDetectionComplete());
    tools.release(bootInfo);
    blockOn(std::move(pass), kPatience);

    EXPECT_TRUE(detector->isDetectionComplete());
}

TEST_F(SystemInfoDetectorTest, TakesTheDetectionForCompleteAfterAFullPassThoughARefreshRuns)
{
    tools.hold(bootInfo);
    auto full = detector->detectSystemInfo();
    auto pass = detector->refreshBootInfo(); // of another kind: neither ends the other
    tools.release(bootInfo);                 // of the full pass, the refresh begins at the next turn
    tools.hold(bootInfo);

    blockOn(std::move(full), kPatience);
    drainEventLoop();

    EXPECT_TRUE(detector->isDetectionComplete());
    EXPECT_FALSE(pass.isReady());
    tools.release(bootInfo);
    blockOn(std::move(pass), kPatience);
}

// --- a refresh replaces the one before

TEST_F(SystemInfoDetectorTest, GivesWayToTheSecondOfTwoRefreshesOfOneTurn)
{
    auto first = detector->refreshBootInfo();
    auto second = detector->refreshBootInfo();
    blockOn(std::move(first), kPatience);
    blockOn(std::move(second), kPatience);

    EXPECT_EQ(std::ranges::count(tools.calls(), bootInfo), 1);
    EXPECT_TRUE(detector->isDetectionComplete());
}

class ReplacedRefresh : public SystemInfoDetectorTest {
protected:
    /// The first pass waits for its `diskutil info /`; the second has replaced it, and waits for its own.
    void SetUp() override
    {
        bootFrom("disk0");
        tools.hold(bootInfo);
        first = detector->refreshBootInfo();
        drainEventLoop();
        second = detector->refreshBootInfo();
    }

    void releaseTheFirstAlone()
    {
        tools.release(bootInfo);
        tools.hold(bootInfo);
        blockOn(std::move(first), kPatience);
    }

    void TearDown() override
    {
        tools.release(bootInfo);
        blockOn(std::move(second), kPatience);
        EXPECT_TRUE(detector->isDetectionComplete());
        SystemInfoDetectorTest::TearDown();
    }

    QCoro::Task<> first;
    QCoro::Task<> second;
};

TEST_F(ReplacedRefresh, LeavesTheDetectionIncomplete)
{
    releaseTheFirstAlone();

    EXPECT_FALSE(detector->isDetectionComplete());
}

TEST_F(ReplacedRefresh, StillPublishesWhatItsToolsTellAfterwards)
{
    releaseTheFirstAlone();

    EXPECT_EQ(detector->bootDiskIdentifier(), "disk0");
}

TEST_F(SystemInfoDetectorTest, StillRunsTheRemainingToolsOfARefreshThatWasReplaced)
{
    tools.hold(clover("Clover.Version"));
    auto first = detector->refreshBootInfo();
    drainEventLoop();
    auto second = detector->refreshBootInfo();

    tools.release(clover("Clover.Version"));
    blockOn(std::move(first), kPatience);
    blockOn(std::move(second), kPatience);

    EXPECT_EQ(std::ranges::count(tools.calls(), clover("Clover.Revision")), 2);
}

// --- observers

TEST_F(SystemInfoDetectorTest, TellsItsObserversOfEachRealChange)
{
    tools.answer(bootInfo, "Part of Whole: disk0\nVolume Name: Macintosh HD\n");
    startOpenCoreFrom(kUUID, {"disk3"});
    tools.answer(info("disk3s1"), infoWith(kUUID));
    tools.answer(clover("Clover.Version"), "Clover.Version\t5152\n");
    std::map<std::string, int> changes;
    const auto count = [&](const char *field, void (SystemInfoDetector::*signal)()) {
        QObject::connect(detector.get(), signal, detector.get(), [&changes, field] { ++changes[field]; });
    };
    count("bootDiskIdentifier", &SystemInfoDetector::bootDiskIdentifierChanged);
    count("bootloaderDiskIdentifier", &SystemInfoDetector::bootloaderDiskIdentifierChanged);
    count("openCoreVersion", &SystemInfoDetector::openCoreVersionChanged);
    count("cloverVersion", &SystemInfoDetector::cloverVersionChanged);
    count("bootVolumePath", &SystemInfoDetector::bootVolumePathChanged);
    count("isDetectionComplete", &SystemInfoDetector::isDetectionCompleteChanged);

    refresh();
    EXPECT_THAT(changes, ElementsAre(Pair("bootDiskIdentifier", 1), Pair("bootVolumePath", 1),
                                     Pair("bootloaderDiskIdentifier", 1), Pair("cloverVersion", 1),
                                     Pair("isDetectionComplete", 1), Pair("openCoreVersion", 1)));

    changes.clear();
    refresh();
    EXPECT_THAT(changes, ElementsAre(Pair("isDetectionComplete", 2)));

    changes.clear();
    bootFrom("disk5"); // without a volume's name
    detect();
    EXPECT_THAT(changes, ElementsAre(Pair("bootDiskIdentifier", 1), Pair("bootVolumePath", 1)));
}

// --- the end of the detector

class EndedDetector : public SystemInfoDetectorTest, public testing::WithParamInterface<ToolCase> {
protected:
    void SetUp() override
    {
        bootFrom("disk0");
        startOpenCoreFrom(kUUID, {"disk0", "disk3"});
        tools.answer(info("disk0s1"), infoWith("none"));
        tools.hold(GetParam().commandLine);
    }

    void endWhileTheToolRuns()
    {
        drainEventLoop();
        ASSERT_THAT(tools.calls(), Contains(GetParam().commandLine));
        detector.reset();
        const auto before = tools.calls();
        tools.release(GetParam().commandLine);
        drainEventLoop();

        EXPECT_EQ(tools.calls(), before) << "asked after its end";
    }
};

TEST_P(EndedDetector, AsksNothingMoreForARefresh)
{
    auto pass = detector->refreshBootInfo();

    endWhileTheToolRuns();

    EXPECT_TRUE(pass.isReady());
}

TEST_P(EndedDetector, AsksNothingMoreForAFullPass)
{
    auto pass = detector->detectSystemInfo();

    endWhileTheToolRuns();

    EXPECT_TRUE(pass.isReady());
}

INSTANTIATE_TEST_SUITE_P(
    SystemInfoDetector, EndedDetector,
    testing::Values(ToolCase{"AtTheBootDisk", "/usr/sbin/diskutil info /"},
                    ToolCase{"AtOpenCoresVersion",
                             "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version"},
                    ToolCase{"AtTheBootPath", "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path"},
                    ToolCase{"AtTheListOfDisks", "/usr/sbin/diskutil list physical"},
                    ToolCase{"AtAFirstPartition", "/usr/sbin/diskutil info disk3s1"},
                    ToolCase{"AtASecondPartition", "/usr/sbin/diskutil info disk0s2"},
                    ToolCase{"AtCloversVersion", "/usr/sbin/nvram Clover.Version"}),
    [](const auto &row) { return row.param.name; });

TEST_F(SystemInfoDetectorTest, MayEndWhileTheToolRunsThatFindsTheDiskOfOpenCore)
{
    startOpenCoreFrom(kUUID, {"disk3"});
    tools.answer(info("disk3s1"), infoWith(kUUID));
    tools.hold(info("disk3s1"));
    auto pass = detector->refreshBootInfo();
    drainEventLoop();
    int changes = 0;
    QObject::connect(detector.get(), &SystemInfoDetector::bootloaderDiskIdentifierChanged, [&] { ++changes; });

    detector.reset();
    tools.release(info("disk3s1"));
    blockOn(std::move(pass), kPatience);

    EXPECT_EQ(changes, 0);
}

TEST_F(SystemInfoDetectorTest, MayEndBeforeItsPassBegins)
{
    auto pass = detector->refreshBootInfo();
    detector.reset();

    blockOn(std::move(pass), kPatience);

    EXPECT_THAT(tools.calls(), IsEmpty());
}

} // namespace
} // namespace brindle
