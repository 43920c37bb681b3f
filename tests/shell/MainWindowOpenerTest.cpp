#include "shell/MainWindowOpener.h"

#include "base/DefaultsKeys.h"
#include "shell/WindowDelegate.h"
#include "state/DiskManagerFixture.h"
#include "support/FakeApplicationHost.h"
#include "support/FakeWindowHost.h"

#include <gmock/gmock.h>

#include <optional>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MainWindowOpenerTest : public DiskManagerFixture {
protected:
    void open()
    {
        opener.open();
        drainEventLoop();
    }

    FakeApplicationHost application{journal};
    FakeWindowHost windows{journal};
    WindowDelegate windowDelegate{defaults, application};
    ViewHeightCalculator heights{defaults};
    MainWindowOpener opener{{.windows = windows,
                             .windowDelegate = windowDelegate,
                             .application = application,
                             .diskManager = manager(),
                             .heightCalculator = heights}};
};

TEST_F(MainWindowOpenerTest, MakesAWindowAndFinishesItAtTheNextTurn)
{
    opener.open();
    EXPECT_THAT(journal, ElementsAre("create 500 x 202", "center 1", "make key 1", "activate"));

    drainEventLoop();
    EXPECT_EQ(journal.back(), "finish 1");
}

TEST_F(MainWindowOpenerTest, MakesItAsHighAsTheDisksOfNowNeedIt)
{
    plugIn({"disk0", "disk1", "disk2"});
    scan();

    open();

    EXPECT_EQ(journal.front(), "create 500 x 294");
}

TEST_F(MainWindowOpenerTest, CutsTheHeightToNineTenthsOfTheScreen)
{
    windows.screenHeight = 220;

    open();

    EXPECT_EQ(journal.front(), "create 500 x 198");
}

TEST_F(MainWindowOpenerTest, NeverMakesItLowerThan150OnAScreenThatIsLowerStill)
{
    windows.screenHeight = 100;

    open();

    EXPECT_EQ(journal.front(), "create 500 x 150");
}

TEST_F(MainWindowOpenerTest, TakesALimitOf900WithoutAScreen)
{
    windows.screenHeight.reset();
    plugIn({"disk0", "disk1", "disk2", "disk3", "disk4", "disk5", "disk6", "disk7", "disk8", "disk9", "disk10",
            "disk11"}); // 12 × 68 + 11 × 4 + 82 = 942
    scan();

    open();

    EXPECT_EQ(journal.front(), "create 500 x 900");
}

TEST_F(MainWindowOpenerTest, BringsTheFirstWindowThatIsVisibleOrHasContentToTheFront)
{
    windows.openWindows = {{.id = WindowHost::WindowID{7}},
                           {.id = WindowHost::WindowID{8}, .hasContent = true},
                           {.id = WindowHost::WindowID{9}, .isVisible = true}};

    open();

    EXPECT_THAT(journal, ElementsAre("make key 8", "activate"));
}

TEST_F(MainWindowOpenerTest, MakesAWindowWhereThoseThatAreThereShowNothing)
{
    windows.openWindows = {{.id = WindowHost::WindowID{7}}};

    open();

    EXPECT_EQ(journal.front(), "create 500 x 202");
}

TEST_F(MainWindowOpenerTest, LetsTheWindowDelegateBeAskedWhenTheUserCloses)
{
    defaults.set(DefaultsKeys::kLaunchMode, "menubar");
    open();

    windows.closeByUser(WindowHost::WindowID{1});

    EXPECT_THAT(windows.windows(), IsEmpty());
}

} // namespace
} // namespace brindle
