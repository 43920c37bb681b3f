#include "support/FileFaults.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>

#include <sys/stat.h>
#include <sys/types.h>

namespace brindle {

namespace {

struct Fault {
    std::string function;
    int errorNumber; ///< 0: the process is killed.
    int which;
};

constexpr std::string_view kAttribute = "user.brindle";

std::mutex mutex;
bool isWatching = false;
bool hasAttribute = false;
std::vector<Fault> faults;
std::vector<std::pair<std::string, int>> made;
std::map<std::string, int, std::less<>> counts; ///< Of the calls made, by their functions.

/// Notes a call; the error number that it is to fail with.
std::optional<int> faultOf(std::string_view function)
{
    const std::lock_guard lock(mutex);
    if (!isWatching)
        return std::nullopt;
    const int which = ++counts[std::string(function)];
    made.emplace_back(function, which);
    const auto fault = std::ranges::find_if(faults, [&](const Fault &candidate) {
        return candidate.function == function && (candidate.which == 0 || candidate.which == which);
    });
    if (fault == faults.end())
        return std::nullopt;
    if (fault->errorNumber == 0)
        std::raise(SIGKILL);
    return fault->errorNumber;
}

/// What \a call gives unless the function is to fail.
template <typename Call>
auto unlessFaulty(std::string_view function, Call call) -> decltype(call())
{
    if (const auto errorNumber = faultOf(function)) {
        errno = *errorNumber;
        return -1;
    }
    return call();
}

/// The answer of a function of attributes where they are pretended: \a bytes, as far as there is room for them.
template <typename Call>
ssize_t pretendedOr(std::string_view bytes, void *buffer, size_t size, Call call)
{
    if (!hasAttribute)
        return call();
    std::memcpy(buffer, bytes.data(), std::min(size, bytes.size()));
    return static_cast<ssize_t>(bytes.size());
}

} // namespace

FileFaults::FileFaults()
{
    const std::lock_guard lock(mutex);
    isWatching = true;
}

FileFaults::~FileFaults()
{
    const std::lock_guard lock(mutex);
    isWatching = false;
    hasAttribute = false;
    faults.clear();
    made.clear();
    counts.clear();
}

void FileFaults::fail(std::string_view function, int errorNumber, int which)
{
    const int before = which == 0 ? 0 : callsOf(function);
    const std::lock_guard lock(mutex);
    faults.push_back({std::string(function), errorNumber, which == 0 ? 0 : before + which});
}

void FileFaults::pretendAttribute()
{
    const std::lock_guard lock(mutex);
    hasAttribute = true;
}

std::vector<std::string> FileFaults::functions()
{
    std::istringstream text(FAULTY_CALLS);
    return {std::istream_iterator<std::string>(text), {}};
}

int FileFaults::callsOf(std::string_view function) const
{
    const std::lock_guard lock(mutex);
    const auto count = counts.find(function);
    return count == counts.end() ? 0 : count->second;
}

std::size_t FileFaults::callCount() const
{
    const std::lock_guard lock(mutex);
    return made.size();
}

std::vector<std::pair<std::string, int>> FileFaults::calls() const
{
    const std::lock_guard lock(mutex);
    return made;
}

} // namespace brindle

// The linker sends each call of NAME to __wrap_NAME; __real_NAME is the system's.
// NOLINTBEGIN(bugprone-reserved-identifier)
#define BRINDLE_WRAP(result, name, parameters, arguments)                                                              \
    result __real_##name parameters;                                                                                   \
    result __wrap_##name parameters;                                                                                   \
    result __wrap_##name parameters                                                                                    \
    {                                                                                                                  \
        return brindle::unlessFaulty(#name, [&] { return __real_##name arguments; });                                  \
    }

extern "C" {
BRINDLE_WRAP(int, mkdirat, (int folder, const char *name, mode_t mode), (folder, name, mode))
BRINDLE_WRAP(int, symlinkat, (const char *text, int folder, const char *name), (text, folder, name))
BRINDLE_WRAP(ssize_t, readlinkat, (int folder, const char *name, char *text, size_t size), (folder, name, text, size))
BRINDLE_WRAP(int, unlinkat, (int folder, const char *name, int flags), (folder, name, flags))
BRINDLE_WRAP(ssize_t, getdents64, (int folder, void *buffer, size_t size), (folder, buffer, size))
BRINDLE_WRAP(int, stat, (const char *path, struct stat *status), (path, status))
BRINDLE_WRAP(int, fstat, (int file, struct stat *status), (file, status))
BRINDLE_WRAP(int, fstatat, (int folder, const char *name, struct stat *status, int flags),
             (folder, name, status, flags))
BRINDLE_WRAP(off_t, lseek, (int file, off_t offset, int whence), (file, offset, whence))
BRINDLE_WRAP(ssize_t, copy_file_range, (int from, off_t *read, int to, off_t *written, size_t size, unsigned int flags),
             (from, read, to, written, size, flags))
BRINDLE_WRAP(ssize_t, pread, (int file, void *buffer, size_t size, off_t offset), (file, buffer, size, offset))
BRINDLE_WRAP(ssize_t, pwrite, (int file, const void *bytes, size_t size, off_t offset), (file, bytes, size, offset))
BRINDLE_WRAP(int, ftruncate, (int file, off_t size), (file, size))
BRINDLE_WRAP(int, fchmod, (int file, mode_t mode), (file, mode))
BRINDLE_WRAP(int, futimens, (int file, const struct timespec *times), (file, times))
BRINDLE_WRAP(int, utimensat, (int folder, const char *name, const struct timespec *times, int flags),
             (folder, name, times, flags))
BRINDLE_WRAP(int, syncfs, (int file), (file))

ssize_t __real_flistxattr(int file, char *names, size_t size);
ssize_t __wrap_flistxattr(int file, char *names, size_t size);
ssize_t __wrap_flistxattr(int file, char *names, size_t size)
{
    using namespace brindle;
    constexpr std::string_view kNames(kAttribute.data(), kAttribute.size() + 1); // with the NUL behind it
    return unlessFaulty("flistxattr", [&] {
        return pretendedOr(kNames, names, size, [&] { return __real_flistxattr(file, names, size); });
    });
}

ssize_t __real_fgetxattr(int file, const char *name, void *value, size_t size);
ssize_t __wrap_fgetxattr(int file, const char *name, void *value, size_t size);
ssize_t __wrap_fgetxattr(int file, const char *name, void *value, size_t size)
{
    using namespace brindle;
    return unlessFaulty("fgetxattr", [&] {
        return pretendedOr("v", value, size, [&] { return __real_fgetxattr(file, name, value, size); });
    });
}

int __real_fsetxattr(int file, const char *name, const void *value, size_t size, int flags);
int __wrap_fsetxattr(int file, const char *name, const void *value, size_t size, int flags);
int __wrap_fsetxattr(int file, const char *name, const void *value, size_t size, int flags)
{
    using namespace brindle;
    return unlessFaulty("fsetxattr",
                        [&] { return hasAttribute ? 0 : __real_fsetxattr(file, name, value, size, flags); });
}

char *__real_realpath(const char *path, char *resolved);
char *__wrap_realpath(const char *path, char *resolved);
char *__wrap_realpath(const char *path, char *resolved)
{
    if (const auto errorNumber = brindle::faultOf("realpath")) {
        errno = *errorNumber;
        return nullptr;
    }
    return __real_realpath(path, resolved);
}

int __real_openat(int folder, const char *name, int flags, ...);
int __wrap_openat(int folder, const char *name, int flags, ...);
int __wrap_openat(int folder, const char *name, int flags, ...)
{
    va_list more;
    va_start(more, flags);
    const mode_t mode = va_arg(more, mode_t); // garbage that nobody reads, where there is none
    va_end(more);
    return brindle::unlessFaulty("openat", [&] { return __real_openat(folder, name, flags, mode); });
}

int __real_close(int file);
int __wrap_close(int file);
int __wrap_close(int file)
{
    const auto errorNumber = brindle::faultOf("close");
    const int result = __real_close(file); // closed all the same, as the system does it
    if (!errorNumber)
        return result;
    errno = *errorNumber;
    return -1;
}
}
// NOLINTEND(bugprone-reserved-identifier)
