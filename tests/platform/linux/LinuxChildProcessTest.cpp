#include "platform/linux/LinuxChildProcess.h"

#include "platform/linux/OutputPipe.h"
#include "platform/linux/RealChild.h"
#include "support/Patience.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace brindle {
namespace {

using testing::HasSubstr;

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator folder("/proc/self/fd");
    return std::distance(begin(folder), end(folder));
}

TEST(LinuxChildProcess, GivesBothOutputsAndTheExitStatus)
{
    const Child child(shell("echo out; echo err >&2; exit 7"));

    const ChildProcessEnd end = child.end();

    EXPECT_FALSE(end.failure);
    EXPECT_EQ(end.terminationStatus, 7);
    EXPECT_EQ(end.standardOutput, "out\n");
    EXPECT_EQ(end.standardError, "err\n");
}

TEST(LinuxChildProcess, HandsArgumentsOnAsTheyStand)
{
    const Child child({"/usr/bin/printf", {"%s|", "a b", "\"$HOME\"", "", "*"}, std::nullopt});

    EXPECT_EQ(child.end().standardOutput, "a b|\"$HOME\"||*|");
}

TEST(LinuxChildProcess, ReplacesTheWholeEnvironmentByAGivenOne)
{
    const Child child({"/usr/bin/env", {}, std::map<std::string, std::string>{{"ONE", "1"}, {"EMPTY", ""}}});

    EXPECT_EQ(child.end().standardOutput, "EMPTY=\nONE=1\n");
}

TEST(LinuxChildProcess, InheritsTheEnvironmentWhereNoneIsGiven)
{
    setenv("BRINDLE_TEST_INHERITED", "yes", 1);

    const Child child(shell("echo \"$BRINDLE_TEST_INHERITED\""));

    unsetenv("BRINDLE_TEST_INHERITED");
    EXPECT_EQ(child.end().standardOutput, "yes\n");
}

TEST(LinuxChildProcess, GivesTheNumberOfTheSignalThatEndedIt)
{
    const Child child(shell("kill -KILL $$"));

    EXPECT_EQ(child.end().terminationStatus, SIGKILL);
}

TEST(LinuxChildProcess, TerminatesARunningChildAtOnce)
{
    const Child child({"/bin/sleep", {"40"}, std::nullopt});

    child.process->terminate();
    const ChildProcessEnd end = child.end();

    EXPECT_EQ(end.terminationStatus, SIGTERM);
}

TEST(LinuxChildProcess, RunsUntilItsEndHasBeenSeen)
{
    const Child child(shell("exit 0"));

    const bool wasRunning = child.process->isRunning();
    (void)child.end();

    EXPECT_TRUE(wasRunning);
    EXPECT_FALSE(child.process->isRunning());
}

TEST(LinuxChildProcess, TerminatesNothingAfterTheEnd)
{
    const Child child(shell("exit 0"));
    (void)child.end();

    child.process->terminate();

    EXPECT_FALSE(hasChildren());
}

struct FailingStart {
    const char *name;
    const char *path;
    int code;
};

class LinuxChildProcessFailsToStart : public testing::TestWithParam<FailingStart> {};

TEST_P(LinuxChildProcessFailsToStart, AndReportsItFromTheEventLoop)
{
    const Child child({GetParam().path, {}, std::nullopt});

    const bool isCompleteInsideLaunch = child.completion.isComplete();
    const bool isRunning = child.process->isRunning();
    const ChildProcessEnd end = child.end();

    EXPECT_FALSE(isCompleteInsideLaunch);
    EXPECT_FALSE(isRunning);
    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->domain(), "POSIXError");
    EXPECT_EQ(end.failure->code(), GetParam().code);
    EXPECT_THAT(end.failure->localizedDescription(), HasSubstr(GetParam().path));
    EXPECT_FALSE(hasChildren());
}

INSTANTIATE_TEST_SUITE_P(Paths, LinuxChildProcessFailsToStart,
                         testing::Values(FailingStart{"Missing", "/nonexistent/diskutil", ENOENT},
                                         FailingStart{"NotExecutable", "/etc/passwd", EACCES},
                                         FailingStart{"AFolder", "/usr", EACCES},
                                         FailingStart{"BelowAFile", "/etc/passwd/diskutil", ENOTDIR}),
                         [](const auto &row) { return row.param.name; });

TEST(LinuxChildProcess, RefusesATextWithAZeroByteInsteadOfCuttingItOff)
{
    const Child child({"/bin/echo", {std::string("disk2\0s1", 8)}, std::nullopt});

    const ChildProcessEnd end = child.end();

    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->code(), EINVAL);
}

TEST(LinuxChildProcess, NeverReportsInsideLaunch)
{
    const Child child({"/bin/true", {}, std::nullopt});

    siginfo_t info{};
    waitid(P_ALL, 0, &info, WEXITED | WNOWAIT); // it has ended by now
    const bool isComplete = child.completion.isComplete();

    EXPECT_FALSE(isComplete);
    EXPECT_EQ(child.end().terminationStatus, 0);
}

TEST(LinuxChildProcess, ReportsTheEndAfterItsHandleWasDropped)
{
    Child child(shell("echo still here"));

    child.process.reset();
    const ChildProcessEnd end = child.end();

    EXPECT_EQ(end.standardOutput, "still here\n");
    EXPECT_FALSE(hasChildren());
}

TEST(LinuxChildProcess, NoLongerRunsInsideItsReport)
{
    LinuxChildProcessLauncher launcher;
    const Completion<ChildProcessEnd> completion;
    bool isRunning = true;
    std::unique_ptr<ChildProcess> process;
    process = launcher.launch(shell("exit 0"), [&](ChildProcessEnd end) {
        isRunning = process->isRunning();
        completion.complete(std::move(end));
    });

    (void)blockOn(await(completion), kPatience);

    EXPECT_FALSE(isRunning);
}

TEST(LinuxChildProcess, BelongsToTheApplicationObjectUntilItsEnd)
{
    const auto owned = [] { return QCoreApplication::instance()->children().size(); };
    const auto before = owned();

    Child child(shell("exit 0"));
    child.process.reset();
    const auto whileItRuns = owned();
    (void)child.end();

    EXPECT_EQ(whileItRuns, before + 1);
    EXPECT_EQ(owned(), before);
}

TEST(LinuxChildProcess, LetsItsHandleBeDroppedInsideTheReport)
{
    LinuxChildProcessLauncher launcher;
    const Completion<ChildProcessEnd> completion;
    std::unique_ptr<ChildProcess> process;
    process = launcher.launch(shell("exit 3"), [&](ChildProcessEnd end) {
        process.reset();
        completion.complete(std::move(end));
    });

    const ChildProcessEnd end = blockOn(await(completion), kPatience);

    EXPECT_EQ(end.terminationStatus, 3);
}

TEST(LinuxChildProcess, WaitsForNoGrandchildThatKeepsThePipe)
{
    const Child child(shell("sleep 40 & echo $!"));

    const ChildProcessEnd end = child.end();

    const pid_t grandchild = std::stoi(end.standardOutput);
    EXPECT_EQ(kill(grandchild, SIGTERM), 0) << "the grandchild should have outlived its parent";
}

TEST(LinuxChildProcess, PassesAsManyBytesAsThePipeHolds)
{
    const OutputPipe likeIt = OutputPipe::open();
    const int capacity = fcntl(likeIt.writeEnd.value(), F_GETPIPE_SZ);

    const Child child({"/usr/bin/head", {"-c", std::to_string(capacity), "/dev/zero"}, std::nullopt});
    const ChildProcessEnd end = child.end();

    EXPECT_EQ(end.terminationStatus, 0);
    EXPECT_EQ(end.standardOutput.size(), static_cast<std::size_t>(capacity));
}

/// Waits until the only child has slept in a write to a full pipe, as /proc tells it.
void waitUntilStuckInAWrite()
{
    const auto isStuck = [] {
        std::ifstream children("/proc/self/task/" + std::to_string(getpid()) + "/children");
        pid_t pid = 0;
        std::string call;
        if (children >> pid)
            std::ifstream("/proc/" + std::to_string(pid) + "/syscall") >> call;
        return call == std::to_string(SYS_write);
    };
    while (!isStuck())
        std::this_thread::yield();
}

TEST(LinuxChildProcess, StandsStillWithOneByteMoreUntilItIsTerminated)
{
    const OutputPipe likeIt = OutputPipe::open();
    const int capacity = fcntl(likeIt.writeEnd.value(), F_GETPIPE_SZ);

    const Child child({"/usr/bin/head", {"-c", std::to_string(capacity + 1), "/dev/zero"}, std::nullopt});
    waitUntilStuckInAWrite();
    child.process->terminate();
    const ChildProcessEnd end = child.end();

    EXPECT_EQ(end.terminationStatus, SIGTERM);
    EXPECT_EQ(end.standardOutput.size(), static_cast<std::size_t>(capacity));
}

TEST(LinuxChildProcess, ReportsAFailureWhereTheOutputCannotBeRead)
{
    const FileDescriptor lowest(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // the next number is the read end's
    const int readEnd = dup(lowest.value());
    close(readEnd);

    const Child child(shell("echo lost"));
    ASSERT_EQ(dup3(lowest.value(), readEnd, O_CLOEXEC), readEnd);
    const ChildProcessEnd end = child.end();

    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->domain(), "POSIXError");
    EXPECT_FALSE(hasChildren());
}

TEST(LinuxChildProcess, ReportsAFailureWhereSomebodyElseTookTheStatus)
{
    const Child child({"/bin/true", {}, std::nullopt});

    siginfo_t info{};
    waitid(P_ALL, 0, &info, WEXITED);
    const ChildProcessEnd end = child.end();

    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->code(), ECHILD);
}

TEST(LinuxChildProcess, LeavesNoDescriptorBehind)
{
    const std::ptrdiff_t before = openDescriptors();

    for (int run = 0; run < 20; ++run) {
        const Child child(shell("exit 1"));
        const Child missing({"/nonexistent/diskutil", {}, std::nullopt});
        (void)missing.end();
        (void)child.end();
    }

    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace brindle
