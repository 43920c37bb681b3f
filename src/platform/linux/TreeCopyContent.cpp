#include "platform/linux/TreeCopy.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace brindle {

namespace {

// Of one call of the kernel, between which a cancellation is seen.
constexpr std::int64_t kPiece = 16 * 1024 * 1024;

// As much as file systems read ahead by themselves.
constexpr std::size_t kBufferSize = 256 * 1024;

constexpr std::int64_t kBlockSize = 512; // the unit of st_blocks, see stat(2)

/// The kernel has no way of its own between these file systems, and not: the copy failed.
bool saysCantCopy(int errorNumber)
{
    return errorNumber == EXDEV || errorNumber == ENOSYS || errorNumber == EOPNOTSUPP || errorNumber == EINVAL;
}

} // namespace

void TreeCopy::copyContent(int from, int to, const struct stat &status)
{
    if (status.st_blocks * kBlockSize < status.st_size)
        copyExtents(from, to, status.st_size);
    else
        copyRange(from, to, 0, status.st_size);
}

void TreeCopy::copyExtents(int from, int to, std::int64_t size)
{
    for (std::int64_t end = 0; end < size;) {
        std::int64_t begin = ::lseek(from, end, SEEK_DATA);
        if (begin < 0 && errno == ENXIO) // nothing but a hole is left
            break;
        if (begin < 0) // the file system doesn't tell: all is data
            begin = end;
        end = ::lseek(from, begin, SEEK_HOLE);
        end = end > begin ? std::min(end, size) : size;
        copyRange(from, to, begin, end);
    }
    if (::ftruncate(to, size) != 0)
        throw Error::fromErrno(errno, m_to);
}

void TreeCopy::copyRange(int from, int to, std::int64_t begin, std::int64_t end)
{
    if (m_kernelCopies)
        begin = copyRangeInKernel(from, to, begin, end);
    copyRangeByHand(from, to, begin, end);
}

/// How far the kernel got before it could not go on by itself. It shares blocks where the file system can.
std::int64_t TreeCopy::copyRangeInKernel(int from, int to, std::int64_t begin, std::int64_t end)
{
    while (begin < end) {
        throwIfStopped();
        std::int64_t read = begin;
        std::int64_t written = begin;
        const auto wanted = static_cast<std::size_t>(std::min(end - begin, kPiece));
        const ssize_t size = ::copy_file_range(from, &read, to, &written, wanted, 0);
        if (size == 0) // the file's end, or a file that the kernel takes for empty
            break;
        if (size > 0) {
            begin += size;
        } else if (saysCantCopy(errno)) {
            m_kernelCopies = false;
            break;
        } else if (errno != EINTR) {
            throw Error::fromErrno(errno, m_to);
        }
    }
    return begin;
}

void TreeCopy::copyRangeByHand(int from, int to, std::int64_t begin, std::int64_t end)
{
    while (begin < end) {
        throwIfStopped();
        m_buffer.resize(kBufferSize);
        const auto wanted = static_cast<std::size_t>(std::min(end - begin, static_cast<std::int64_t>(kBufferSize)));
        const ssize_t size = ::pread(from, m_buffer.data(), wanted, begin);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            throw Error::fromErrno(errno, m_from);
        if (size == 0) // it was cut meanwhile
            return;
        writeWhole(to, {m_buffer.data(), static_cast<std::size_t>(size)}, begin);
        begin += size;
    }
}

void TreeCopy::writeWhole(int to, std::string_view bytes, std::int64_t offset) const
{
    while (!bytes.empty()) {
        const ssize_t size = ::pwrite(to, bytes.data(), bytes.size(), offset);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            throw Error::fromErrno(errno, m_to);
        bytes.remove_prefix(static_cast<std::size_t>(size));
        offset += size;
    }
}

} // namespace brindle
