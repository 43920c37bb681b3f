#include "machine/FileIo.h"

#include "machine/MachineFileError.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0644;
constexpr std::size_t kLargestFile = 64 << 20; // A machine of hundreds of disks takes less than 1 MiB.
constexpr std::chrono::milliseconds kLockInterval{5};

void require(bool isDone, const fs::path &path)
{
    if (!isDone)
        throw std::system_error(errno, std::generic_category(), path.string());
}

Descriptor opened(const fs::path &path, int flags, mode_t mode = 0)
{
    Descriptor descriptor(path, flags, mode);
    require(descriptor.isValid(), path);
    return descriptor;
}

void write(const Descriptor &file, std::string_view text, const fs::path &path)
{
    while (!text.empty()) {
        const ssize_t count = ::write(file.get(), text.data(), text.size());
        require(count >= 0 || errno == EINTR, path);
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

mode_t modeOf(const fs::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : kNewFileMode;
}

} // namespace

FolderLock::FolderLock(const fs::path &folder, std::chrono::milliseconds patience)
    : m_folder(opened(folder, O_RDONLY | O_DIRECTORY))
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (::flock(m_folder.get(), LOCK_EX | LOCK_NB) != 0) {
        require(errno == EWOULDBLOCK || errno == EINTR, folder);
        if (std::chrono::steady_clock::now() >= end)
            throw MachineFileError(fmt::format(
                "{}: another program is changing this machine and doesn't come to an end", folder.string()));
        std::this_thread::sleep_for(kLockInterval);
    }
}

std::string readWholeFile(const fs::path &path)
{
    const Descriptor file = opened(path, O_RDONLY | O_NONBLOCK | O_NOCTTY); // A pipe must not hold us up.
    struct stat status {};
    require(::fstat(file.get(), &status) == 0, path);
    if (!S_ISREG(status.st_mode))
        throw MachineFileError(fmt::format("{}: not a regular file", path.string()));
    std::optional<std::string> text = readOpened(file, kLargestFile);
    require(text.has_value(), path);
    return std::move(*text);
}

void replaceFile(const fs::path &path, std::string_view text)
{
    const fs::path target = fs::weakly_canonical(path);
    fs::path temporary = target;
    temporary += ".new";
    ::unlink(temporary.c_str()); // of a write that was cut short
    const Descriptor file = opened(temporary, O_WRONLY | O_CREAT | O_EXCL, kNewFileMode);
    try {
        require(::fchmod(file.get(), modeOf(target)) == 0, temporary);
        write(file, text, temporary);
        require(::fsync(file.get()) == 0, temporary);
        require(::rename(temporary.c_str(), target.c_str()) == 0, target);
    } catch (const std::system_error &) {
        ::unlink(temporary.c_str());
        throw;
    }
    const fs::path folder = target.parent_path();
    require(::fsync(opened(folder, O_RDONLY | O_DIRECTORY).get()) == 0, folder);
}

} // namespace brindle::tools
