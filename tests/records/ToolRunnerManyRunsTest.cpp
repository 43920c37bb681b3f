#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Spawn.h"
#include "platform/linux/LinuxChildProcess.h"
#include "records/ToolRunner.h"
#include "support/ManualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <map>

#include <sys/prctl.h>
#include <sys/wait.h>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Pair;

constexpr int kRuns = 5000;
constexpr int kSideBySide = 10; // also the number of kinds below
constexpr int kRunsOfEachKind = kRuns / kSideBySide;

enum class Kind {
    Succeeds,
    Fails,
    Dies,
    Missing,
    Folder,
    CancelledAtStart,
    CancelledLater,
    LeavesGrandchild,
    Forgotten,
    Prints
};

struct Machine {
    ManualClock clock;
    LinuxChildProcessLauncher launcher;
    ToolRunner runner{launcher, clock};
};

QCoro::Task<std::string> runCancelled(Machine *machine, bool atStart)
{
    const auto token = CancellationToken::cancellable();
    auto run = machine->runner.run("/bin/sleep", {"40"}, std::nullopt, token);
    if (!atStart) {
        const Completion<bool> nextTurn;
        nextTurn.complete(true);
        co_await nextTurn;
    }
    token.cancel();
    co_return co_await run;
}

QCoro::Task<std::string> runForgotten(Machine *machine)
{
    const Completion<std::string> output;
    auto child = machine->launcher.launch({"/bin/true", {}, std::nullopt}, [output](ChildProcessEnd end) {
        output.complete(std::move(end.standardOutput));
    });
    child.reset();
    co_return co_await output;
}

QCoro::Task<std::string> runLeavingGrandchild(Machine *machine)
{
    auto run = machine->runner.run("/bin/sh", {"-c", "sleep 40 & echo $!"});
    const std::string output = co_await run;
    const pid_t grandchild = std::stoi(output);
    kill(grandchild, SIGTERM);
    waitpid(grandchild, nullptr, 0);
    co_return "";
}

QCoro::Task<std::string> runOne(Machine *machine, Kind kind)
{
    switch (kind) {
    case Kind::Succeeds:
        return machine->runner.run("/bin/true", {});
    case Kind::Fails:
        return machine->runner.run("/bin/false", {});
    case Kind::Dies:
        return machine->runner.run("/bin/sh", {"-c", "kill -KILL $$"});
    case Kind::Missing:
        return machine->runner.run("/nonexistent/diskutil", {});
    case Kind::Folder:
        return machine->runner.run("/usr", {});
    case Kind::CancelledAtStart:
    case Kind::CancelledLater:
        return runCancelled(machine, kind == Kind::CancelledAtStart);
    case Kind::LeavesGrandchild:
        return runLeavingGrandchild(machine);
    case Kind::Forgotten:
        return runForgotten(machine);
    case Kind::Prints:
        return machine->runner.run("/bin/echo", {"text"});
    }
    throw Error("Test", 1, "no such kind");
}

using Outcomes = std::map<std::string, int>;

/// Runs one of each kind in turn, beginning with \a first, so that all kinds are under way beside one another.
QCoro::Task<> runInTurn(Machine *machine, int first, Outcomes *outcomes)
{
    for (int run = 0; run < kRunsOfEachKind; ++run) {
        std::string outcome;
        try {
            auto one = runOne(machine, static_cast<Kind>((first + run) % kSideBySide));
            outcome = "output \"" + co_await one + "\"";
        } catch (const Error &error) {
            outcome = error.domain() + " " + std::to_string(error.code());
        }
        ++(*outcomes)[outcome];
    }
}

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator folder("/proc/self/fd");
    return std::distance(begin(folder), end(folder));
}

TEST(ToolRunnerManyRuns, LeaveNoDescriptorAndNoZombieBehind)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1); // grandchildren fall to this process, which waits for each by its number
    Machine machine;
    Outcomes outcomes;
    const std::ptrdiff_t before = openDescriptors();

    std::vector<QCoro::Task<>> tasks;
    for (int first = 0; first < kSideBySide; ++first)
        tasks.push_back(runInTurn(&machine, first, &outcomes));
    blockOn(joinAll(std::move(tasks)), 100s);

    siginfo_t info{};
    const int waited = waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT);
    EXPECT_EQ(waited, -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(machine.clock.pendingTimers(), 0U);
    const int each = kRunsOfEachKind;
    EXPECT_THAT(outcomes,
                ElementsAre(Pair("CommandError 1", each), Pair("CommandError 15", 2 * each),
                            Pair("CommandError 9", each), Pair("POSIXError 13", each), Pair("POSIXError 2", each),
                            Pair("output \"\"", 3 * each), Pair("output \"text\n\"", each)));
}

} // namespace
} // namespace brindle
