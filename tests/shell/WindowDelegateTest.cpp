#include "shell/WindowDelegate.h"

#include "base/DefaultsKeys.h"
#include "support/FakeApplicationHost.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowDelegateTest : public testing::Test, protected ApplicationDelegate {
protected:
    WindowDelegateTest() { application.setDelegate(this); }

    void applicationDidFinishLaunching() override {}
    bool applicationShouldHandleReopen(bool /*hasVisibleWindows*/) override { return false; }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }
    bool applicationShouldTerminate() override { return true; }
    void applicationWillTerminate() override {}

    MemoryUserDefaults defaults;
    std::vector<std::string> journal;
    FakeApplicationHost application{journal};
    WindowDelegate delegate{defaults, application};
};

TEST_F(WindowDelegateTest, EndsTheApplicationWithItsWindowInTheWindowMode)
{
    defaults.set(DefaultsKeys::kLaunchMode, "window");

    EXPECT_TRUE(delegate.windowShouldClose());

    EXPECT_THAT(journal, ElementsAre("quit"));
}

TEST_F(WindowDelegateTest, LetsTheWindowAloneCloseInTheMenuBarMode)
{
    defaults.set(DefaultsKeys::kLaunchMode, "menubar");

    EXPECT_TRUE(delegate.windowShouldClose());

    EXPECT_THAT(journal, IsEmpty());
}

} // namespace
} // namespace brindle
