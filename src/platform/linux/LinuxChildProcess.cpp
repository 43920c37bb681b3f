#include "platform/linux/LinuxChildProcess.h"

#include "platform/linux/FileDescriptor.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brindle {

namespace {

// glibc 2.36 declares these two without C linkage, and older ones not at all.
int openPidfd(pid_t process)
{
    return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

void sendSignal(const FileDescriptor &pidfd, int signalNumber)
{
    syscall(SYS_pidfd_send_signal, pidfd.value(), signalNumber, nullptr, 0);
}

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw Error::fromErrno(errno, "A pipe can't be made");
    Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    // A refusal leaves the usual size. Reading comes after the child's end: what is not there then never comes, and a
    // grandchild that keeps the pipe open must not hold the reader up.
    fcntl(pipe.readEnd.value(), F_SETPIPE_SZ, LinuxChildProcessLauncher::kPipeBytes);
    fcntl(pipe.readEnd.value(), F_SETFL, O_NONBLOCK);
    return pipe;
}

std::string readAll(const FileDescriptor &file)
{
    std::string text;
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t count = read(file.value(), buffer.data(), buffer.size());
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno == EAGAIN)
            return text;
        else if (errno != EINTR)
            throw Error::fromErrno(errno, "The output can't be read");
    }
}

/// The file actions and attributes of posix_spawn: outputs to the pipes, no other descriptor of ours, and none of our
/// signal settings.
class SpawnSettings {
public:
    SpawnSettings(const Pipe &output, const Pipe &error)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, output.writeEnd.value(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, error.writeEnd.value(), STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);

        sigset_t signals;
        posix_spawnattr_init(&m_attributes);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t *actions() const { return &m_actions; }
    [[nodiscard]] const posix_spawnattr_t *attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

pid_t spawnChild(ChildProcessCommand &command, const SpawnSettings &settings)
{
    std::vector<char *> arguments{command.path.data()};
    for (std::string &argument : command.arguments)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);

    std::vector<std::string> entries;
    std::vector<char *> environment;
    if (command.environment) {
        for (const auto &[name, value] : *command.environment)
            entries.push_back(fmt::format("{}={}", name, value));
        for (std::string &entry : entries)
            environment.push_back(entry.data());
        environment.push_back(nullptr);
    }

    pid_t process = 0;
    const int error = posix_spawn(&process, command.path.c_str(), settings.actions(), settings.attributes(),
                                  arguments.data(), command.environment ? environment.data() : environ);
    if (error != 0)
        throw Error::fromErrno(error, command.path + " can't be started");
    return process;
}

/// A child from its start to its end. It keeps itself alive until it has reported, whoever drops the handle.
class RunningChild : public std::enable_shared_from_this<RunningChild> {
public:
    RunningChild(ChildProcessCommand command, ChildProcessLauncher::Ended ended) : m_ended(std::move(ended))
    {
        Pipe output = makePipe();
        Pipe error = makePipe();
        m_process = spawnChild(command, SpawnSettings(output, error));
        m_output = std::move(output.readEnd);
        m_error = std::move(error.readEnd);
        m_pidfd = FileDescriptor(openPidfd(m_process));
        if (!m_pidfd)
            giveUp(errno);
    }

    void watch()
    {
        m_notifier = std::make_unique<QSocketNotifier>(m_pidfd.value(), QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated,
                         [self = shared_from_this()] { self->finish(); });
    }

    [[nodiscard]] bool isRunning() const { return static_cast<bool>(m_pidfd); }

    void terminate()
    {
        if (isRunning())
            sendSignal(m_pidfd, SIGTERM);
    }

private:
    /// Without a descriptor nobody would see the child's end: it is ended at once and leaves no zombie.
    [[noreturn]] void giveUp(int errorNumber)
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        throw Error::fromErrno(errorNumber, "The tool can't be watched");
    }

    void finish()
    {
        siginfo_t info{};
        const bool isReaped = waitid(P_PIDFD, static_cast<id_t>(m_pidfd.value()), &info, WEXITED | WNOHANG) == 0;
        if (isReaped && info.si_pid == 0)
            return; // still running
        const int waitError = isReaped ? 0 : errno;
        // The connection holds what may be the last reference; it goes when the event loop has left the notifier.
        const auto self = shared_from_this();
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
        m_pidfd = FileDescriptor();

        ChildProcessEnd end{.terminationStatus = info.si_status};
        try {
            if (waitError != 0)
                throw Error::fromErrno(waitError, "The tool's end can't be seen");
            end.standardOutput = readAll(m_output);
            end.standardError = readAll(m_error);
        } catch (const Error &error) {
            end.failure = error;
        }
        m_output = FileDescriptor();
        m_error = FileDescriptor();
        std::exchange(m_ended, nullptr)(std::move(end));
    }

    ChildProcessLauncher::Ended m_ended;
    pid_t m_process = 0;
    FileDescriptor m_pidfd;
    FileDescriptor m_output;
    FileDescriptor m_error;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

class LinuxChildProcess : public ChildProcess {
public:
    explicit LinuxChildProcess(std::shared_ptr<RunningChild> child) : m_child(std::move(child)) {}

    [[nodiscard]] bool isRunning() const override { return m_child && m_child->isRunning(); }
    void terminate() override
    {
        if (m_child)
            m_child->terminate();
    }

private:
    std::shared_ptr<RunningChild> m_child; // null where the child could not be started
};

} // namespace

std::unique_ptr<ChildProcess> LinuxChildProcessLauncher::launch(ChildProcessCommand command, Ended ended)
{
    std::shared_ptr<RunningChild> child;
    try {
        child = std::make_shared<RunningChild>(std::move(command), ended);
        child->watch();
    } catch (const Error &error) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [ended = std::move(ended), error] { ended({.failure = error}); },
            Qt::QueuedConnection);
    }
    return std::make_unique<LinuxChildProcess>(std::move(child));
}

} // namespace brindle
