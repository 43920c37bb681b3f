#include "views/WindowContentPresenter.h"

#include "views/WindowContentFixture.h"

#include "state/AutoMountMarks.h"

#include <fmt/format.h>

#include <filesystem>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class WindowContentPresenterTest : public WindowContentFixture {
protected:
    /// Mounts the one EFI partition of disk2, which lasts until the launcher lets it go on.
    void beginAMountThatWaits()
    {
        hold({externalDisk("disk2", {{.identifier = "disk2s1"}})});
        answerInfo("disk2s1", false);
        answerSudo("mount disk2s1");
        launcher.hold(sudo("mount disk2s1"));
        row().perform(RowAction::toggleMount);
        clock.advance(0ms);
    }
};

// --- the list

TEST_F(WindowContentPresenterTest, StaysOnTheFirstScanUntilThatIsOver)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    paths = ToolPaths::system();
    plugIn({"disk2"});

    EXPECT_EQ(content().listState(), QStringLiteral("firstScan"));
    scan();
    EXPECT_EQ(content().listState(), QStringLiteral("rows"));
}

TEST_F(WindowContentPresenterTest, StaysOnTheFirstScanWhenDisksArePublishedBeforeThatIsOver)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    paths = ToolPaths::system();
    plugIn({"disk2"});
    content();
    std::vector<std::string> states;
    QObject::connect(&manager(), &DiskManager::disksChanged, [&] {
        states.push_back(fmt::format("{} {}", manager().disks().size(), content().listState().toStdString()));
    });

    scan();

    EXPECT_THAT(states, ElementsAre("1 firstScan"));
    EXPECT_EQ(content().listState(), QStringLiteral("rows"));
}

TEST_F(WindowContentPresenterTest, ShowsTheRowsOfTheDisksInTheirOrder)
{
    EXPECT_EQ(content().listState(), QStringLiteral("rows"));
    EXPECT_EQ(row(0).identifier(), QStringLiteral("disk2"));
    EXPECT_EQ(row(1).identifier(), QStringLiteral("disk5"));
}

TEST_F(WindowContentPresenterTest, SaysThatThereAreNoDisks)
{
    findNoDisks();

    EXPECT_EQ(content().listState(), QStringLiteral("empty"));
}

TEST_F(WindowContentPresenterTest, SaysThatItScansWhileItLooksForDisksAnewAndHasNone)
{
    findNoDisks();
    std::vector<QString> states;
    QObject::connect(&content(), &WindowContentPresenter::listStateChanged,
                     [&] { states.push_back(content().listState()); });

    scan();

    ASSERT_THAT(states, Not(IsEmpty()));
    EXPECT_EQ(states.front(), QStringLiteral("scanning"));
    EXPECT_EQ(states.back(), QStringLiteral("empty"));
}

TEST_F(WindowContentPresenterTest, SaysThatItIsReadyWhereNothingGoesOn)
{
    EXPECT_EQ(content().statusText(), QStringLiteral("Ready"));
    EXPECT_EQ(content().spinnerScale(), 0);
    EXPECT_EQ(content().content(), QStringLiteral("diskList"));
}

// --- actions of rows

TEST_F(WindowContentPresenterTest, TellsOfAnActionWhileItRuns)
{
    beginAMountThatWaits();

    EXPECT_EQ(content().statusText(), QStringLiteral("Mounting EFI partition of Disk disk2"));
    EXPECT_TRUE(row().isLoading());
    launcher.release(sudo("mount disk2s1"));
    settle();
    EXPECT_EQ(content().statusText(), QStringLiteral("Ready"));
    EXPECT_FALSE(row().isLoading());
}

TEST_F(WindowContentPresenterTest, TellsOfAnEjectWhileItRunsAndStartsNoSecondOne)
{
    hold({externalDisk("disk2")});
    const std::string eject = diskutil("eject disk2");
    tools.answer(eject, "Disk disk2 ejected\n");
    tools.hold(eject);
    for (int time = 0; time < 2; ++time) {
        row().perform(RowAction::eject);
        clock.advance(0ms);
    }

    EXPECT_EQ(content().statusText(), QStringLiteral("Ejecting Disk disk2"));
    EXPECT_TRUE(row().isLoading());
    tools.release(eject);
    settle();
    EXPECT_EQ(content().rows()->rowCount(), 0);
    EXPECT_EQ(content().statusText(), QStringLiteral("Ready"));
    EXPECT_THAT(tools.calls(), Contains(eject).Times(1));
    EXPECT_THAT(dialogs.alerts, IsEmpty());
}

TEST_F(WindowContentPresenterTest, ShowsTheMountedPartitionInItsRow)
{
    hold({externalDisk("disk2", {{.identifier = "disk2s1"}})});
    answerInfo("disk2s1", true);
    tools.answer(diskutil("info disk2s1"), fmt::format("   Not applicable\n   Mount Point: {}\n", mountPoint()));
    answerSudo("mount disk2s1");

    row().doubleClick();
    settle();

    EXPECT_EQ(row().toolTip(), QStringLiteral("Double click to unmount EFI"));
    EXPECT_EQ(row().buttons().size(), 5);
    EXPECT_THAT(journal, Contains("open " + mountPoint()));
}

TEST_F(WindowContentPresenterTest, DoesNothingOnADoubleClickOnADiskWithTwoPartitions)
{
    content();
    journal.clear();

    row().doubleClick();
    settle();

    EXPECT_EQ(row().toolTip(), QStringLiteral("Double click to mount EFI"));
    EXPECT_THAT(journal, IsEmpty());
}

/// An action of a row that can fail, and the alert that tells of it.
struct FailedAction {
    const char *name;
    bool isMounted = false;
    std::string reason;
    std::function<void(RowPresenter &row)> begin = [](RowPresenter &row) { row.doubleClick(); };
    Alert alert;
};

const FailedAction kFailedActions[] = {
    {.name = "Mount",
     .reason = "no medium\n",
     .alert = {.messageText = "The EFI partition (disk2s1) on Disk disk2 could not be mounted",
               .informativeText = "no medium"}},
    {.name = "MountByButton",
     .reason = "Sorry, try again.",
     .begin = [](RowPresenter &row) { row.perform(RowAction::toggleMount); },
     .alert = {.messageText = "The EFI partition (disk2s1) on Disk disk2 could not be mounted",
               .informativeText = "Sorry, try again."}},
    {.name = "MountWithoutAReason",
     .alert = {.messageText = "The EFI partition (disk2s1) on Disk disk2 could not be mounted",
               .informativeText = "Unknown error"}},
    {.name = "Unmount",
     .isMounted = true,
     .reason = "in use",
     .alert = {.messageText = "The EFI partition (disk2s1) on Disk disk2 could not be unmounted",
               .informativeText = "in use"}},
    {.name = "Eject",
     .reason = "in use by process 7",
     .begin = [](RowPresenter &row) { row.perform(RowAction::eject); },
     .alert = {.messageText = "Disk disk2 could not be ejected", .informativeText = "in use by process 7"}},
};

class FailedActionTest : public WindowContentPresenterTest, public testing::WithParamInterface<FailedAction> {
protected:
    void refuseAll()
    {
        hold({externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = GetParam().isMounted}})});
        answerInfo("disk2s1", GetParam().isMounted);
        for (const char *command : {"mount disk2s1", "unmount disk2s1", "unmount force disk2s1"})
            refuseSudo(command, GetParam().reason);
        tools.fail(diskutil("eject disk2"), Error("CommandError", 1, GetParam().reason));
    }
};

TEST_P(FailedActionTest, EndsItsStatusAndIsToldOfInAnAlert)
{
    refuseAll();

    GetParam().begin(row());
    settle();

    EXPECT_EQ(content().statusText(), QStringLiteral("Ready"));
    EXPECT_FALSE(row().isLoading());
    ASSERT_THAT(dialogs.alerts, SizeIs(1));
    EXPECT_EQ(dialogs.alerts.front().messageText, GetParam().alert.messageText);
    EXPECT_EQ(dialogs.alerts.front().informativeText, GetParam().alert.informativeText);
    EXPECT_EQ(dialogs.alerts.front().buttons, std::vector<std::string>{"OK"});
    EXPECT_THAT(log.lines(), Not(Contains(StartsWith("❌ A background task failed"))));
}

INSTANTIATE_TEST_SUITE_P(, FailedActionTest, testing::ValuesIn(kFailedActions),
                         [](const auto &info) { return info.param.name; });

TEST_F(WindowContentPresenterTest, MarksADiskForAutoMountAndTakesTheMarkBack)
{
    hold({externalDisk("disk2")});

    row().perform(RowAction::toggleAutoMount);
    EXPECT_EQ(autoMountMarks(defaults), (AutoMountMarks{{"UUID-disk2", "Disk disk2"}}));
    EXPECT_EQ(row().menu().front().label, "Disable EFI Auto-Mount");
    row().perform(RowAction::toggleAutoMount);
    EXPECT_EQ(autoMountMarks(defaults), AutoMountMarks{});
}

TEST_F(WindowContentPresenterTest, ShowsTheDetailsOfADisk)
{
    hold({externalDisk("disk2")});

    row().perform(RowAction::viewDetails);
    settle();

    ASSERT_EQ(dialogs.alerts.size(), 1U);
    EXPECT_EQ(dialogs.alerts[0].messageText, "Disk disk2 — Disk Details");
    EXPECT_THAT(dialogs.alerts[0].informativeText, StartsWith("SMART Status: Unknown\nMedia Type: Rotational (HDD)"));
    EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::informational);
    EXPECT_THAT(dialogs.alerts[0].buttons, ElementsAre("OK"));
}

TEST_F(WindowContentPresenterTest, OpensTheEraseDialogInPlaceOfTheList)
{
    row().perform(RowAction::eraseDisk);

    EXPECT_EQ(content().content(), QStringLiteral("erase"));
    EXPECT_EQ(eraseManager.dialogTitle(), "Erase Disk?");
    eraseManager.dismiss();
    EXPECT_EQ(content().content(), QStringLiteral("diskList"));
}

TEST_F(WindowContentPresenterTest, OpensTheCopyDialogInPlaceOfTheList)
{
    const EFIPartition mounted{.identifier = "disk2s1", .isMounted = true, .mountPoint = mountPoint()};
    EFIPartition destination = mounted;
    destination.identifier = "disk3s1";
    hold({externalDisk("disk2", {mounted}), externalDisk("disk3", {destination})});

    row().perform(RowAction::copyEFI);

    EXPECT_EQ(content().content(), QStringLiteral("efiCopy"));
}

TEST_F(WindowContentPresenterTest, GoesOnWithAnActionWhoseRowHasGone)
{
    beginAMountThatWaits();

    content().rows()->setDisks({}, {});
    launcher.release(sudo("mount disk2s1"));
    settle();

    EXPECT_EQ(content().statusText(), QStringLiteral("Ready"));
}

// --- height

TEST_F(WindowContentPresenterTest, GivesTheWindowTheHeightOfTheListAfterRowsHaveOpened)
{
    appear();
    EXPECT_THAT(heights(), IsEmpty());

    manager().toggleExpanded("disk2");
    clock.advance(49ms);
    EXPECT_THAT(heights(), IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(heights(), ElementsAre("height 1 314")); // 2 × 68 + 4 + 82 + 4 + 2 × (40 + 4)
}

TEST_F(WindowContentPresenterTest, ComesToOneHeightAfterRapidChanges)
{
    appear();

    for (int i = 0; i < 3; ++i)
        manager().toggleExpanded("disk2");
    clock.advance(1s);

    EXPECT_THAT(heights(), ElementsAre("height 1 314"));
}

TEST_F(WindowContentPresenterTest, IsCutToTheScreenAndFollowsIt)
{
    windowHost.screenHeight = 200;
    appear();
    EXPECT_THAT(heights(), IsEmpty());

    windowHost.screenHeight = 240;
    Q_EMIT windowHost.screenParametersChanged();
    clock.advance(50ms);

    EXPECT_THAT(heights(), ElementsAre("height 1 216"));
}

TEST_F(WindowContentPresenterTest, LeavesTheWindowAloneForAChangeOfTwoPointsOrLess)
{
    windowHost.screenHeight = 200;
    appear();

    windowHost.screenHeight = 202;
    Q_EMIT windowHost.screenParametersChanged();
    clock.advance(50ms);
    EXPECT_THAT(heights(), IsEmpty());
    windowHost.screenHeight = 205;
    Q_EMIT windowHost.screenParametersChanged();
    clock.advance(50ms);
    EXPECT_THAT(heights(), ElementsAre("height 1 184.5"));
}

TEST_F(WindowContentPresenterTest, TakesTheHeightOfTheDialogThatIsShown)
{
    appear();

    row().perform(RowAction::eraseDisk);
    clock.advance(50ms);
    EXPECT_EQ(heights().back(), "height 1 578");
    eraseManager.dismiss();
    clock.advance(50ms);
    EXPECT_EQ(heights().back(), "height 1 222");
}

TEST_F(WindowContentPresenterTest, FollowsTheSettingThatMakesRowsHigher)
{
    PhysicalDisk disk = externalDisk("disk2");
    disk.totalSpaceBytes = 100;
    disk.usedSpaceBytes = 50;
    hold({disk, externalDisk("disk3")});
    appear();

    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    clock.advance(50ms);

    EXPECT_THAT(heights(), ElementsAre("height 1 249"));
    EXPECT_EQ(row(0).height(), 95);
    EXPECT_EQ(row(1).height(), 68);
}

TEST_F(WindowContentPresenterTest, FindsItsHeightAnewWhenThatIsPosted)
{
    appear();
    windowHost.screenHeight = 200;

    notifications.post("RecalculatePopoverHeight");
    clock.advance(49ms);
    EXPECT_THAT(heights(), IsEmpty());
    clock.advance(1ms);

    EXPECT_THAT(heights(), ElementsAre("height 1 180"));
}

TEST_F(WindowContentPresenterTest, TellsOfARowThatDiffersInItsHeightAlone)
{
    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    PhysicalDisk disk = externalDisk("disk2");
    hold({disk});
    appear();
    int changes = 0;
    QObject::connect(&row(0), &DiskRowPresenter::changed, [&] { ++changes; });
    ASSERT_EQ(row(0).height(), 68);

    disk.totalSpaceBytes = 100; // of which nothing is known to be used
    content().rows()->setDisks({disk}, {});

    EXPECT_EQ(row(0).height(), 95);
    EXPECT_EQ(changes, 1);
}

TEST_F(WindowContentPresenterTest, DoesNothingWithoutAWindow)
{
    content().appear();

    manager().toggleExpanded("disk2");
    clock.advance(1s);

    EXPECT_THAT(windowJournal, IsEmpty());
}

TEST_F(WindowContentPresenterTest, OpensThePlaceWhereThePartitionIsMountedWhenItsEntryIsChosen)
{
    PhysicalDisk disk = externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true, .mountPoint = "/old"}});
    hold({disk});
    const auto chosen = row().prepare(RowAction::open);
    disk.efiPartitions.front().mountPoint = mountPoint();
    content().rows()->setDisks({disk}, {});

    std::filesystem::create_directories(mountPoint());

    chosen();
    waitUntil([this] { return !journal.empty(); });

    EXPECT_THAT(journal, ElementsAre("open " + mountPoint()));
}

} // namespace
} // namespace brindle
