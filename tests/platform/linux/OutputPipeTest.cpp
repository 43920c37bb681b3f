#include "platform/linux/OutputPipe.h"

#include "base/Error.h"

#include <gtest/gtest.h>

#include <string>

#include <fcntl.h>

namespace brindle {
namespace {

void put(const FileDescriptor &descriptor, const std::string &text)
{
    ASSERT_EQ(write(descriptor.value(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST(OutputPipe, HoldsAMebibyteWhereTheKernelAllowsIt)
{
    const OutputPipe pipe = OutputPipe::open();

    const int capacity = fcntl(pipe.writeEnd.value(), F_GETPIPE_SZ);

    const bool isAllowed = fcntl(pipe.writeEnd.value(), F_SETPIPE_SZ, 1024 * 1024) >= 0;
    if (!isAllowed)
        GTEST_SKIP() << "this user has used up his memory for pipes";
    EXPECT_EQ(capacity, 1024 * 1024);
}

TEST(OutputPipe, GivesWhatStandsInItWithoutWaitingForItsWriters)
{
    OutputPipe pipe = OutputPipe::open();
    put(pipe.writeEnd, "text");

    const std::string contents = OutputPipe::contents(std::move(pipe.readEnd));

    EXPECT_EQ(contents, "text");
}

TEST(OutputPipe, GivesNothingWhereNothingWasWritten)
{
    OutputPipe pipe = OutputPipe::open();

    EXPECT_EQ(OutputPipe::contents(std::move(pipe.readEnd)), "");
}

TEST(OutputPipe, ClosesWhatItHasRead)
{
    OutputPipe pipe = OutputPipe::open();
    const int number = pipe.readEnd.value();

    const std::string contents = OutputPipe::contents(std::move(pipe.readEnd));

    EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST(OutputPipe, ThrowsWhereItCannotBeRead)
{
    FileDescriptor folder(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));

    EXPECT_THROW((void)OutputPipe::contents(std::move(folder)), Error);
}

TEST(OutputPipe, IsInheritedByNoProgram)
{
    const OutputPipe pipe = OutputPipe::open();

    EXPECT_EQ(fcntl(pipe.readEnd.value(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(fcntl(pipe.writeEnd.value(), F_GETFD), FD_CLOEXEC);
}

} // namespace
} // namespace brindle
