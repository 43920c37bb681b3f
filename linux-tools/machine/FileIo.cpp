#include "machine/FileIo.h"

#include "machine/MachineFileError.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0644;
constexpr std::chrono::milliseconds kLockInterval{5};

[[noreturn]] void fail(const fs::path &path)
{
    throw std::system_error(errno, std::generic_category(), path.string());
}

class Descriptor {
public:
    Descriptor(const fs::path &path, int flags, mode_t mode = 0)
        : m_path(path),
          m_descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode))
    {
        if (m_descriptor < 0)
            fail(path);
    }
    ~Descriptor() { ::close(m_descriptor); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    [[nodiscard]] std::string read() const
    {
        std::string text;
        std::array<char, 65536> buffer{};
        for (;;) {
            const ssize_t count = ::read(m_descriptor, buffer.data(), buffer.size());
            if (count == 0)
                return text;
            if (count > 0)
                text.append(buffer.data(), static_cast<std::size_t>(count));
            else if (errno != EINTR)
                fail(m_path);
        }
    }

    void write(std::string_view text) const
    {
        while (!text.empty()) {
            const ssize_t count = ::write(m_descriptor, text.data(), text.size());
            if (count >= 0)
                text.remove_prefix(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                fail(m_path);
        }
    }

    void setMode(mode_t mode) const { check(::fchmod(m_descriptor, mode)); }
    void sync() const { check(::fsync(m_descriptor)); }

private:
    void check(int result) const
    {
        if (result != 0)
            fail(m_path);
    }

    fs::path m_path;
    int m_descriptor;
};

void waitForLock(int descriptor, const fs::path &folder, std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            fail(folder);
        if (std::chrono::steady_clock::now() >= end)
            throw MachineFileError(fmt::format(
                "{}: another program is changing this machine and doesn't come to an end", folder.string()));
        std::this_thread::sleep_for(kLockInterval);
    }
}

mode_t modeOf(const fs::path &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : kNewFileMode;
}

} // namespace

FolderLock::FolderLock(const fs::path &folder, std::chrono::milliseconds patience)
    : m_descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_descriptor < 0)
        fail(folder);
    try {
        waitForLock(m_descriptor, folder, patience);
    } catch (...) {
        ::close(m_descriptor);
        throw;
    }
}

FolderLock::~FolderLock()
{
    ::close(m_descriptor);
}

std::string readWholeFile(const fs::path &path)
{
    return Descriptor(path, O_RDONLY).read();
}

void replaceFile(const fs::path &path, std::string_view text)
{
    const fs::path target = fs::weakly_canonical(path);
    fs::path temporary = target;
    temporary += ".new";
    ::unlink(temporary.c_str()); // of a write that was cut short
    const Descriptor file(temporary, O_WRONLY | O_CREAT | O_EXCL, kNewFileMode);
    try {
        file.setMode(modeOf(target));
        file.write(text);
        file.sync();
        if (::rename(temporary.c_str(), target.c_str()) != 0)
            fail(target);
    } catch (const std::system_error &) {
        ::unlink(temporary.c_str());
        throw;
    }
    Descriptor(target.parent_path(), O_RDONLY | O_DIRECTORY).sync();
}

} // namespace brindle::tools
