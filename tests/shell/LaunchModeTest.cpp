#include "shell/LaunchMode.h"

#include "base/DefaultsKeys.h"
#include "support/LogCapture.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LaunchModeTest : public testing::Test {
protected:
    void store(PropertyValue value) { defaults.set(DefaultsKeys::kLaunchMode, std::move(value)); }

    LogCapture log;
    MemoryUserDefaults defaults;
};

TEST_F(LaunchModeTest, IsTheMenuBarWhereNothingIsStored)
{
    EXPECT_EQ(launchMode(defaults), LaunchMode::menuBar);
}

TEST_F(LaunchModeTest, IsWhatIsStoredAndTellsTheLogNothing)
{
    store("window");
    EXPECT_EQ(launchMode(defaults), LaunchMode::window);

    store("menubar");
    EXPECT_EQ(launchMode(defaults), LaunchMode::menuBar);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LaunchModeTest, IsTheMenuBarForWhatIsNoMode)
{
    store("Window");
    EXPECT_EQ(launchMode(defaults), LaunchMode::menuBar);

    store(true);
    EXPECT_EQ(launchMode(defaults), LaunchMode::menuBar);
}

TEST_F(LaunchModeTest, IsAtTheStartTheOneOfTheArguments)
{
    store("menubar");

    EXPECT_EQ(launchModeAtStart({"brindle", "-launchMode", "window"}, defaults), LaunchMode::window);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from argument: window"));
}

TEST_F(LaunchModeTest, IsAtTheStartTheStoredOneWithoutAnArgument)
{
    store("window");

    EXPECT_EQ(launchModeAtStart({"brindle", "--launchMode", "menubar"}, defaults), LaunchMode::window);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from UserDefaults: window"));
}

TEST_F(LaunchModeTest, TellsTheMenuBarAtTheStartWhereNothingIsStored)
{
    EXPECT_EQ(launchModeAtStart({"brindle"}, defaults), LaunchMode::menuBar);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from UserDefaults: menubar"));
}

TEST_F(LaunchModeTest, TellsAnUnknownStoredTextAsItIsAndTakesTheMenuBar)
{
    store("dock");

    EXPECT_EQ(launchModeAtStart({"brindle"}, defaults), LaunchMode::menuBar);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from UserDefaults: dock"));
}

TEST_F(LaunchModeTest, FallsBackToTheStoredOneForAnArgumentThatIsNoMode)
{
    store("window");

    EXPECT_EQ(launchModeAtStart({"brindle", "-launchMode", "dock"}, defaults), LaunchMode::window);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from argument: dock", "   🔌 Mode from UserDefaults: window"));
}

TEST_F(LaunchModeTest, IgnoresTheArgumentThatIsTheLast)
{
    store("window");

    EXPECT_EQ(launchModeAtStart({"brindle", "-launchMode"}, defaults), LaunchMode::window);

    EXPECT_THAT(log.lines(), ElementsAre("   🔌 Mode from UserDefaults: window"));
}

} // namespace
} // namespace brindle
