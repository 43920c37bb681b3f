// What a child gets, and whether it is watched, in a process that is itself badly off.

#include "platform/linux/LinuxChildProcess.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/RealChild.h"
#include "support/Sanitizer.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace brindle {
namespace {

TEST(LinuxChildProcess, InheritsNoDescriptorButTheStandardOnes)
{
    const FileDescriptor inheritable(open("/dev/null", O_RDONLY));

    const Child child({"/bin/ls", {"/proc/self/fd"}, std::nullopt});

    EXPECT_EQ(child.end().standardOutput, "0\n1\n2\n3\n"); // 3 is the folder that ls reads
}

TEST(LinuxChildProcess, IsOutOfReachOfTheTerminalsInterruption)
{
    const Child child(shell("read -r _ _ _ _ group _ < /proc/$$/stat; test $group = $$ && echo own"));

    EXPECT_EQ(child.end().standardOutput, "own\n");
}

TEST(LinuxChildProcess, CanBeTerminatedThoughItsParentIgnoresAndBlocksTheSignal)
{
    sigset_t terminationOnly;
    sigemptyset(&terminationOnly);
    sigaddset(&terminationOnly, SIGTERM);
    sigset_t maskBefore;
    sigprocmask(SIG_BLOCK, &terminationOnly, &maskBefore);
    const auto handlerBefore = signal(SIGTERM, SIG_IGN);

    const Child child({"/bin/sleep", {"40"}, std::nullopt});
    signal(SIGTERM, handlerBefore);
    sigprocmask(SIG_SETMASK, &maskBefore, nullptr);
    child.process->terminate();

    EXPECT_EQ(child.end().terminationStatus, SIGTERM);
}

/// A child that stops, as one does that reads the terminal from the background, and has stopped by now.
Child stoppedChild()
{
    Child child(shell("kill -STOP $$; exit 3"));
    siginfo_t info{};
    waitid(P_ALL, 0, &info, WSTOPPED | WNOWAIT);
    return child;
}

TEST(LinuxChildProcess, CanBeTerminatedThoughItHasStopped)
{
    const Child child = stoppedChild();

    child.process->terminate();

    EXPECT_EQ(child.end().terminationStatus, SIGTERM);
}

TEST(LinuxChildProcess, LearnsTheStatusThoughTheProcessWasStartedWithSigchldIgnored)
{
    const auto before = signal(SIGCHLD, SIG_IGN);

    const Child child(shell("exit 5"));
    const ChildProcessEnd end = child.end();

    signal(SIGCHLD, before);
    EXPECT_FALSE(end.failure);
    EXPECT_EQ(end.terminationStatus, 5);
}

/// This process without some of its standard streams, until its end.
class ClosedStreams {
public:
    explicit ClosedStreams(const std::vector<int> &streams)
    {
        for (const int stream : streams) {
            m_kept.emplace_back(stream, fcntl(stream, F_DUPFD_CLOEXEC, 100));
            close(stream);
        }
    }
    ClosedStreams(const ClosedStreams &) = delete;
    ClosedStreams &operator=(const ClosedStreams &) = delete;
    ~ClosedStreams()
    {
        for (const auto &[stream, kept] : m_kept)
            dup2(kept.value(), stream);
    }

private:
    std::vector<std::pair<int, FileDescriptor>> m_kept;
};

class LinuxChildProcessWithoutStandardStreams : public testing::TestWithParam<std::vector<int>> {};

TEST_P(LinuxChildProcessWithoutStandardStreams, KeepsItsOutputsApart)
{
    std::optional<ClosedStreams> closed(GetParam());

    const ChildProcessEnd end = Child(shell("echo out; echo err >&2")).end();

    closed.reset();
    EXPECT_EQ(end.standardOutput, "out\n");
    EXPECT_EQ(end.standardError, "err\n");
}

INSTANTIATE_TEST_SUITE_P(InTheParent, LinuxChildProcessWithoutStandardStreams,
                         testing::Values(std::vector{0}, std::vector{1}, std::vector{2}, std::vector{0, 1},
                                         std::vector{0, 2}, std::vector{1, 2}, std::vector{0, 1, 2}));

int openNull()
{
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

/// Leaves the process so many free descriptors, until its end.
class FewDescriptors {
public:
    explicit FewDescriptors(std::size_t free)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = 100;
        setrlimit(RLIMIT_NOFILE, &limit);
        for (FileDescriptor filler(openNull()); filler; filler = FileDescriptor(openNull()))
            m_fillers.push_back(std::move(filler));
        m_fillers.resize(m_fillers.size() - free);
    }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before{};
    std::vector<FileDescriptor> m_fillers;
};

class LinuxChildProcessWithTooFewDescriptors : public testing::TestWithParam<std::size_t> {};

TEST_P(LinuxChildProcessWithTooFewDescriptors, IsNotStartedAtAll)
{
    if (kSanitizerNeedsDescriptors)
        GTEST_SKIP() << "the sanitizer needs a descriptor of its own";
    std::optional<FewDescriptors> few(GetParam());

    const Child child({"/bin/true", {}, std::nullopt});
    few.reset();
    const ChildProcessEnd end = child.end();

    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->code(), EMFILE);
    EXPECT_FALSE(hasChildren());
}

INSTANTIATE_TEST_SUITE_P(Free, LinuxChildProcessWithTooFewDescriptors, testing::Values(0, 1, 2, 3));

TEST(LinuxChildProcess, NeedsNoMoreDescriptorsThanItsTwoPipes)
{
    if (kSanitizerNeedsDescriptors)
        GTEST_SKIP() << "the sanitizer needs a descriptor of its own";
    std::optional<FewDescriptors> few(4);

    const Child child(shell("exit 6"));
    few.reset();

    EXPECT_EQ(child.end().terminationStatus, 6);
}

/// From now on the kernel refuses this process a descriptor that tells a child's end.
void refusePidfds()
{
    std::array<sock_filter, 4> program{
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_pidfd_open, 0, 1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EMFILE),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{program.size(), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        throw Error::fromErrno(errno, "seccomp");
}

[[noreturn]] void exitWithZeroIfChildrenWorkWithoutPidfds()
{
    refusePidfds();
    const Child ending(shell("exit 9"));
    const Child sleeping({"/bin/sleep", {"40"}, std::nullopt});
    sleeping.process->terminate();
    const Child stopped = stoppedChild();
    stopped.process->terminate();
    const bool isRight = ending.end().terminationStatus == 9 && sleeping.end().terminationStatus == SIGTERM &&
                         stopped.end().terminationStatus == SIGTERM;
    std::_Exit(isRight && !hasChildren() ? 0 : 1);
}

TEST(LinuxChildProcessDeathTest, ReportsItsEndWithoutADescriptorForIt)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own: the filter stays for life

    EXPECT_EXIT(exitWithZeroIfChildrenWorkWithoutPidfds(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace brindle
