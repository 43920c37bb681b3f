#include "shell/LaunchModeSwitch.h"

#include "base/DefaultsKeys.h"
#include "support/FakeApplicationHost.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes the arguments of the processes that it doesn't start, and can fail.
class FakeRelauncher final : public Relauncher {
public:
    std::vector<std::vector<std::string>> started;
    std::optional<Error> failure;

    std::optional<Error> startNewInstance(std::vector<std::string> arguments) override
    {
        started.push_back(std::move(arguments));
        return failure;
    }
};

class LaunchModeSwitchTest : public testing::Test, protected ApplicationDelegate {
protected:
    LaunchModeSwitchTest() { application.setDelegate(this); }

    void applicationDidFinishLaunching() override {}
    bool applicationShouldHandleReopen(bool /*hasVisibleWindows*/) override { return false; }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }
    bool applicationShouldTerminate() override { return true; }
    void applicationWillTerminate() override {}

    LogCapture log;
    ManualClock clock;
    MemoryUserDefaults defaults;
    FakeRelauncher relauncher;
    std::vector<std::string> journal;
    FakeApplicationHost application{journal};
    LaunchModeSwitch modeSwitch{
        {.defaults = defaults, .scheduler = clock, .relauncher = relauncher, .application = application}};
};

TEST_F(LaunchModeSwitchTest, StoresTheWindowModeBeforeItStartsAProcessThatReadsItThere)
{
    modeSwitch.switchToWindow();
    EXPECT_EQ(launchMode(defaults), LaunchMode::window);
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kIsModeSwitchRelaunch));

    clock.advance(99ms);
    EXPECT_THAT(relauncher.started, IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(relauncher.started, ElementsAre(IsEmpty()));
}

TEST_F(LaunchModeSwitchTest, EndsHalfASecondAfterTheStartOfTheWindow)
{
    modeSwitch.switchToWindow();

    clock.advance(599ms);
    EXPECT_THAT(journal, IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(journal, ElementsAre("quit"));
}

TEST_F(LaunchModeSwitchTest, EndsAlsoWhereTheWindowCannotBeStarted)
{
    relauncher.failure = Error("Test", 1, "no such program");

    modeSwitch.switchToWindow();
    clock.advance(1s);

    EXPECT_THAT(journal, ElementsAre("quit"));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(launchMode(defaults), LaunchMode::window);
}

TEST_F(LaunchModeSwitchTest, StartsTheMenuBarModeAtOnceWithTheModeAsAnArgument)
{
    defaults.set(DefaultsKeys::kLaunchMode, "window");

    modeSwitch.switchToMenuBar();

    EXPECT_THAT(log.lines(), ElementsAre("🔄 Switching to menubar mode..."));
    EXPECT_THAT(relauncher.started, ElementsAre(ElementsAre("-launchMode", "menubar")));
    EXPECT_EQ(launchMode(defaults), LaunchMode::menuBar);
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kIsModeSwitchRelaunch));
}

TEST_F(LaunchModeSwitchTest, EndsThreeTenthsOfASecondAfterTheStartOfTheMenuBarMode)
{
    modeSwitch.switchToMenuBar();

    clock.advance(299ms);
    EXPECT_THAT(journal, IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(journal, ElementsAre("quit"));
}

TEST_F(LaunchModeSwitchTest, GoesOnInTheWindowModeWhereTheMenuBarModeCannotBeStarted)
{
    relauncher.failure = Error("Test", 1, "no such program");

    modeSwitch.switchToMenuBar();
    clock.advance(1s);

    EXPECT_THAT(log.lines(),
                ElementsAre("🔄 Switching to menubar mode...", "   ❌ Mode switch failed: no such program"));
    EXPECT_EQ(defaults.object(DefaultsKeys::kLaunchMode), PropertyValue("window"));
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kIsModeSwitchRelaunch));
    EXPECT_THAT(journal, IsEmpty());
}

} // namespace
} // namespace brindle
