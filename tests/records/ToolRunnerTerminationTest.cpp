#include "records/ToolRunnerFixture.h"

#include <gtest/gtest.h>

#include <csignal>

namespace brindle {
namespace {

using namespace std::chrono_literals;

TEST(ToolRunner, TerminatesAToolThatStillRunsAfterThirtySeconds)
{
    RealTools tools;
    auto run = tools.sleep();

    tools.clock.advance(30s - 1ns);
    const int terminationsBefore = tools.launcher.terminations;
    tools.clock.advance(1ns);
    const Error error = errorOf(std::move(run));

    EXPECT_EQ(terminationsBefore, 0);
    EXPECT_EQ(tools.launcher.terminations, 1);
    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), SIGTERM);
}

TEST(ToolRunner, LeavesAToolAloneThatEndsAfterTwentyNinePointNineSeconds)
{
    ManualClock clock;
    PromptedLauncher launcher;
    ToolRunner runner(launcher, clock);
    auto run = runner.run("/usr/sbin/diskutil", {"list"});

    clock.advance(29900ms);
    launcher.endChild({std::nullopt, 0, "late", ""});
    clock.advance(1h);
    const std::string output = outputOf(std::move(run));

    EXPECT_EQ(output, "late");
    EXPECT_EQ(launcher.terminations, 0);
}

TEST(ToolRunner, GivesTheOutputOfAToolThatDoesNotHeedItsTerminationAndNeverAsksTwice)
{
    RealTools tools;
    const Rendezvous started;
    const Rendezvous released;
    auto run =
        tools.shell("trap '' TERM; echo go > " + started.path() + "; read line < " + released.path() + "; echo done");
    started.await();

    tools.clock.advance(30s);
    tools.clock.advance(24h);
    released.signal();
    const std::string output = outputOf(std::move(run));

    EXPECT_EQ(tools.launcher.terminations, 1);
    EXPECT_EQ(output, "done\n");
}

TEST(ToolRunner, TerminatesARunningToolAtOnceWhenItsTokenIsCancelled)
{
    RealTools tools;
    const auto token = CancellationToken::cancellable();
    auto run = tools.sleep(token);

    token.cancel();
    const Error error = errorOf(std::move(run));

    EXPECT_EQ(tools.launcher.terminations, 1);
    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), SIGTERM);
}

TEST(ToolRunner, EndsAllToolsWhateverTheirTokensAndStartsNoOther)
{
    RealTools tools;
    const auto token = CancellationToken::cancellable();
    auto withToken = tools.sleep(token);
    auto without = tools.sleep();

    tools.runner.endAll();
    const Error late = errorOf(tools.shell("echo started"));

    EXPECT_EQ(errorOf(std::move(withToken)).code(), SIGTERM);
    EXPECT_EQ(errorOf(std::move(without)).code(), SIGTERM);
    EXPECT_EQ(tools.launcher.terminations, 2);
    EXPECT_EQ(late.domain(), "CommandError");
    EXPECT_EQ(late.code(), SIGTERM);
}

TEST(ToolRunner, RunsAToolToItsEndWhoseTokenWasCancelledBefore)
{
    RealTools tools;
    const auto token = CancellationToken::cancellable();
    token.cancel();

    const std::string output = outputOf(tools.runner.run("/bin/echo", {"ran"}, std::nullopt, token));

    EXPECT_EQ(output, "ran\n");
    EXPECT_EQ(tools.launcher.terminations, 0);
}

TEST(ToolRunner, HeedsNoCancellationAfterTheEnd)
{
    ManualClock clock;
    PromptedLauncher launcher;
    ToolRunner runner(launcher, clock);
    const auto token = CancellationToken::cancellable();
    auto run = runner.run("/usr/sbin/diskutil", {"list"}, std::nullopt, token);
    launcher.endChild({std::nullopt, 0, "list", ""});

    const std::string output = outputOf(std::move(run));
    token.cancel();

    EXPECT_EQ(output, "list");
    EXPECT_EQ(launcher.terminations, 0);
}

} // namespace
} // namespace brindle
