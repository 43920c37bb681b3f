#include "assembly/ShellAssembly.h"

#include "base/DefaultsKeys.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationHost.h"
#include "support/FakeStatusItemHost.h"
#include "support/FakeWindowHost.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SimulatedMachine.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The real application in the window mode, without pictures, on a simulated machine with one disk.
class ShellAssemblyTest : public testing::Test {
protected:
    ShellAssemblyTest() { machine.addDisk("disk2").withEFI("EFI"); }

    ~ShellAssemblyTest() override { end(); }

    ShellAssembly &shell()
    {
        if (!m_shell)
            m_shell.emplace(
                platform(),
                ShellHosts{
                    .application = application, .windows = windows, .statusItem = statusItem, .appearance = appearance},
                std::vector<std::string>{"brindle"});
        return *m_shell;
    }

    void end()
    {
        m_shell.reset();
        drainEventLoop();
    }

    LogCapture log;
    SimulatedMachine machine;
    std::vector<std::string> journal;
    FakeApplicationHost application{journal};
    FakeWindowHost windows{journal};
    FakeStatusItemHost statusItem;
    FakeAppearance appearance;
    ManualClock *clock = nullptr;

private:
    Platform platform()
    {
        Platform platform = machine.platform();
        auto owned = std::make_unique<ManualClock>();
        clock = owned.get();
        platform.scheduler = std::move(owned);
        platform.userDefaults->set(DefaultsKeys::kLaunchMode, "window");
        return platform;
    }

    std::optional<ShellAssembly> m_shell;
};

TEST_F(ShellAssemblyTest, ReportsTheLaunchBeforeItMakesAnythingElse)
{
    shell();

    EXPECT_EQ(log.lines().front(), "🔍 Brindle Launch Validation");
    EXPECT_THAT(log.lines(), Contains("📦 Bundle ID: com.orlane.Brindle"));
    EXPECT_THAT(log.lines(), Contains("✅ Launch validation complete\n"));
    EXPECT_THAT(machine.calls(), IsEmpty());
}

TEST_F(ShellAssemblyTest, OpensTheWindowAndFindsTheDisks)
{
    shell();
    application.finishLaunching();

    clock->advance(200ms);
    waitUntil([&] { return shell().assembly().diskManager().hasCompletedInitialScan(); });

    EXPECT_THAT(windows.windows(), SizeIs(1));
    EXPECT_THAT(shell().assembly().diskManager().disks(), SizeIs(1));
}

TEST_F(ShellAssemblyTest, BringsItsWindowToTheFrontWhenItIsStartedAgain)
{
    shell();
    application.finishLaunching();
    clock->advance(200ms);
    journal.clear();

    shell().reopen();

    EXPECT_THAT(journal, ElementsAre("activate"));
    EXPECT_THAT(windows.windows(), SizeIs(1));
}

TEST_F(ShellAssemblyTest, OpensItsWindowWhenItIsStartedAgainBefore)
{
    shell();
    application.finishLaunching();

    shell().reopen();
    EXPECT_THAT(windows.windows(), SizeIs(1));

    clock->advance(200ms);
    EXPECT_THAT(windows.windows(), SizeIs(1));
}

TEST_F(ShellAssemblyTest, EndsByItsMenu)
{
    shell();

    application.menu.back().back().action();

    EXPECT_THAT(journal, ElementsAre("quit"));
}

TEST_F(ShellAssemblyTest, ClosesItsWindowsAtItsEndAlsoInTheMiddleOfAScan)
{
    shell();
    application.finishLaunching();
    clock->advance(200ms);
    EXPECT_TRUE(shell().assembly().diskManager().isLoadingDisks());

    end();

    EXPECT_THAT(windows.windows(), IsEmpty());
}

} // namespace
} // namespace brindle
