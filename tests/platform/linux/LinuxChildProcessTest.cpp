#include "platform/linux/LinuxChildProcess.h"

#include "base/BlockOn.h"
#include "base/Completion.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brindle {
namespace {

using namespace std::chrono_literals;

/// What a pipe of ours holds on this machine, which may refuse to enlarge it.
std::size_t pipeBytes()
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    fcntl(ends[0], F_SETPIPE_SZ, LinuxChildProcessLauncher::kPipeBytes);
    const int bytes = fcntl(ends[0], F_GETPIPE_SZ);
    close(ends[0]);
    close(ends[1]);
    return static_cast<std::size_t>(bytes);
}

std::size_t openDescriptors()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

QCoro::Task<ChildProcessEnd> endOf(Completion<ChildProcessEnd> completion)
{
    co_return co_await completion;
}

class LinuxChildProcessTest : public testing::Test {
protected:
    Completion<ChildProcessEnd> start(std::string script)
    {
        const Completion<ChildProcessEnd> ended;
        process = launcher.launch({"/bin/sh", {"-c", std::move(script)}, {}},
                                  [ended](ChildProcessEnd end) { ended.complete(std::move(end)); });
        return ended;
    }

    static ChildProcessEnd wait(Completion<ChildProcessEnd> completion)
    {
        return blockOn(endOf(std::move(completion)), 20s);
    }

    LinuxChildProcessLauncher launcher;
    std::unique_ptr<ChildProcess> process;
};

TEST_F(LinuxChildProcessTest, PassesAsMuchAsThePipeHolds)
{
    const std::size_t bytes = pipeBytes();

    const ChildProcessEnd end = wait(start("head -c " + std::to_string(bytes) + " /dev/zero"));

    EXPECT_EQ(end.terminationStatus, 0);
    EXPECT_EQ(end.standardOutput.size(), bytes);
}

TEST_F(LinuxChildProcessTest, HoldsAToolThatPrintsOneByteMoreUntilItIsTerminated)
{
    const auto ended = start("exec head -c " + std::to_string(pipeBytes() + 1) + " /dev/zero");
    EXPECT_THROW(blockOn(endOf(ended), 300ms), Error);
    ASSERT_TRUE(process->isRunning());

    process->terminate();
    while (process->isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);

    EXPECT_TRUE(ended.isComplete());
}

TEST_F(LinuxChildProcessTest, IsNotHeldUpByAGrandchildThatKeepsThePipe)
{
    const ChildProcessEnd end = wait(start("sleep 20 & echo parent"));

    EXPECT_EQ(end.standardOutput, "parent\n");
}

TEST_F(LinuxChildProcessTest, ReportsAlsoWhenTheHandleIsDropped)
{
    const auto ended = start("sleep 0.05; echo late");

    process.reset();

    EXPECT_EQ(wait(ended).standardOutput, "late\n");
}

TEST_F(LinuxChildProcessTest, NeverReportsInsideTheLaunch)
{
    bool isLaunching = true;
    const Completion<ChildProcessEnd> ended;

    process = launcher.launch({"/nowhere", {}, {}}, [&](ChildProcessEnd end) {
        EXPECT_FALSE(isLaunching);
        ended.complete(std::move(end));
    });
    isLaunching = false;

    EXPECT_FALSE(process->isRunning());
    EXPECT_TRUE(wait(ended).failure);
}

TEST_F(LinuxChildProcessTest, GivesTheChildNoDescriptorOfOurs)
{
    const int ours = open("/dev/null", O_RDONLY); // no O_CLOEXEC, as a careless library opens it

    const ChildProcessEnd end = wait(start("ls /proc/self/fd"));

    close(ours);
    // 3 is the folder that ls reads.
    EXPECT_EQ(end.standardOutput, "0\n1\n2\n3\n");
}

TEST_F(LinuxChildProcessTest, GivesTheChildNoSignalSettingsOfOurs)
{
    signal(SIGPIPE, SIG_IGN); // NOLINT

    const ChildProcessEnd end = wait(start("kill -PIPE $$"));

    signal(SIGPIPE, SIG_DFL); // NOLINT
    EXPECT_EQ(end.terminationStatus, SIGPIPE);
}

TEST_F(LinuxChildProcessTest, SaysWhyWhenNoDescriptorIsLeft)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit tight{static_cast<rlim_t>(openDescriptors()) - 1, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &tight);

    const auto ended = start("true");

    setrlimit(RLIMIT_NOFILE, &before);
    const ChildProcessEnd end = wait(ended);
    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->code(), EMFILE);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

// --- thousands of children in every kind of trouble

class ManyChildren {
public:
    explicit ManyChildren(LinuxChildProcessLauncher &launcher) : m_launcher(launcher) {}

    void runOne(int number)
    {
        static const std::vector<ChildProcessCommand> kKinds{
            {"/bin/true", {}, {}},
            {"/bin/false", {}, {}},
            {"/nowhere/tool", {}, {}},
            {"/usr", {}, {}},
            {"/bin/sleep", {"100"}, {}},                    // terminated
            {"/bin/sleep", {"0.01"}, {}},                   // its handle is dropped
            {"/bin/sh", {"-c", "kill -9 $$"}, {}},          // killed
            {"/bin/sh", {"-c", "sleep 1 & echo gone"}, {}}, // a grandchild keeps the pipe
            {"/bin/echo", {"text"}, std::map<std::string, std::string>{}},
            {"/bin/true", {}, {}},
        };
        const std::size_t kind = static_cast<std::size_t>(number) % kKinds.size();
        auto child = m_launcher.launch(kKinds[kind], [this](const ChildProcessEnd &) { ++m_ended; });
        if (kind == 4)
            child->terminate();
        if (kind != 5)
            m_children.push_back(std::move(child));
        ++m_started;
    }

    void waitUntilEnded(int atMostRunning)
    {
        while (m_started - m_ended > atMostRunning)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1000);
        if (m_ended == m_started)
            m_children.clear();
    }

    [[nodiscard]] int ended() const { return m_ended; }

private:
    LinuxChildProcessLauncher &m_launcher;
    std::vector<std::unique_ptr<ChildProcess>> m_children;
    int m_started = 0;
    int m_ended = 0;
};

TEST_F(LinuxChildProcessTest, LeavesNoDescriptorAndNoZombieAfterFiveThousandRuns)
{
    constexpr int kRuns = 5000;
    ManyChildren children(launcher);
    children.runOne(0); // the event loop's own descriptors are there from now on
    children.waitUntilEnded(0);
    const std::size_t before = openDescriptors();

    for (int i = 1; i < kRuns; ++i) {
        children.runOne(i);
        children.waitUntilEnded(8);
    }
    children.waitUntilEnded(0);

    EXPECT_EQ(children.ended(), kRuns);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
} // namespace brindle
