#include "assembly/ShellFixture.h"

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

/// With one disk.
class ShellAssemblyTest : public ShellFixture {
protected:
    ShellAssemblyTest() { machine.addDisk("disk2").withEFI("EFI"); }

    ShellAssembly &shell() { return isStarted() ? startedShell() : start(platform()); }
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
