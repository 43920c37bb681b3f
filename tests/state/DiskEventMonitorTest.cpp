#include "state/DiskEventMonitor.h"

#include "base/Error.h"
#include "support/FakeDiskEvents.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Disk = DiskEvents::DiskDescription;
using Change = DiskEvents::DiskChange;

class DiskEventMonitorTest : public testing::Test {
protected:
    /// The lines since the last call.
    std::vector<std::string> newLines()
    {
        const std::vector<std::string> lines(log.lines().begin() + static_cast<std::ptrdiff_t>(m_seen),
                                             log.lines().end());
        m_seen = log.lines().size();
        return lines;
    }

    void start()
    {
        monitor->startMonitoring();
        newLines();
    }

    void appear() const { events.tellDisk(Change::appeared, Disk{.isWhole = true, .mediaName = "Stick"}); }

    /// One scan: its `force`, and when it was asked for, counted from the start of the clock.
    struct Scan {
        bool force;
        Scheduler::Duration at;
        bool operator==(const Scan &) const = default;
    };

    QCoro::Task<> scan(bool force)
    {
        scans.push_back({force, clock.date() - m_start});
        if (isFailing)
            throw Error("Test", 1, "No scan today.");
        co_return;
    }

    LogCapture log;
    ManualClock clock;
    FakeDiskEvents events;
    std::vector<Scan> scans;
    bool isFailing = false;
    std::unique_ptr<DiskEventMonitor> monitor =
        std::make_unique<DiskEventMonitor>(events, clock, [this](bool force) { return scan(force); });

private:
    Scheduler::Date m_start = clock.date();
    std::size_t m_seen = 0;
};

// --- start and stop

TEST_F(DiskEventMonitorTest, LogsItsStart)
{
    monitor->startMonitoring();

    EXPECT_TRUE(monitor->isMonitoring());
    EXPECT_THAT(log.lines(), ElementsAre("✅ NSWorkspace volume observers registered",
                                         "✅ DiskArbitration session created — physical disk callbacks registered",
                                         "✅ DiskEventMonitor started"));
}

TEST_F(DiskEventMonitorTest, HasOneSetOfObserversWhenItIsStartedTwice)
{
    start();

    monitor->startMonitoring();

    EXPECT_EQ(events.observations(), 3U);
    EXPECT_THAT(newLines(), IsEmpty());
    events.mount("/Volumes/Data");
    EXPECT_THAT(newLines(), ElementsAre("📂 Volume mounted: /Volumes/Data"));
}

TEST_F(DiskEventMonitorTest, LogsItsStopAndObservesNothingAnyMore)
{
    start();

    monitor->stopMonitoring();

    EXPECT_FALSE(monitor->isMonitoring());
    EXPECT_EQ(events.observations(), 0U);
    EXPECT_THAT(newLines(), ElementsAre("🔌 DiskArbitration session torn down", "🛑 DiskEventMonitor stopped"));
}

TEST_F(DiskEventMonitorTest, DoesNothingWhenItIsStoppedWithoutAStartOrTwice)
{
    monitor->stopMonitoring();
    EXPECT_THAT(newLines(), IsEmpty());

    start();
    monitor->stopMonitoring();
    newLines();
    monitor->stopMonitoring();
    EXPECT_THAT(newLines(), IsEmpty());
}

TEST_F(DiskEventMonitorTest, StopsWithATimerPendingSoThatItNeverFires)
{
    start();
    events.mount("/Volumes/Data");
    appear();
    clock.advance(500ms);
    EXPECT_EQ(clock.pendingTimers(), 2U);

    monitor->stopMonitoring();
    clock.advance(10s);

    EXPECT_EQ(clock.pendingTimers(), 0U);
    EXPECT_THAT(scans, IsEmpty());
}

TEST_F(DiskEventMonitorTest, StopsInTheTurnOfAnEventWhoseTimerIsNotEvenMade)
{
    start();
    events.mount("/Volumes/Data");
    appear();

    monitor->stopMonitoring();
    clock.advance(10s);

    EXPECT_THAT(scans, IsEmpty());
}

TEST_F(DiskEventMonitorTest, WorksAgainAfterAStopAndAStartInOneTurn)
{
    start();

    monitor->stopMonitoring();
    monitor->startMonitoring();
    events.mount("/Volumes/Data");
    clock.advance(1s);

    EXPECT_EQ(events.observations(), 3U);
    EXPECT_THAT(scans, ElementsAre(Scan{true, 1s}));
}

TEST_F(DiskEventMonitorTest, StopsWhenItIsReleasedWhileItMonitors)
{
    start();
    events.mount("/Volumes/Data");
    appear();
    clock.advance(500ms);
    newLines();

    monitor.reset();
    clock.advance(10s);

    EXPECT_EQ(events.observations(), 0U);
    EXPECT_EQ(clock.pendingTimers(), 0U);
    EXPECT_THAT(newLines(), ElementsAre("🔌 DiskArbitration session torn down", "🛑 DiskEventMonitor stopped"));
    EXPECT_THAT(scans, IsEmpty());
}

TEST_F(DiskEventMonitorTest, LogsNothingWhenItIsReleasedWithoutMonitoring)
{
    monitor.reset();

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DiskEventMonitorTest, IsReleasedInTheTurnOfAnEventWithoutHarm)
{
    start();
    events.mount("/Volumes/Data");

    monitor.reset();
    clock.advance(10s);

    EXPECT_THAT(scans, IsEmpty());
}

TEST_F(DiskEventMonitorTest, GoesOnWithVolumesWhenThereIsNoSession)
{
    events.hasSessions = false;

    monitor->startMonitoring();
    EXPECT_THAT(newLines(), ElementsAre("✅ NSWorkspace volume observers registered",
                                        "❌ Failed to create DiskArbitration session", "✅ DiskEventMonitor started"));
    events.unmount("/Volumes/Data");
    clock.advance(1s);
    EXPECT_THAT(scans, ElementsAre(Scan{true, 1s}));
    newLines();
    monitor->stopMonitoring();
    EXPECT_THAT(newLines(), ElementsAre("🛑 DiskEventMonitor stopped"));
}

// --- volumes

TEST_F(DiskEventMonitorTest, ScansWithForceOneSecondAfterAVolumeEventAndNotBefore)
{
    start();
    events.mount("/Volumes/Data");

    clock.advance(999ms);
    EXPECT_THAT(scans, IsEmpty());
    EXPECT_THAT(newLines(), ElementsAre("📂 Volume mounted: /Volumes/Data"));
    clock.advance(1ms);
    EXPECT_THAT(scans, ElementsAre(Scan{true, 1s}));
    EXPECT_THAT(newLines(), ElementsAre("📢 Disk event triggered refresh"));
    clock.advance(1h);
    EXPECT_EQ(scans.size(), 1U);
}

TEST_F(DiskEventMonitorTest, MakesOneScanOfThreeVolumeEventsHalfASecondApart)
{
    start();

    events.mount("/Volumes/A");
    clock.advance(500ms);
    events.unmount("/Volumes/B");
    clock.advance(500ms);
    events.mount("/Volumes/C");
    clock.advance(999ms);
    EXPECT_THAT(scans, IsEmpty());
    clock.advance(1ms);

    EXPECT_THAT(scans, ElementsAre(Scan{true, 2s}));
    EXPECT_THAT(newLines(), ElementsAre("📂 Volume mounted: /Volumes/A", "📂 Volume unmounted: /Volumes/B",
                                        "📂 Volume mounted: /Volumes/C", "📢 Disk event triggered refresh"));
}

TEST_F(DiskEventMonitorTest, PassesOverAVolumeEventWithoutAPath)
{
    start();

    events.mount(std::nullopt);
    events.unmount(std::nullopt);
    clock.advance(10s);

    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_THAT(scans, IsEmpty());
}

struct PathCase {
    const char *name;
    const char *path;
};

class EFIVolumes : public DiskEventMonitorTest, public testing::WithParamInterface<PathCase> {};

TEST_P(EFIVolumes, LogNothingAndStartNoTimer)
{
    start();

    events.mount(GetParam().path);
    events.unmount(GetParam().path);
    clock.advance(0ms);

    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

INSTANTIATE_TEST_SUITE_P(DiskEventMonitor, EFIVolumes,
                         testing::Values(PathCase{"UpperCase", "/Volumes/EFI"}, PathCase{"LowerCase", "/Volumes/efi"},
                                         PathCase{"MixedCase", "/Volumes/My eFi 1"},
                                         PathCase{"WithinAWord", "/Volumes/Benefits"},
                                         PathCase{"InAFolderAbove", "/run/media/Refilwe/Stick"}),
                         [](const auto &row) { return row.param.name; });

TEST_F(DiskEventMonitorTest, TakesAPathThatHoldsTheLettersApartForAnOrdinaryVolume)
{
    start();

    events.mount("/Volumes/EF I");

    EXPECT_THAT(newLines(), ElementsAre("📂 Volume mounted: /Volumes/EF I"));
}

// --- whole disks

TEST_F(DiskEventMonitorTest, ScansWithForceTwoSecondsAfterAWholeDiskEventAndNotBefore)
{
    start();
    appear();

    clock.advance(1999ms);
    EXPECT_THAT(scans, IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(scans, ElementsAre(Scan{true, 2s}));
    EXPECT_THAT(newLines(), ElementsAre("💿 Physical disk appeared: Stick", "📢 Disk event triggered refresh"));
}

TEST_F(DiskEventMonitorTest, PassesOverAPartitionAndTakesItsWholeDisk)
{
    start();

    events.tellDisk(Change::appeared, Disk{.isWhole = false, .mediaName = "Partition"});
    clock.advance(0ms);
    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_EQ(clock.pendingTimers(), 0U);

    events.tellDisk(Change::disappeared, Disk{.isWhole = true, .mediaName = "Whole"});
    clock.advance(0ms);
    EXPECT_THAT(newLines(), ElementsAre("💿 Physical disk disappeared: Whole"));
    EXPECT_EQ(clock.pendingTimers(), 1U);
}

TEST_F(DiskEventMonitorTest, PassesOverADiskThatIsNotDescribedOrNotSaidToBeWhole)
{
    start();

    events.tellDisk(Change::appeared, std::nullopt);
    events.tellDisk(Change::disappeared, Disk{.isWhole = std::nullopt, .mediaName = "Something"});
    clock.advance(10s);

    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_THAT(scans, IsEmpty());
}

TEST_F(DiskEventMonitorTest, NamesADiskWithoutAMediaNameUnknown)
{
    start();

    events.tellDisk(Change::appeared, Disk{.isWhole = true, .mediaName = std::nullopt});
    events.tellDisk(Change::disappeared, Disk{.isWhole = true, .mediaName = std::nullopt});

    EXPECT_THAT(newLines(), ElementsAre("💿 Physical disk appeared: unknown", "💿 Physical disk disappeared: unknown"));
}

// --- bursts

TEST_F(DiskEventMonitorTest, FiresBothTimersWhenADiskWithTwoVolumesIsUnplugged)
{
    start();

    events.unmount("/Volumes/One");
    clock.advance(100ms);
    events.unmount("/Volumes/Two");
    clock.advance(100ms);
    events.tellDisk(Change::disappeared, Disk{.isWhole = true, .mediaName = "Stick"});
    clock.advance(1h);

    EXPECT_THAT(scans, ElementsAre(Scan{true, 1100ms}, Scan{true, 2200ms}));
}

TEST_F(DiskEventMonitorTest, NeverPushesTheScanOfOneSourceBackByTheOther)
{
    start();

    appear();
    clock.advance(900ms);
    events.mount("/Volumes/Data");
    clock.advance(900ms);
    appear();
    clock.advance(1h);

    EXPECT_THAT(scans, ElementsAre(Scan{true, 1900ms}, Scan{true, 3800ms}));
}

TEST_F(DiskEventMonitorTest, MakesOneScanOfAStormOfAThousandEvents)
{
    start();

    for (int i = 0; i < 1000; ++i) {
        appear();
        if (i % 10 == 0)
            clock.advance(10ms);
    }
    clock.advance(1h);

    EXPECT_THAT(scans, ElementsAre(Scan{true, 3s}));
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST_F(DiskEventMonitorTest, ScansAgainAfterAScanThatFailed)
{
    start();
    isFailing = true;
    events.mount("/Volumes/A");
    clock.advance(2s);
    isFailing = false;

    events.mount("/Volumes/B");
    clock.advance(2s);

    EXPECT_THAT(scans, ElementsAre(Scan{true, 1s}, Scan{true, 3s}));
}

} // namespace
} // namespace brindle
