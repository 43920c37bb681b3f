#include "platform/linux/InputPipe.h"

#include "base/Error.h"

#include <array>
#include <cerrno>

#include <fcntl.h>

namespace brindle {

FileDescriptor inputPipeHolding(std::string_view bytes)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw Error::fromErrno(errno, "pipe");
    const FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    fcntl(writeEnd.value(), F_SETFL, O_NONBLOCK); // of the write end alone: programs expect to wait for their input
    const ssize_t count = write(writeEnd.value(), bytes.data(), bytes.size());
    if (count != static_cast<ssize_t>(bytes.size()))
        throw Error::fromErrno(count < 0 ? errno : EAGAIN, "pipe");
    FileDescriptor input(fcntl(readEnd.value(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!input)
        throw Error::fromErrno(errno, "pipe");
    return input;
}

} // namespace brindle
