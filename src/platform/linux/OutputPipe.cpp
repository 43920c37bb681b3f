#include "platform/linux/OutputPipe.h"

#include "base/Error.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/ioctl.h>

namespace brindle {

namespace {

constexpr int kWantedCapacityBytes = 1024 * 1024;

} // namespace

OutputPipe OutputPipe::open()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw Error::fromErrno(errno, "pipe");
    fcntl(ends[1], F_SETPIPE_SZ, kWantedCapacityBytes);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::string OutputPipe::contents(FileDescriptor readEnd)
{
    // Asked for first: a read of what is there never waits, not even where another process keeps the pipe open.
    int available = 0;
    if (ioctl(readEnd.value(), FIONREAD, &available) != 0)
        throw Error::fromErrno(errno, "pipe");
    std::string contents(static_cast<std::size_t>(available), '\0');
    if (contents.empty())
        return contents;
    const ssize_t count = read(readEnd.value(), contents.data(), contents.size());
    if (count < 0)
        throw Error::fromErrno(errno, "pipe");
    contents.resize(static_cast<std::size_t>(count));
    return contents;
}

} // namespace brindle
