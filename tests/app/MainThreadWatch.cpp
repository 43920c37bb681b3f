#include "MainThreadWatch.h"

#include <fmt/format.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include <cxxabi.h>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr int kDeepest = 64;
constexpr std::string_view kDispatcher = "EventDispatcherUNIX::processEvents";

std::atomic<bool> isWatching = false;
bool isNoting = false; // this and what follows belong to the main thread
std::string mountPoints;
std::vector<std::string> notes;
int fileCallCount = 0;
int waitCount = 0;

bool isOnMainThread()
{
    return ::gettid() == ::getpid();
}

/// The function that the program would have called.
template <typename Function>
Function next(const char *name, const char *version = nullptr)
{
    void *const found = version ? ::dlvsym(RTLD_NEXT, name, version) : nullptr;
    return reinterpret_cast<Function>(found ? found : ::dlsym(RTLD_NEXT, name));
}

std::string nameAt(void *address)
{
    Dl_info info{};
    if (!::dladdr(address, &info))
        return "?";
    if (!info.dli_sname)
        return info.dli_fname;
    int status = 0;
    char *const plain = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status);
    std::string name = plain ? plain : info.dli_sname;
    std::free(plain);
    return name;
}

/// Where the functions that have called the one that asks go on, the innermost first.
std::vector<void *> callers()
{
    std::vector<void *> addresses(kDeepest);
    addresses.resize(static_cast<std::size_t>(::backtrace(addresses.data(), kDeepest)));
    return addresses;
}

bool isIn(void *address, std::initializer_list<std::string_view> libraries)
{
    Dl_info info{};
    const std::string_view file = ::dladdr(address, &info) ? info.dli_fname : "";
    return std::ranges::any_of(libraries, [&](std::string_view library) { return file.find(library) != file.npos; });
}

/// Qt hands the reading of QML and the filling of large areas to threads of its own and waits for their end, which no
/// device and no other program can put off. \a caller is who waits, through Qt Core or not.
bool isWorkThatQtShares(void *caller)
{
    const std::vector<void *> addresses = callers();
    const auto from = std::ranges::find(addresses, caller);
    const auto who = std::find_if(from, addresses.end(), [](void *address) { return !isIn(address, {"libQt6Core"}); });
    return who != addresses.end() && isIn(*who, {"libQt6Qml", "libQt6Gui"});
}

/// Nothing that the watch does itself is looked at.
class Noting {
public:
    Noting() : m_begins(isWatching && isOnMainThread() && !isNoting)
    {
        if (m_begins)
            isNoting = true;
    }
    ~Noting()
    {
        if (m_begins)
            isNoting = false;
        errno = m_errno;
    }
    Noting(const Noting &) = delete;
    Noting &operator=(const Noting &) = delete;

    [[nodiscard]] bool begins() const { return m_begins; }

private:
    bool m_begins;
    int m_errno = errno;
};

void note(std::string what)
{
    for (void *caller : callers())
        what += "\n    " + nameAt(caller);
    notes.push_back(std::move(what));
}

std::string textOfLink(const std::string &link)
{
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlink(link.c_str(), text.data(), text.size());
    return length < 0 ? std::string() : std::string(text.data(), static_cast<std::size_t>(length));
}

std::string placeOf(int file)
{
    return textOfLink(fmt::format("/proc/self/fd/{}", file));
}

void lookAt(const char *function, const std::string &path)
{
    ++fileCallCount;
    if (path.find(mountPoints) != std::string::npos)
        note(fmt::format("{} {}", function, path));
}

void lookAtPath(const char *function, const char *path, int folder = AT_FDCWD)
{
    const Noting noting;
    if (!noting.begins() || !path)
        return;
    const bool isWhole = *path == '/' || folder == AT_FDCWD;
    lookAt(function, isWhole ? path : placeOf(folder) + "/" + path);
}

void lookAtFile(const char *function, int file)
{
    const Noting noting;
    if (noting.begins())
        lookAt(function, placeOf(file));
}

/// A wait that has no business on the main thread.
void lookAtWait(const char *function, void *caller)
{
    const Noting noting;
    if (noting.begins() && !isWorkThatQtShares(caller))
        note(function);
}

/// A wait for descriptors: the event loop's own one, that of the outermost loop, is the only one that may be.
void lookAtEventWait(const char *function)
{
    const Noting noting;
    if (!noting.begins())
        return;
    const std::vector<void *> addresses = callers();
    const auto isDispatcher = [](void *address) { return nameAt(address).find(kDispatcher) != std::string::npos; };
    constexpr std::ptrdiff_t kWithin = 6; // the watch, Qt's wrappers of poll, and the dispatcher
    const auto innermost = std::ranges::find_if(addresses, isDispatcher) - addresses.begin();
    const bool isOutermost = std::ranges::count_if(addresses, isDispatcher) == 1;
    if (innermost < kWithin && isOutermost && QThread::currentThread()->loopLevel() <= 1)
        ++waitCount;
    else
        note(function);
}

} // namespace

MainThreadWatch::MainThreadWatch(std::string folderOfMountPoints)
{
    (void)callers(); // loads what it needs
    mountPoints = std::move(folderOfMountPoints);
    isWatching = true;
}

MainThreadWatch::~MainThreadWatch()
{
    end();
}

void MainThreadWatch::end()
{
    isWatching = false;
}

std::vector<std::string> MainThreadWatch::findings() const
{
    return notes;
}

int MainThreadWatch::fileCalls() const
{
    return fileCallCount;
}

int MainThreadWatch::waitsForEvents() const
{
    return waitCount;
}

} // namespace brindle

// Each function bears the symbol of the system's. As names of C++ they are their own, so that they need not agree with
// what the system's headers say of exceptions.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
#define BRINDLE_WATCH(result, name, parameters, arguments, look)                                                       \
    __attribute__((visibility("default"))) result watched_##name parameters __asm__(#name);                            \
    result watched_##name parameters                                                                                   \
    {                                                                                                                  \
        look;                                                                                                          \
        static const auto real = brindle::next<result(*) parameters>(#name);                                           \
        return real arguments;                                                                                         \
    }

#define BRINDLE_WATCH_OPEN(name, parameters, arguments, look)                                                          \
    __attribute__((visibility("default"))) int watched_##name parameters __asm__(#name);                               \
    int watched_##name parameters                                                                                      \
    {                                                                                                                  \
        va_list more;                                                                                                  \
        va_start(more, flags);                                                                                         \
        const mode_t mode = va_arg(more, mode_t); /* garbage that nobody reads, where there is none */                 \
        va_end(more);                                                                                                  \
        look;                                                                                                          \
        static const auto real = brindle::next<int(*) parameters>(#name);                                              \
        return real arguments;                                                                                         \
    }

using brindle::lookAtEventWait;
using brindle::lookAtFile;
using brindle::lookAtPath;
using brindle::lookAtWait;

BRINDLE_WATCH_OPEN(open, (const char *path, int flags, ...), (path, flags, mode), lookAtPath("open", path))
BRINDLE_WATCH_OPEN(open64, (const char *path, int flags, ...), (path, flags, mode), lookAtPath("open", path))
BRINDLE_WATCH_OPEN(openat, (int folder, const char *path, int flags, ...), (folder, path, flags, mode),
                   lookAtPath("openat", path, folder))
BRINDLE_WATCH_OPEN(openat64, (int folder, const char *path, int flags, ...), (folder, path, flags, mode),
                   lookAtPath("openat", path, folder))
BRINDLE_WATCH(FILE *, fopen, (const char *path, const char *mode), (path, mode), lookAtPath("fopen", path))
BRINDLE_WATCH(FILE *, fopen64, (const char *path, const char *mode), (path, mode), lookAtPath("fopen", path))
BRINDLE_WATCH(int, stat, (const char *path, struct stat *status), (path, status), lookAtPath("stat", path))
BRINDLE_WATCH(int, stat64, (const char *path, struct stat64 *status), (path, status), lookAtPath("stat", path))
BRINDLE_WATCH(int, lstat, (const char *path, struct stat *status), (path, status), lookAtPath("lstat", path))
BRINDLE_WATCH(int, lstat64, (const char *path, struct stat64 *status), (path, status), lookAtPath("lstat", path))
BRINDLE_WATCH(int, fstatat, (int folder, const char *path, struct stat *status, int flags),
              (folder, path, status, flags), lookAtPath("fstatat", path, folder))
BRINDLE_WATCH(int, fstatat64, (int folder, const char *path, struct stat64 *status, int flags),
              (folder, path, status, flags), lookAtPath("fstatat", path, folder))
BRINDLE_WATCH(int, statx, (int folder, const char *path, int flags, unsigned mask, struct statx *status),
              (folder, path, flags, mask, status), lookAtPath("statx", path, folder))
BRINDLE_WATCH(int, statfs, (const char *path, struct statfs *status), (path, status), lookAtPath("statfs", path))
BRINDLE_WATCH(int, statfs64, (const char *path, struct statfs64 *status), (path, status), lookAtPath("statfs", path))
BRINDLE_WATCH(int, statvfs, (const char *path, struct statvfs *status), (path, status), lookAtPath("statvfs", path))
BRINDLE_WATCH(int, statvfs64, (const char *path, struct statvfs64 *status), (path, status), lookAtPath("statvfs", path))
BRINDLE_WATCH(int, access, (const char *path, int mode), (path, mode), lookAtPath("access", path))
BRINDLE_WATCH(int, euidaccess, (const char *path, int mode), (path, mode), lookAtPath("euidaccess", path))
BRINDLE_WATCH(int, faccessat, (int folder, const char *path, int mode, int flags), (folder, path, mode, flags),
              lookAtPath("faccessat", path, folder))
BRINDLE_WATCH(ssize_t, readlink, (const char *path, char *text, size_t size), (path, text, size),
              lookAtPath("readlink", path))
BRINDLE_WATCH(ssize_t, readlinkat, (int folder, const char *path, char *text, size_t size), (folder, path, text, size),
              lookAtPath("readlinkat", path, folder))
BRINDLE_WATCH(char *, realpath, (const char *path, char *resolved), (path, resolved), lookAtPath("realpath", path))
BRINDLE_WATCH(DIR *, opendir, (const char *path), (path), lookAtPath("opendir", path))
BRINDLE_WATCH(int, mkdir, (const char *path, mode_t mode), (path, mode), lookAtPath("mkdir", path))
BRINDLE_WATCH(int, rmdir, (const char *path), (path), lookAtPath("rmdir", path))
BRINDLE_WATCH(int, chdir, (const char *path), (path), lookAtPath("chdir", path))
BRINDLE_WATCH(int, unlink, (const char *path), (path), lookAtPath("unlink", path))
BRINDLE_WATCH(int, unlinkat, (int folder, const char *path, int flags), (folder, path, flags),
              lookAtPath("unlinkat", path, folder))
BRINDLE_WATCH(int, rename, (const char *from, const char *to), (from, to), lookAtPath("rename", from))
BRINDLE_WATCH(int, inotify_add_watch, (int watch, const char *path, uint32_t mask), (watch, path, mask),
              lookAtPath("inotify_add_watch", path))

BRINDLE_WATCH(ssize_t, read, (int file, void *bytes, size_t size), (file, bytes, size), lookAtFile("read", file))
BRINDLE_WATCH(ssize_t, write, (int file, const void *bytes, size_t size), (file, bytes, size),
              lookAtFile("write", file))
BRINDLE_WATCH(ssize_t, pread64, (int file, void *bytes, size_t size, off_t offset), (file, bytes, size, offset),
              lookAtFile("pread", file))
BRINDLE_WATCH(ssize_t, pwrite64, (int file, const void *bytes, size_t size, off_t offset), (file, bytes, size, offset),
              lookAtFile("pwrite", file))
BRINDLE_WATCH(int, fsync, (int file), (file), lookAtFile("fsync", file))
BRINDLE_WATCH(int, fdatasync, (int file), (file), lookAtFile("fdatasync", file))
BRINDLE_WATCH(int, syncfs, (int file), (file), lookAtFile("syncfs", file))

BRINDLE_WATCH(int, poll, (pollfd * files, nfds_t count, int milliseconds), (files, count, milliseconds),
              if (milliseconds != 0) lookAtEventWait("poll"))
BRINDLE_WATCH(int, ppoll, (pollfd * files, nfds_t count, const timespec *time, const sigset_t *mask),
              (files, count, time, mask), if (!time || time->tv_sec || time->tv_nsec) lookAtEventWait("ppoll"))
BRINDLE_WATCH(int, select, (int count, fd_set *in, fd_set *out, fd_set *failed, timeval *time),
              (count, in, out, failed, time), if (!time || time->tv_sec || time->tv_usec) lookAtEventWait("select"))
BRINDLE_WATCH(int, epoll_wait, (int file, epoll_event *events, int count, int milliseconds),
              (file, events, count, milliseconds), if (milliseconds != 0) lookAtEventWait("epoll_wait"))
BRINDLE_WATCH(int, nanosleep, (const timespec *time, timespec *left), (time, left),
              lookAtWait("nanosleep", __builtin_return_address(0)))
BRINDLE_WATCH(int, clock_nanosleep, (clockid_t clock, int flags, const timespec *time, timespec *left),
              (clock, flags, time, left), lookAtWait("clock_nanosleep", __builtin_return_address(0)))
BRINDLE_WATCH(int, usleep, (useconds_t microseconds), (microseconds), lookAtWait("usleep", __builtin_return_address(0)))
BRINDLE_WATCH(unsigned, sleep, (unsigned seconds), (seconds), lookAtWait("sleep", __builtin_return_address(0)))
BRINDLE_WATCH(pid_t, waitpid, (pid_t child, int *status, int options), (child, status, options),
              if (!(options & WNOHANG)) lookAtWait("waitpid", __builtin_return_address(0)))
BRINDLE_WATCH(pid_t, wait4, (pid_t child, int *status, int options, struct rusage *usage),
              (child, status, options, usage),
              if (!(options & WNOHANG)) lookAtWait("wait4", __builtin_return_address(0)))
BRINDLE_WATCH(int, waitid, (idtype_t kind, id_t child, siginfo_t *status, int options), (kind, child, status, options),
              if (!(options & WNOHANG)) lookAtWait("waitid", __builtin_return_address(0)))
BRINDLE_WATCH(int, sem_wait, (sem_t * semaphore), (semaphore), lookAtWait("sem_wait", __builtin_return_address(0)))
BRINDLE_WATCH(int, pthread_join, (pthread_t thread, void **result), (thread, result),
              lookAtWait("pthread_join", __builtin_return_address(0)))
BRINDLE_WATCH(int, pthread_cond_clockwait,
              (pthread_cond_t * condition, pthread_mutex_t *mutex, clockid_t clock, const timespec *time),
              (condition, mutex, clock, time), lookAtWait("pthread_cond_clockwait", __builtin_return_address(0)))

// Whether they have to wait or what they wait for has come already.
BRINDLE_WATCH(void, _ZN10QSemaphore7acquireEi, (void *semaphore, int count), (semaphore, count),
              lookAtWait("QSemaphore::acquire", __builtin_return_address(0)))
BRINDLE_WATCH(void, _ZN16QDBusPendingCall15waitForFinishedEv, (void *call), (call),
              lookAtWait("QDBusPendingCall::waitForFinished", __builtin_return_address(0)))
BRINDLE_WATCH(QDBusMessage, _ZNK15QDBusConnection4callERK12QDBusMessageN5QDBus8CallModeEi,
              (const QDBusConnection *bus, const QDBusMessage &message, QDBus::CallMode mode, int milliseconds),
              (bus, message, mode, milliseconds),
              if (mode != QDBus::NoBlock) lookAtWait("QDBusConnection::call", __builtin_return_address(0)))
BRINDLE_WATCH(bool, _ZN7QThread4waitE14QDeadlineTimer, (QThread * thread, QDeadlineTimer time), (thread, time),
              lookAtWait("QThread::wait", __builtin_return_address(0)))
BRINDLE_WATCH(void *, dbus_connection_send_with_reply_and_block,
              (void *connection, void *message, int milliseconds, void *error),
              (connection, message, milliseconds, error),
              lookAtWait("dbus_connection_send_with_reply_and_block", __builtin_return_address(0)))
BRINDLE_WATCH(int, sd_bus_call, (void *bus, void *message, uint64_t microseconds, void *error, void **reply),
              (bus, message, microseconds, error, reply), lookAtWait("sd_bus_call", __builtin_return_address(0)))

// An older version of these stands beside the one that programs are linked to.
#if defined(__x86_64__)
constexpr const char *kConditionVersion = "GLIBC_2.3.2";
#else
constexpr const char *kConditionVersion = nullptr;
#endif
__attribute__((visibility("default"))) int watched_cond_wait(pthread_cond_t *condition,
                                                             pthread_mutex_t *mutex) __asm__("pthread_cond_wait");
int watched_cond_wait(pthread_cond_t *condition, pthread_mutex_t *mutex)
{
    lookAtWait("pthread_cond_wait", __builtin_return_address(0));
    static const auto real =
        brindle::next<int (*)(pthread_cond_t *, pthread_mutex_t *)>("pthread_cond_wait", kConditionVersion);
    return real(condition, mutex);
}
__attribute__((visibility("default"))) int watched_cond_timedwait(
    pthread_cond_t *condition, pthread_mutex_t *mutex, const timespec *time) __asm__("pthread_cond_timedwait");
int watched_cond_timedwait(pthread_cond_t *condition, pthread_mutex_t *mutex, const timespec *time)
{
    lookAtWait("pthread_cond_timedwait", __builtin_return_address(0));
    static const auto real = brindle::next<int (*)(pthread_cond_t *, pthread_mutex_t *, const timespec *)>(
        "pthread_cond_timedwait", kConditionVersion);
    return real(condition, mutex, time);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
