#include "shell/AppDelegate.h"

#include "base/DefaultsKeys.h"
#include "platform/linux/LinuxFileManager.h"
#include "shell/WindowDelegate.h"
#include "state/DiskManagerFixture.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationHost.h"
#include "support/FakeDiskEvents.h"
#include "support/FakeStatusItemHost.h"
#include "support/FakeWindowHost.h"
#include "support/MountedPlaces.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const SecretKey kPassword{"com.orlane.Brindle", "admin-password"};

/// A process with all that it is made of as fakes, on a machine without disks and with a stored password.
class AppDelegateTest : public DiskManagerFixture {
protected:
    AppDelegateTest()
    {
        tools.answer("/usr/sbin/diskutil list physical", "");
        (void)secretStore.add(kPassword, Secret("open sesame"));
    }

    /// Lets all that is still under way come to its end.
    ~AppDelegateTest() override
    {
        endDelegate();
        clock.advance(10s);
    }

    void store(const char *mode) { defaults.set(DefaultsKeys::kLaunchMode, mode); }
    void forgetPassword() { secretStore.remove(kPassword); }

    /// The delegate, made at the first call.
    AppDelegate &delegate()
    {
        if (!m_delegate) {
            m_delegate.emplace(AppDelegate::Surroundings{.defaults = defaults,
                                                         .scheduler = clock,
                                                         .application = application,
                                                         .windows = windows,
                                                         .statusItem = statusItem,
                                                         .appearance = appearance,
                                                         .diskManager = manager(),
                                                         .diskEventMonitor = monitor,
                                                         .keychain = keychain(),
                                                         .efiCopyManager = copyManager,
                                                         .unfinishedWork = unfinishedWork,
                                                         .mainWindow = mainWindow()},
                               arguments);
            application.setDelegate(&*m_delegate);
        }
        return *m_delegate;
    }

    void endDelegate() { m_delegate.reset(); }

    MainWindowOpener &mainWindow()
    {
        if (!m_mainWindow)
            m_mainWindow.emplace(MainWindowOpener::Surroundings{.windows = windows,
                                                                .windowDelegate = windowDelegate,
                                                                .application = application,
                                                                .diskManager = manager(),
                                                                .heightCalculator = heights});
        return *m_mainWindow;
    }

    /// The start up to \a time after it.
    void launch(Scheduler::Duration time = 0s)
    {
        delegate();
        application.finishLaunching();
        clock.advance(time);
    }

    /// The index of \a line in the log; fails the test where it isn't there.
    std::ptrdiff_t placeOf(const std::string &line)
    {
        EXPECT_THAT(log.lines(), Contains(line));
        return std::ranges::find(log.lines(), line) - log.lines().begin();
    }

    FakeApplicationHost application{journal};
    FakeWindowHost windows{journal};
    FakeStatusItemHost statusItem;
    FakeAppearance appearance;
    FakeDiskEvents events;
    WindowDelegate windowDelegate{defaults, application};
    ViewHeightCalculator heights{defaults};
    DiskEventMonitor monitor{events, clock, [this](bool force) { return manager().startScan(force); }};
    LinuxFileManager files;
    MountedPlaces places;
    EFICopyManager copyManager{files, dialogs, clock, unfinishedWork, places.look()};
    std::vector<std::string> arguments{"brindle"};

private:
    std::optional<MainWindowOpener> m_mainWindow;
    std::optional<AppDelegate> m_delegate;
};

// --- the start

TEST_F(AppDelegateTest, TellsEachStepOfTheStartInItsOrder)
{
    store("window");
    delegate();
    const std::size_t before = log.lines().size();

    launch(2s);

    EXPECT_THAT(std::vector(log.lines().begin() + static_cast<std::ptrdiff_t>(before), log.lines().end()),
                ElementsAre("\n🚀 Brindle Starting...", "   🔌 Mode from UserDefaults: window",
                            "🎯 Launch mode: window", "🔍 Fresh launch - performing initial disk scan",
                            "   ➡️ Fetching disk list", "Found 0 physical disks: []", "Found 0 disks to process: []",
                            "   ✅ Disk list fetched: 0 disks", "   ⚠️ No disks found, exiting scan",
                            "📡 Starting disk event monitoring", "✅ NSWorkspace volume observers registered",
                            "✅ DiskArbitration session created — physical disk callbacks registered",
                            "✅ DiskEventMonitor started", "✅ DiskEventMonitor started",
                            "✅ All components initialized\n"));
}

TEST_F(AppDelegateTest, ReturnsBeforeTheComponentsComeUp)
{
    delegate();
    application.finishLaunching();

    EXPECT_THAT(log.lines(), Not(Contains("🔍 Fresh launch - performing initial disk scan")));
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(AppDelegateTest, StartsOnce)
{
    launch();
    const std::vector<std::string> lines = log.lines();
    const std::vector<std::string> asked = journal;

    delegate().applicationDidFinishLaunching();
    drainEventLoop();

    EXPECT_EQ(log.lines(), lines);
    EXPECT_EQ(journal, asked);
}

TEST_F(AppDelegateTest, FollowsTheSystemsAppearanceFirst)
{
    launch();

    EXPECT_EQ(journal.front(), "follow the system's appearance");
}

TEST_F(AppDelegateTest, OpensTheWindowAfterAFifthOfASecondWhileTheScanRuns)
{
    store("window");
    tools.hold("/usr/sbin/diskutil list physical");

    launch(199ms);
    EXPECT_THAT(journal, ElementsAre("follow the system's appearance", "policy regular"));

    clock.advance(1ms);
    EXPECT_THAT(journal, Contains("create 500 x 202"));
    EXPECT_TRUE(manager().isLoadingDisks());
    tools.release("/usr/sbin/diskutil list physical");
    drainEventLoop();
}

TEST_F(AppDelegateTest, ClosesEveryWindowAtTheNextTurnInTheMenuBarMode)
{
    windows.openWindows = {{.id = WindowHost::WindowID{7}, .isVisible = true}, {.id = WindowHost::WindowID{8}}};
    delegate();

    application.finishLaunching();
    EXPECT_THAT(journal, ElementsAre("follow the system's appearance", "policy accessory"));

    drainEventLoop();
    EXPECT_THAT(journal, ElementsAre("follow the system's appearance", "policy accessory", "close 7", "close 8"));
}

TEST_F(AppDelegateTest, OpensNoWindowInTheMenuBarMode)
{
    launch(10s);

    EXPECT_THAT(windows.windows(), IsEmpty());
}

TEST_F(AppDelegateTest, StartsInTheMenuBarModeForAnUnknownStoredText)
{
    store("dock");

    launch();

    EXPECT_EQ(placeOf("🎯 Launch mode: menubar"), placeOf("   🔌 Mode from UserDefaults: dock") + 1);
    EXPECT_THAT(journal, Contains("policy accessory"));
}

TEST_F(AppDelegateTest, OpensTheWindowForTheArgumentAndGoesOnByTheStoredMode)
{
    store("menubar");
    arguments = {"brindle", "-launchMode", "window"};

    launch(1s);

    EXPECT_EQ(placeOf("🎯 Launch mode: window"), placeOf("   🔌 Mode from argument: window") + 1);
    EXPECT_THAT(windows.windows(), SizeIs(1));
    EXPECT_FALSE(delegate().applicationShouldTerminateAfterLastWindowClosed());
    windows.closeByUser(windows.windows().front().id);
    EXPECT_THAT(journal, Not(Contains("quit")));
    EXPECT_FALSE(delegate().applicationShouldHandleReopen(false));
}

TEST_F(AppDelegateTest, TakesASwitchedRelaunchForAFreshLaunchBecauseTheModelHasDealtWithIt)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, true);

    launch();

    EXPECT_THAT(log.lines(), Contains("🔍 Fresh launch - performing initial disk scan"));
}

TEST_F(AppDelegateTest, TellsOfASwitchThatIsWrittenBehindTheModel)
{
    delegate();
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, true);

    launch();

    EXPECT_THAT(log.lines(), Contains("🔄 Mode switch - performing verification scan"));
    EXPECT_THAT(log.lines(), Not(Contains("🔍 Fresh launch - performing initial disk scan")));
}

TEST_F(AppDelegateTest, ScansAlsoShortlyAfterTheLastScanOfAFormerProcess)
{
    defaults.set(DefaultsKeys::kLastRefreshTime, clock.date());

    launch();

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

TEST_F(AppDelegateTest, ListensToDisksOnceTheScanIsOver)
{
    tools.hold("/usr/sbin/diskutil list physical");
    launch(10s);
    EXPECT_FALSE(monitor.isMonitoring());

    tools.release("/usr/sbin/diskutil list physical");
    drainEventLoop();

    EXPECT_TRUE(monitor.isMonitoring());
}

TEST_F(AppDelegateTest, TellsOfNoStartOfAMonitorThatRunsAlready)
{
    monitor.startMonitoring();

    launch();

    EXPECT_EQ(std::ranges::count(log.lines(), "✅ DiskEventMonitor started"), 1);
    EXPECT_THAT(log.lines(), Contains("📡 Starting disk event monitoring"));
}

TEST_F(AppDelegateTest, LooksForThePasswordHalfASecondLaterAndIsDoneAfterOneMore)
{
    launch(499ms);
    EXPECT_FALSE(defaults.boolForKey(DefaultsKeys::kHasLaunchedBefore));

    clock.advance(1ms);
    EXPECT_THAT(secretStore.calls.back(), testing::StartsWith("find"));

    clock.advance(999ms);
    EXPECT_THAT(log.lines(), Not(Contains("✅ All components initialized\n")));
    clock.advance(1ms);
    EXPECT_EQ(log.lines().back(), "✅ All components initialized\n");
}

// --- the password

TEST_F(AppDelegateTest, AsksForAMissingPasswordAndTellsOfARefusalAtEveryLaunch)
{
    forgetPassword();
    defaults.set(DefaultsKeys::kHasLaunchedBefore, true);

    launch(10s);

    EXPECT_THAT(dialogs.securePrompts, SizeIs(1));
    ASSERT_THAT(dialogs.alerts, SizeIs(1));
    EXPECT_EQ(dialogs.alerts[0].messageText, "Administrator Password Required");
    EXPECT_EQ(dialogs.alerts[0].informativeText,
              "Brindle requires administrator privileges to mount/unmount EFI partitions. You can set this up later in "
              "Settings.");
    EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::warning);
    EXPECT_THAT(dialogs.alerts[0].buttons, ElementsAre("OK"));
    EXPECT_EQ(log.lines().back(), "✅ All components initialized\n");
}

TEST_F(AppDelegateTest, AsksForNothingWhereThePasswordIsStored)
{
    launch(10s);

    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_THAT(dialogs.alerts, IsEmpty());
}

// --- a desktop without status items

TEST_F(AppDelegateTest, OpensTheWindowAndClosesNoneWhereNoStatusItemCanBeShown)
{
    statusItem.hasPlace = false;
    windows.openWindows = {{.id = WindowHost::WindowID{7}}};

    launch(200ms);

    EXPECT_EQ(placeOf("ℹ️ No status item can be shown here, so the window opens"),
              placeOf("🎯 Launch mode: menubar") + 1);
    EXPECT_THAT(journal, ElementsAre("follow the system's appearance", "policy regular", "create 500 x 202", "center 1",
                                     "make key 1", "activate", "finish 1"));
}

TEST_F(AppDelegateTest, EndsWithItsLastWindowWhereNoStatusItemCanBeShown)
{
    statusItem.hasPlace = false;
    launch(200ms);

    windows.closeByUser(windows.windows().front().id);
    application.lastWindowClosed();

    EXPECT_EQ(journal.back(), "quit");
}

TEST_F(AppDelegateTest, TellsNothingOfStatusItemsInTheWindowMode)
{
    statusItem.hasPlace = false;
    store("window");

    launch(1s);

    EXPECT_THAT(log.lines(), Not(Contains(testing::HasSubstr("status item"))));
}

// --- opened again and closed

TEST_F(AppDelegateTest, OpensTheWindowAgainInTheWindowModeWhereNoneIsVisible)
{
    store("window");

    EXPECT_TRUE(delegate().applicationShouldHandleReopen(false));

    EXPECT_THAT(windows.windows(), SizeIs(1));
    drainEventLoop();
}

TEST_F(AppDelegateTest, OpensNothingAgainWhereAWindowIsVisible)
{
    store("window");

    EXPECT_FALSE(delegate().applicationShouldHandleReopen(true));

    EXPECT_THAT(windows.windows(), IsEmpty());
}

TEST_F(AppDelegateTest, OpensNothingAgainInTheMenuBarMode)
{
    EXPECT_FALSE(delegate().applicationShouldHandleReopen(false));

    EXPECT_THAT(windows.windows(), IsEmpty());
}

TEST_F(AppDelegateTest, EndsWithItsLastWindowExactlyInTheWindowMode)
{
    store("window");
    EXPECT_TRUE(delegate().applicationShouldTerminateAfterLastWindowClosed());

    store("menubar");
    EXPECT_FALSE(delegate().applicationShouldTerminateAfterLastWindowClosed());
}

TEST_F(AppDelegateTest, EndsWhenTheUserClosesTheWindowInTheWindowMode)
{
    store("window");
    launch(200ms);

    windows.closeByUser(windows.windows().front().id);
    application.lastWindowClosed();

    EXPECT_EQ(std::ranges::count(journal, "quit"), 1);
}

// --- the appearance

TEST_F(AppDelegateTest, DrawsAllWindowsAnewWhenTheAppearanceOrAScreenChanges)
{
    launch();
    windows.openWindows = {{.id = WindowHost::WindowID{7}, .isVisible = true}, {.id = WindowHost::WindowID{8}}};
    journal.clear();

    appearance.setColorScheme(ColorScheme::dark);
    EXPECT_THAT(journal, ElementsAre("redraw 7", "redraw 8"));

    Q_EMIT windows.screenParametersChanged();
    EXPECT_THAT(journal, ElementsAre("redraw 7", "redraw 8", "redraw 7", "redraw 8"));
}

// --- the end

TEST_F(AppDelegateTest, BringsNothingUpAfterItsEnd)
{
    forgetPassword();
    launch(400ms);

    endDelegate();
    clock.advance(10s);

    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_THAT(log.lines(), Not(Contains("✅ All components initialized\n")));
}

TEST_F(AppDelegateTest, StopsListeningAtTheEnd)
{
    launch(2s);
    windows.openWindows = {{.id = WindowHost::WindowID{7}, .isVisible = true}};
    journal.clear();

    application.terminate();
    EXPECT_TRUE(monitor.isMonitoring());
    drainEventLoop();

    EXPECT_FALSE(monitor.isMonitoring());
    EXPECT_EQ(std::ranges::count(log.lines(), "🛑 DiskEventMonitor stopped"), 2); // the monitor tells it too
    appearance.setColorScheme(ColorScheme::dark);
    Q_EMIT windows.screenParametersChanged();
    EXPECT_THAT(journal, ElementsAre("quit"));
}

TEST_F(AppDelegateTest, TellsOfNoEndOfAMonitorThatNeverRan)
{
    delegate();

    application.terminate();
    drainEventLoop();

    EXPECT_THAT(log.lines(), Not(Contains("🛑 DiskEventMonitor stopped")));
}

} // namespace
} // namespace brindle
