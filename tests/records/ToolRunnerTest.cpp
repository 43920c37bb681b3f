#include "records/ToolRunnerFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

TEST(ToolRunner, GivesTheStandardOutputAlone)
{
    RealTools tools;

    const std::string output = outputOf(tools.shell("echo out; echo err >&2"));

    EXPECT_EQ(output, "out\n");
}

TEST(ToolRunner, HandsTheArgumentsOnAsTheyStand)
{
    RealTools tools;

    const std::string output = outputOf(tools.runner.run("/usr/bin/printf", {"%s|", "EFI disk", "$HOME", ""}));

    EXPECT_EQ(output, "EFI disk|$HOME||");
}

TEST(ToolRunner, ThrowsTheStatusAndTheErrorTextOfAToolThatFails)
{
    RealTools tools;

    const Error error = errorOf(tools.shell("echo out; echo 'Could not find disk: disk9' >&2; exit 3"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), 3);
    EXPECT_EQ(error.localizedDescription(), "Could not find disk: disk9\n");
}

TEST(ToolRunner, ThrowsAnEmptyDescriptionWhereAFailingToolSaysNothing)
{
    RealTools tools;

    const Error error = errorOf(tools.shell("exit 1"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(), "");
}

TEST(ToolRunner, ThrowsUnknownErrorWhereTheErrorTextIsNotUtf8)
{
    RealTools tools;

    const Error error = errorOf(tools.shell("printf '\\377\\376' >&2; exit 2"));

    EXPECT_EQ(error.code(), 2);
    EXPECT_EQ(error.localizedDescription(), "Unknown error");
}

TEST(ToolRunner, GivesTheEmptyTextWhereTheOutputIsNotUtf8)
{
    RealTools tools;

    const std::string output = outputOf(tools.shell("printf 'disk0 \\377'"));

    EXPECT_EQ(output, "");
}

TEST(ToolRunner, ThrowsTheNumberOfTheSignalThatEndedTheTool)
{
    RealTools tools;

    const Error error = errorOf(tools.shell("echo half; kill -KILL $$"));

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_EQ(error.code(), SIGKILL);
}

struct Unstartable {
    const char *name;
    const char *path;
    int code;
};

class ToolRunnerWithoutTool : public testing::TestWithParam<Unstartable> {};

TEST_P(ToolRunnerWithoutTool, ThrowsTheSystemsErrorAndSchedulesNoTimeLimit)
{
    RealTools tools;

    auto run = tools.runner.run(GetParam().path, {});
    const std::size_t timers = tools.clock.pendingTimers();
    const Error error = errorOf(std::move(run));

    EXPECT_EQ(timers, 0U);
    EXPECT_EQ(error.domain(), "POSIXError");
    EXPECT_EQ(error.code(), GetParam().code);
    EXPECT_THAT(error.localizedDescription(), HasSubstr(GetParam().path));
}

INSTANTIATE_TEST_SUITE_P(Paths, ToolRunnerWithoutTool,
                         testing::Values(Unstartable{"Missing", "/nonexistent/diskutil", ENOENT},
                                         Unstartable{"NotExecutable", "/etc/passwd", EACCES},
                                         Unstartable{"AFolder", "/usr", EACCES}),
                         [](const auto &row) { return row.param.name; });

TEST(ToolRunner, ThrowsTheSystemsErrorWhereTheOutputCannotBeRead)
{
    ManualClock clock;
    PromptedLauncher launcher;
    ToolRunner runner(launcher, clock);

    auto run = runner.run("/usr/sbin/diskutil", {"list"});
    ChildProcessEnd end;
    end.failure = Error::fromErrno(EIO, "pipe");
    launcher.endChild(end);
    const Error error = errorOf(std::move(run));

    EXPECT_EQ(error.domain(), "POSIXError");
    EXPECT_EQ(error.code(), EIO);
}

TEST(ToolRunner, LeavesNoTimerBehind)
{
    RealTools tools;

    const std::string output = outputOf(tools.shell("exit 0"));

    EXPECT_EQ(tools.clock.pendingTimers(), 0U);
}

TEST(ToolRunner, EndsARunOnceThoughItsChildReportsTwice)
{
    ManualClock clock;
    PromptedLauncher launcher;
    ToolRunner runner(launcher, clock);
    auto run = runner.run("/usr/sbin/diskutil", {"list"});

    launcher.endChild({std::nullopt, 0, "first", ""});
    launcher.endChild({std::nullopt, 1, "", "second"});
    const std::string output = outputOf(std::move(run));
    clock.advance(1s);

    EXPECT_EQ(output, "first");
}

TEST(ToolRunner, RunsToolsSideBySide)
{
    RealTools tools;
    const Rendezvous meeting;

    auto waiting = tools.shell("read line < " + meeting.path() + "; echo $line");
    auto signalling = tools.shell("echo met > " + meeting.path());

    EXPECT_EQ(outputOf(std::move(signalling)), "");
    EXPECT_EQ(outputOf(std::move(waiting)), "met\n");
}

} // namespace
} // namespace brindle
