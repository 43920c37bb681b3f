#include "records/ToolRunner.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "platform/linux/LinuxChildProcess.h"
#include "support/ManualClock.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

/// Real tools by the shell, on a clock that is moved by hand.
class ToolRunnerTest : public testing::Test {
protected:
    QCoro::Task<std::string> shell(std::string script, std::optional<ToolRunner::Environment> environment = {},
                                   CancellationToken token = {})
    {
        return tools.run("/bin/sh", {"-c", std::move(script)}, std::move(environment), std::move(token));
    }

    /// Waits in real time until the tool has begun to print: a signal before that would miss its handler.
    static void letBegin()
    {
        for (int i = 0; i < 50; ++i) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(2ms);
        }
    }

    static std::string outputOf(QCoro::Task<std::string> task) { return blockOn(std::move(task), 10s); }

    static Error errorOf(QCoro::Task<std::string> task)
    {
        try {
            const std::string output = blockOn(std::move(task), 10s);
            ADD_FAILURE() << "no error, but the output: " << output;
        } catch (const Error &error) {
            return error;
        }
        return {"", 0, ""};
    }

    ManualClock clock;
    LinuxChildProcessLauncher launcher;
    ToolRunner tools{launcher, clock};
};

TEST_F(ToolRunnerTest, GivesStandardOutputAndDropsTheErrorTextOfASuccess)
{
    EXPECT_EQ(outputOf(shell("echo out; echo err >&2")), "out\n");
}

TEST_F(ToolRunnerTest, ThrowsTheStatusWithTheErrorText)
{
    const Error error = errorOf(shell("echo out; echo 'Could not find disk: x' >&2; exit 3"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), 3);
    EXPECT_EQ(error.localizedDescription(), "Could not find disk: x\n");
}

TEST_F(ToolRunnerTest, ThrowsAnEmptyDescriptionForAnEmptyErrorText)
{
    const Error error = errorOf(shell("exit 1"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(), "");
}

TEST_F(ToolRunnerTest, GivesNothingForOutputThatIsNoUtf8)
{
    EXPECT_EQ(outputOf(shell("printf 'disk\\377'")), "");
}

TEST_F(ToolRunnerTest, ThrowsUnknownErrorForAnErrorTextThatIsNoUtf8)
{
    EXPECT_EQ(errorOf(shell("printf 'disk\\377' >&2; exit 1")).localizedDescription(), "Unknown error");
}

TEST_F(ToolRunnerTest, ThrowsTheNumberOfTheSignalThatEndedTheTool)
{
    const Error error = errorOf(shell("kill -9 $$"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), SIGKILL);
}

// --- the time limit

TEST_F(ToolRunnerTest, TerminatesAToolAfterExactlyThirtySeconds)
{
    auto task = shell("exec sleep 40");

    clock.advance(30s - 1ns);
    letBegin();
    EXPECT_FALSE(task.isReady());
    clock.advance(1ns);

    EXPECT_EQ(errorOf(std::move(task)).code(), SIGTERM);
}

TEST_F(ToolRunnerTest, LeavesAToolAloneThatEndsBeforeItsTimeIsUp)
{
    auto task = shell("echo done");
    clock.advance(29900ms);

    EXPECT_EQ(outputOf(std::move(task)), "done\n");

    EXPECT_EQ(clock.timerCount(), 0U);
    clock.advance(1s);
}

TEST_F(ToolRunnerTest, GivesTheOutputOfAToolThatEndsWellWhenToldToEnd)
{
    auto task = shell("trap 'echo saved; exit 0' TERM; while :; do sleep 0.01; done");
    letBegin();

    clock.advance(30s);

    EXPECT_EQ(outputOf(std::move(task)), "saved\n");
}

TEST_F(ToolRunnerTest, HasNoHarderWayThanAskingOnce)
{
    auto task = shell("trap : TERM; i=0; while [ $i -lt 100 ]; do sleep 0.01; i=$((i+1)); done; echo stubborn");
    letBegin();

    clock.advance(30s);
    EXPECT_EQ(clock.timerCount(), 0U);
    clock.advance(10min);

    EXPECT_EQ(outputOf(std::move(task)), "stubborn\n");
}

// --- cancellation

TEST_F(ToolRunnerTest, TerminatesASleepingToolAtOnceWhenItsCallIsCancelled)
{
    const auto token = CancellationToken::cancellable();
    auto task = shell("exec sleep 40", {}, token);

    token.cancel();

    EXPECT_EQ(errorOf(std::move(task)).code(), SIGTERM);
}

TEST_F(ToolRunnerTest, RunsAToolToItsEndWhenTheCallWasCancelledBefore)
{
    const auto token = CancellationToken::cancellable();
    token.cancel();

    EXPECT_EQ(outputOf(shell("echo whole", {}, token)), "whole\n");
}

TEST_F(ToolRunnerTest, ToleratesACancellationAfterTheEnd)
{
    const auto token = CancellationToken::cancellable();
    EXPECT_EQ(outputOf(shell("echo whole", {}, token)), "whole\n");

    token.cancel();
}

// --- the start

TEST_F(ToolRunnerTest, ThrowsTheLaunchErrorOfAMissingToolAndSchedulesNoTimeOut)
{
    auto task = tools.run("/nowhere/diskutil", {"list"});

    EXPECT_FALSE(task.isReady());
    EXPECT_EQ(clock.timerCount(), 0U);
    const Error error = errorOf(std::move(task));
    EXPECT_EQ(error.domain(), "POSIXError");
    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_THAT(error.localizedDescription(), HasSubstr("/nowhere/diskutil"));
}

TEST_F(ToolRunnerTest, ThrowsTheLaunchErrorOfAFolder)
{
    EXPECT_EQ(errorOf(tools.run("/usr/bin", {})).code(), EACCES);
}

TEST_F(ToolRunnerTest, HandsEachArgumentOverAsItIs)
{
    EXPECT_EQ(outputOf(tools.run("/usr/bin/printf", {"[%s]", "-rf", "a b", "$(reboot)", "'\"", ""})),
              "[-rf][a b][$(reboot)]['\"][]");
}

// --- the environment

class ToolRunnerEnvironment : public ToolRunnerTest {
protected:
    void SetUp() override { setenv("BRINDLE_TEST_VARIABLE", "inherited", 1); }
    void TearDown() override { unsetenv("BRINDLE_TEST_VARIABLE"); }
};

TEST_F(ToolRunnerEnvironment, IsInheritedWhenNoneIsGiven)
{
    EXPECT_EQ(outputOf(shell("echo $BRINDLE_TEST_VARIABLE")), "inherited\n");
}

TEST_F(ToolRunnerEnvironment, HasAGivenEntryInPlaceOfAnInheritedOne)
{
    EXPECT_EQ(outputOf(shell("echo $BRINDLE_TEST_VARIABLE ${PATH:+path}",
                             ToolRunner::Environment{{"BRINDLE_TEST_VARIABLE", "given"}})),
              "given path\n");
}

TEST_F(ToolRunnerEnvironment, IsAnUnchangedCopyWhenAnEmptyOneIsGiven)
{
    EXPECT_EQ(outputOf(tools.run("/usr/bin/env", {}, ToolRunner::Environment{})).size(),
              outputOf(tools.run("/usr/bin/env", {})).size());
}

} // namespace
} // namespace brindle
