#include "platform/linux/DefaultsFile.h"

#include "platform/linux/PropertyListFile.h"

#include <fmt/chrono.h>

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <utility>

namespace brindle {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;

std::string reasonOf(int error)
{
    return std::generic_category().message(error);
}

/// A failure of this process or of the moment, which says nothing about the file.
bool isPassing(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

/// A run as root must not leave files in a user's folder that the user can't read; for all others this does nothing.
void giveToOwnerOf(const fs::path &folder, const FileDescriptor &file)
{
    struct stat status {};
    if (::stat(folder.c_str(), &status) == 0)
        std::ignore = ::fchown(file.value(), status.st_uid, status.st_gid);
}

void makeFolder(const fs::path &folder)
{
    std::error_code noFolder;
    if (fs::is_directory(folder, noFolder))
        return;
    fs::path made;
    for (const fs::path &name : folder) {
        const fs::path parent = std::exchange(made, made / name);
        if (::mkdir(made.c_str(), kFolderMode) == 0)
            giveToOwnerOf(parent, FileDescriptor(::open(made.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
        else if (errno != EEXIST)
            throw Error::fromErrno(errno, made.string());
    }
}

/// Where the symbolic links at \a path lead to, which need not exist.
fs::path followed(fs::path path)
{
    constexpr int kMaxLinks = 40; // as the kernel's
    for (int i = 0; i < kMaxLinks; ++i) {
        std::error_code noLink;
        const fs::path next = fs::read_symlink(path, noLink);
        if (noLink)
            break;
        path = path.parent_path() / next;
    }
    return path;
}

std::string readAll(const FileDescriptor &file, const fs::path &path)
{
    std::string bytes;
    std::array<char, 16384> buffer;
    for (;;) {
        const ssize_t count = ::read(file.value(), buffer.data(), buffer.size());
        if (count == 0)
            return bytes;
        if (count > 0)
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw DamagedFile(path, reasonOf(errno));
    }
}

void writeAll(const FileDescriptor &file, std::string_view bytes, const fs::path &path)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.value(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw Error::fromErrno(errno, path.string());
    }
    if (::fdatasync(file.value()) == -1)
        throw Error::fromErrno(errno, path.string());
}

/// A file that is removed at its end, unless it has been renamed by then.
class TemporaryFile {
public:
    explicit TemporaryFile(fs::path path) : m_path(std::move(path))
    {
        ::unlink(m_path.c_str()); // what a writer that was killed has left
        m_file = FileDescriptor(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
        if (!m_file)
            throw Error::fromErrno(errno, m_path.string());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile()
    {
        if (m_file)
            ::unlink(m_path.c_str());
    }

    [[nodiscard]] const FileDescriptor &file() const { return m_file; }

    FileDescriptor renameTo(const fs::path &target)
    {
        if (::rename(m_path.c_str(), target.c_str()) == -1)
            throw Error::fromErrno(errno, target.string());
        return std::move(m_file);
    }

private:
    fs::path m_path;
    FileDescriptor m_file;
};

/// Puts \a bytes in the place of \a target, or throws and leaves that as it is.
FileDescriptor writeWhole(std::string_view bytes, const fs::path &target)
{
    TemporaryFile temporary(target.string() + ".new");
    giveToOwnerOf(target.parent_path(), temporary.file());
    writeAll(temporary.file(), bytes, target);
    return temporary.renameTo(target);
}

} // namespace

DamagedFile::DamagedFile(const fs::path &path, std::string_view reason)
    : Error("PropertyListError", 1, fmt::format("{}: {}", path.string(), reason))
{
}

DefaultsFile::DefaultsFile(fs::path path) : m_path(std::move(path)) {}

fs::path DefaultsFile::folder() const
{
    return followed(m_path).parent_path();
}

bool DefaultsFile::hasChanged() const
{
    return m_seen != look();
}

PropertyValue::Dictionary DefaultsFile::read()
{
    m_seen = look(); // before opening: a file that comes in between is seen to be another one by the next look
    m_isComplete = true;
    // A pipe in the file's place must not hold us up.
    m_open = FileDescriptor(::open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!m_open) {
        const int error = errno;
        if (error == ENOENT)
            return {};
        if (!isPassing(error))
            throw DamagedFile(m_path, reasonOf(error));
        m_seen.reset();
        throw Error::fromErrno(error, m_path.string());
    }
    struct stat status {};
    if (::fstat(m_open.value(), &status) == 0 && !S_ISREG(status.st_mode))
        throw DamagedFile(m_path, "not a regular file");

    auto result = readPropertyList(readAll(m_open, m_path));
    if (const Error *damage = std::get_if<Error>(&result))
        throw DamagedFile(m_path, damage->localizedDescription());
    PropertyList list = std::get<PropertyList>(std::move(result));
    m_isComplete = list.isComplete;
    return std::move(list.values);
}

FileDescriptor DefaultsFile::lock() const
{
    const fs::path path = m_path.string() + ".lock";
    makeFolder(m_path.parent_path());
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kFileMode));
    if (!file)
        throw Error::fromErrno(errno, path.string());
    giveToOwnerOf(m_path.parent_path(), file);
    while (::flock(file.value(), LOCK_EX) == -1) {
        if (errno != EINTR)
            throw Error::fromErrno(errno, path.string());
    }
    return file;
}

void DefaultsFile::replace(std::string_view bytes)
{
    m_open = writeWhole(bytes, followed(m_path));
    m_seen = look();
    m_isComplete = true;
}

fs::path DefaultsFile::setAside()
{
    fs::path aside = nameAside();
    if (::rename(m_path.c_str(), aside.c_str()) == -1)
        throw Error::fromErrno(errno, m_path.string());
    m_seen.reset();
    return aside;
}

fs::path DefaultsFile::keepCopy()
{
    fs::path aside = nameAside();
    ::lseek(m_open.value(), 0, SEEK_SET);
    writeWhole(readAll(m_open, m_path), aside);
    m_isComplete = true;
    return aside;
}

fs::path DefaultsFile::nameAside() const
{
    const std::string name =
        fmt::format("{}.damaged-{:%Y%m%dT%H%M%SZ}", m_path.string(), fmt::gmtime(std::time(nullptr)));
    fs::path aside = name;
    for (int count = 2; fs::exists(fs::symlink_status(aside)); ++count)
        aside = fmt::format("{}-{}", name, count);
    return aside;
}

DefaultsFile::Stamp DefaultsFile::look() const
{
    struct stat status {};
    const int error = ::stat(m_path.c_str(), &status) == 0 ? 0 : errno;
    return {error,
            status.st_dev,
            status.st_ino,
            status.st_size,
            status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec,
            status.st_ctim.tv_sec,
            status.st_ctim.tv_nsec};
}

} // namespace brindle
