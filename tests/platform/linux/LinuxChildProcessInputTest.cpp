#include "platform/linux/InputPipe.h"
#include "platform/linux/RealChild.h"
#include "support/ChildOfTest.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include <fcntl.h>

namespace brindle {
namespace {

ChildProcessCommand withInput(ChildProcessCommand command, std::string_view input)
{
    command.standardInput = Secret(input);
    return command;
}

TEST(LinuxChildProcessInput, IsAllThatTheChildReads)
{
    const Child child(withInput({"/bin/cat", {}, std::nullopt}, "open sesame\n"));

    EXPECT_EQ(child.end().standardOutput, "open sesame\n");
}

TEST(LinuxChildProcessInput, MayBeEmpty)
{
    const Child child(withInput({"/bin/cat", {}, std::nullopt}, ""));

    const ChildProcessEnd end = child.end();

    EXPECT_EQ(end.terminationStatus, 0);
    EXPECT_EQ(end.standardOutput, "");
}

TEST(LinuxChildProcessInput, MayBeLeftUnread)
{
    const Child child(withInput(shell("exec <&-; exit 3"), "open sesame\n"));

    EXPECT_EQ(child.end().terminationStatus, 3);
}

TEST(LinuxChildProcessInput, FailsTheStartWhereItDoesNotFitIntoAPipe)
{
    const Child child(withInput({"/bin/cat", {}, std::nullopt}, std::string(8 * 1024 * 1024, 'x')));

    const ChildProcessEnd end = child.end();

    ASSERT_TRUE(end.failure);
    EXPECT_EQ(end.failure->domain(), "POSIXError");
    EXPECT_EQ(end.failure->code(), EAGAIN);
    EXPECT_FALSE(hasChildren());
}

TEST(LinuxChildProcessInput, ReachesTheChildOfAProcessWithoutStandardDescriptors)
{
    const pid_t process = startChild([] {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            close(descriptor);

        const Child child(withInput(shell("cat; echo error >&2"), "open sesame\n"));
        const ChildProcessEnd end = child.end();

        EXPECT_EQ(end.standardOutput, "open sesame\n");
        EXPECT_EQ(end.standardError, "error\n");
    });

    EXPECT_EQ(endOf(process), 0);
}

TEST(InputPipe, IsNotInherited)
{
    const FileDescriptor input = inputPipeHolding("open sesame");

    EXPECT_EQ(fcntl(input.value(), F_GETFD), FD_CLOEXEC);
    EXPECT_GT(input.value(), STDERR_FILENO);
}

} // namespace
} // namespace brindle
