#include "records/ToolRunner.h"

#include "base/BlockOn.h"
#include "platform/linux/LinuxChildProcess.h"
#include "support/ManualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <functional>
#include <utility>

#include <sys/stat.h>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

using Environment = std::map<std::string, std::string>;

constexpr auto kPatience = 30s; // of the machine: a hanging test fails, and none waits for this

/// Hands everything on to the real launcher and counts the calls of terminate() that reach a running child.
class CountingLauncher : public ChildProcessLauncher {
public:
    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override
    {
        lastCommand = command;
        return std::make_unique<Counted>(m_launcher.launch(std::move(command), std::move(ended)), &terminations);
    }

    ChildProcessCommand lastCommand;
    int terminations = 0;

private:
    class Counted : public ChildProcess {
    public:
        Counted(std::unique_ptr<ChildProcess> child, int *terminations)
            : m_child(std::move(child)),
              m_terminations(terminations)
        {
        }
        [[nodiscard]] bool isRunning() const override { return m_child->isRunning(); }
        void terminate() override
        {
            *m_terminations += isRunning() ? 1 : 0;
            m_child->terminate();
        }

    private:
        std::unique_ptr<ChildProcess> m_child;
        int *m_terminations;
    };

    LinuxChildProcessLauncher m_launcher;
};

/// A tool runner on real children, with a clock of its own.
struct RealTools {
    ManualClock clock;
    CountingLauncher launcher;
    ToolRunner runner{launcher, clock};

    QCoro::Task<std::string> sleep(CancellationToken token = {})
    {
        return runner.run("/bin/sleep", {"40"}, std::nullopt, std::move(token));
    }
    QCoro::Task<std::string> shell(std::string script) { return runner.run("/bin/sh", {"-c", std::move(script)}); }
    QCoro::Task<std::string> printVariable(const char *name, std::optional<Environment> environment)
    {
        return runner.run("/usr/bin/printenv", {name}, std::move(environment));
    }
};

std::string outputOf(QCoro::Task<std::string> run)
{
    return blockOn(std::move(run), kPatience);
}

Error errorOf(QCoro::Task<std::string> run)
{
    try {
        const std::string output = blockOn(std::move(run), kPatience);
        return {"NoError", 0, output};
    } catch (const Error &error) {
        return error;
    }
}

/// A child that ends when the test says so.
class PromptedLauncher : public ChildProcessLauncher {
public:
    std::unique_ptr<ChildProcess> launch(ChildProcessCommand, Ended ended) override
    {
        m_ended = std::move(ended);
        return std::make_unique<Prompted>(this);
    }
    void endChild(ChildProcessEnd end)
    {
        m_isRunning = false;
        m_ended(std::move(end));
    }

    int terminations = 0;

private:
    class Prompted : public ChildProcess {
    public:
        explicit Prompted(PromptedLauncher *launcher) : m_launcher(launcher) {}
        [[nodiscard]] bool isRunning() const override { return m_launcher->m_isRunning; }
        void terminate() override { ++m_launcher->terminations; }

    private:
        PromptedLauncher *m_launcher;
    };

    Ended m_ended;
    bool m_isRunning = true;
};

/// A named pipe by which a tool and the test wait for one another.
class Rendezvous {
public:
    Rendezvous() : m_path(m_folder.filePath(QStringLiteral("pipe")).toStdString())
    {
        if (mkfifo(m_path.c_str(), 0600) != 0)
            throw Error::fromErrno(errno, m_path);
    }

    [[nodiscard]] const std::string &path() const { return m_path; }
    void await() const
    {
        std::string line;
        std::getline(std::ifstream(m_path) >> std::ws, line);
    }
    void signal() const { std::ofstream(m_path) << "go\n"; }

private:
    QTemporaryDir m_folder;
    std::string m_path;
};

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

/// A variable of this process that children inherit.
struct InheritedVariable {
    static constexpr const char *kName = "BRINDLE_TEST_VARIABLE";

    InheritedVariable() { setenv(kName, "inherited", 1); }
    InheritedVariable(const InheritedVariable &) = delete;
    InheritedVariable &operator=(const InheritedVariable &) = delete;
    ~InheritedVariable() { unsetenv(kName); }
};

TEST(ToolRunner, ReplacesAnInheritedVariableByAGivenEntryOfItsName)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string output = outputOf(tools.printVariable(variable.kName, Environment{{variable.kName, "given"}}));

    EXPECT_EQ(output, "given\n");
}

TEST(ToolRunner, KeepsTheInheritedVariablesBesideAGivenEntry)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string inherited = outputOf(tools.printVariable(variable.kName, Environment{{"LC_ALL", "C"}}));
    const std::string given = outputOf(tools.printVariable("LC_ALL", Environment{{"LC_ALL", "C"}}));

    EXPECT_EQ(inherited, "inherited\n");
    EXPECT_EQ(given, "C\n");
}

TEST(ToolRunner, SetsAnUnchangedCopyOfItsOwnEnvironmentForAnEmptyOne)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string inherited = outputOf(tools.shell("env | sort"));
    const std::string copied = outputOf(tools.runner.run("/bin/sh", {"-c", "env | sort"}, Environment{}));

    ASSERT_TRUE(tools.launcher.lastCommand.environment);
    EXPECT_THAT(copied, HasSubstr("BRINDLE_TEST_VARIABLE=inherited\n"));
    EXPECT_EQ(copied, inherited);
}

TEST(ToolRunner, GivesTheOutputWhereAnyIsAskedForAndNoneOfAToolThatFails)
{
    const InheritedVariable variable;
    RealTools tools;
    const auto shell = [&](const std::string &script) {
        return tools.runner.outputIfAny("/bin/sh", {"-c", script}, Environment{{variable.kName, "given"}});
    };

    EXPECT_EQ(blockOn(shell("echo $BRINDLE_TEST_VARIABLE"), kPatience), "given\n");
    EXPECT_EQ(blockOn(shell("echo out; exit 1"), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(tools.runner.outputIfAny("/nowhere/tool", {}), kPatience), std::nullopt);
}

TEST(ToolRunner, LeavesTheEnvironmentUntouchedWhereNoneIsGiven)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string output = outputOf(tools.printVariable(variable.kName, std::nullopt));

    EXPECT_FALSE(tools.launcher.lastCommand.environment);
    EXPECT_EQ(output, "inherited\n");
}

} // namespace
} // namespace brindle
