#include "platform/linux/TreeCopy.h"

#include "platform/FileManager.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>

namespace brindle {

namespace {

Error copyError(CopyError code, std::string sentence)
{
    return {kCopyErrorDomain, static_cast<int>(code), std::move(sentence)};
}

struct stat statusOf(const FileDescriptor &file, std::string_view path)
{
    struct stat status {};
    if (::fstat(file.value(), &status) != 0)
        throw Error::fromErrno(errno, path);
    return status;
}

std::filesystem::path canonicalPath(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> canonical(::realpath(path.c_str(), nullptr), &std::free);
    if (!canonical)
        throw Error::fromErrno(errno, path);
    return canonical.get();
}

} // namespace

TreeCopy::TreeCopy(std::string from, std::string to, std::stop_token stop)
    : m_from(std::move(from)),
      m_to(std::move(to)),
      m_stop(std::move(stop))
{
}

void TreeCopy::run()
{
    const SplitPath from(m_from);
    const SplitPath to(m_to);
    const FileDescriptor fromFolder = openFolder(AT_FDCWD, from.folder, O_PATH, m_from);
    // Opened before anything is written: the flush tells of failed writes since then alone.
    const FileDescriptor toFolder = openFolder(AT_FDCWD, to.folder, O_RDONLY, m_to);
    const unsigned char type = entryType(fromFolder.value(), from.name, m_from);
    if (type == DT_DIR)
        refuseCopyIntoItself(to.folder);

    copyEntry({fromFolder.value(), from.name}, {toFolder.value(), to.name}, type);
    // One flush of the file system: one a file is twenty times dearer.
    if (::syncfs(toFolder.value()) != 0)
        throw Error::fromErrno(errno, m_to);
}

void TreeCopy::refuseCopyIntoItself(const std::string &folderOfTarget) const
{
    const auto source = canonicalPath(m_from);
    const auto target = canonicalPath(folderOfTarget);
    if (std::ranges::mismatch(source, target).in1 == source.end())
        throw copyError(CopyError::intoItself,
                        fmt::format("{} can't be copied to {}, which lies within it.", m_from, m_to));
}

void TreeCopy::copyEntry(Place from, Place to, unsigned char type)
{
    throwIfStopped();
    switch (type) {
    case DT_DIR:
        return copyFolder(from, to);
    case DT_REG:
        return copyFile(from, to);
    case DT_LNK:
        return copyLink(from, to);
    default:
        throw copyError(CopyError::notCopyable,
                        fmt::format("{} is neither a file, a folder nor a link and can't be copied.", m_from));
    }
}

void TreeCopy::copyFolder(Place from, Place to)
{
    const FileDescriptor source = openFolder(from.folder, from.name, O_RDONLY | O_NOFOLLOW, m_from);
    if (::mkdirat(to.folder, to.name.c_str(), S_IRWXU) != 0)
        throw creationError(errno);
    const FileDescriptor target = openFolder(to.folder, to.name, O_RDONLY | O_NOFOLLOW, m_to);

    ++m_depth;
    for (const FolderEntry &entry : entriesOf(source, m_from)) {
        const PathStep fromStep(m_from, entry.name);
        const PathStep toStep(m_to, entry.name);
        copyEntry({source.value(), entry.name}, {target.value(), entry.name}, entry.type);
    }
    --m_depth;
    // Last: the entries that were made have changed its times, and it may be closed to writing.
    copyQualities(source.value(), target.value(), statusOf(source, m_from));
}

void TreeCopy::copyFile(Place from, Place to)
{
    // Without waiting: a pipe may have taken the file's place.
    const FileDescriptor source(
        ::openat(from.folder, from.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!source)
        throw Error::fromErrno(errno, m_from);
    const struct stat status = statusOf(source, m_from);
    FileDescriptor target(
        ::openat(to.folder, to.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target)
        throw creationError(errno);

    copyContent(source.value(), target.value(), status);
    copyQualities(source.value(), target.value(), status);
    if (!target.close()) // where file systems over a network tell that they could not write
        throw Error::fromErrno(errno, m_to);
}

void TreeCopy::copyLink(Place from, Place to)
{
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlinkat(from.folder, from.name.c_str(), text.data(), text.size() - 1);
    struct stat status {};
    if (size < 0 || ::fstatat(from.folder, from.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        throw Error::fromErrno(errno, m_from);
    if (::symlinkat(text.data(), to.folder, to.name.c_str()) != 0) {
        if (errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS)
            throw copyError(CopyError::linkNotHeld,
                            fmt::format("{} is a link, which the file system of the target can't hold.", m_from));
        throw creationError(errno);
    }
    const std::array times{status.st_atim, status.st_mtim};
    ::utimensat(to.folder, to.name.c_str(), times.data(), AT_SYMLINK_NOFOLLOW); // a link may have no times of its own
}

void TreeCopy::throwIfStopped() const
{
    if (m_stop.stop_requested())
        throw copyError(CopyError::cancelled, fmt::format("The copy to {} was cancelled.", m_to));
}

Error TreeCopy::creationError(int errorNumber) const
{
    switch (errorNumber) {
    case EINVAL:
    case EILSEQ:
    case ENAMETOOLONG:
        return copyError(CopyError::nameNotHeld,
                         fmt::format("{}: The file system of the target can't hold this name.", m_to));
    case EEXIST:
        // The folder is new, so that it is one of its own files: "Boot" and "BOOT", where case counts for nothing.
        if (m_depth > 0)
            return copyError(
                CopyError::nameHeldAlready,
                fmt::format("{}: The file system of the target takes this name for that of another file.", m_to));
        break;
    default:
        break;
    }
    return Error::fromErrno(errorNumber, m_to);
}

} // namespace brindle
