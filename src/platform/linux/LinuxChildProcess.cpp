#include "platform/linux/LinuxChildProcess.h"

#include "platform/linux/InputPipe.h"
#include "platform/linux/OutputPipe.h"
#include "platform/linux/PosixSpawn.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>
#include <QSocketNotifier>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <utility>

#include <sys/wait.h>

extern "C" {
#include <sys/pidfd.h> // does not say so itself before glibc 2.37
}

namespace brindle {

namespace {

// How often the end is looked for where the kernel has no descriptor left, or none at all, that tells it.
constexpr std::chrono::milliseconds kEndPollInterval{20};

ChildProcessEnd failed(Error error)
{
    ChildProcessEnd end;
    end.failure = std::move(error);
    return end;
}

/// A started child until its end is reported. The application object owns it, so that a dropped handle ends nothing.
class RunningChild : public QObject {
public:
    RunningChild(pid_t pid, FileDescriptor standardOutput, FileDescriptor standardError,
                 ChildProcessLauncher::Ended ended);

    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    void terminate() const;

protected:
    void timerEvent(QTimerEvent *) override { reportIfEnded(); }

private:
    void reportIfEnded();
    [[nodiscard]] ChildProcessEnd takeEnd(int terminationStatus);

    pid_t m_pid; ///< Nobody else's before this child has been waited for.
    FileDescriptor m_pidfd;
    std::unique_ptr<QSocketNotifier> m_endNotifier;
    FileDescriptor m_standardOutput;
    FileDescriptor m_standardError;
    ChildProcessLauncher::Ended m_ended;
    bool m_isRunning = true;
};

RunningChild::RunningChild(pid_t pid, FileDescriptor standardOutput, FileDescriptor standardError,
                           ChildProcessLauncher::Ended ended)
    : QObject(QCoreApplication::instance()),
      m_pid(pid),
      m_pidfd(pidfd_open(pid, 0)),
      m_standardOutput(std::move(standardOutput)),
      m_standardError(std::move(standardError)),
      m_ended(std::move(ended))
{
    if (!m_pidfd) {
        startTimer(kEndPollInterval);
        return;
    }
    m_endNotifier = std::make_unique<QSocketNotifier>(m_pidfd.value(), QSocketNotifier::Read);
    connect(m_endNotifier.get(), &QSocketNotifier::activated, this, [this] { reportIfEnded(); });
}

void RunningChild::terminate() const
{
    // A child that has stopped, as one in the background does that reads the terminal, heeds nothing until it goes on.
    for (const int signal : {SIGTERM, SIGCONT}) {
        if (m_pidfd)
            pidfd_send_signal(m_pidfd.value(), signal, nullptr, 0);
        else
            kill(m_pid, signal);
    }
}

void RunningChild::reportIfEnded()
{
    siginfo_t status{};
    const bool isKnown = m_isRunning && waitid(P_PID, static_cast<id_t>(m_pid), &status, WEXITED | WNOHANG) == 0;
    if (!m_isRunning || (isKnown && status.si_pid == 0))
        return;
    ChildProcessEnd end = isKnown ? takeEnd(status.si_status) : failed(Error::fromErrno(errno, "waitid"));

    m_isRunning = false;
    if (m_endNotifier)
        m_endNotifier->setEnabled(false);
    deleteLater();
    const auto ended = std::move(m_ended);
    ended(std::move(end));
}

ChildProcessEnd RunningChild::takeEnd(int terminationStatus)
{
    try {
        ChildProcessEnd end;
        end.terminationStatus = terminationStatus;
        end.standardOutput = OutputPipe::contents(std::move(m_standardOutput));
        end.standardError = OutputPipe::contents(std::move(m_standardError));
        return end;
    } catch (const Error &error) {
        return failed(error);
    }
}

class LinuxChildProcess : public ChildProcess {
public:
    LinuxChildProcess() = default; ///< One that could not be started.
    explicit LinuxChildProcess(RunningChild *child) : m_child(child) {}

    [[nodiscard]] bool isRunning() const override { return m_child && m_child->isRunning(); }
    void terminate() override
    {
        if (isRunning())
            m_child->terminate();
    }

private:
    QPointer<RunningChild> m_child;
};

struct StartedChild {
    pid_t pid = 0;
    FileDescriptor standardOutput;
    FileDescriptor standardError;
};

// The child's ends are closed again when it returns: their room is what the descriptor of the child's end needs, so
// that a process short of descriptors finds out before the child is started.
StartedChild start(const ChildProcessCommand &command)
{
    OutputPipe standardOutput = OutputPipe::open();
    OutputPipe standardError = OutputPipe::open();
    const FileDescriptor standardInput =
        command.standardInput ? inputPipeHolding(command.standardInput->view()) : FileDescriptor();
    const pid_t pid = posixSpawn(command, {standardInput, standardOutput.writeEnd, standardError.writeEnd});
    return {pid, std::move(standardOutput.readEnd), std::move(standardError.readEnd)};
}

void reportFailure(Error error, ChildProcessLauncher::Ended ended)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [error = std::move(error), ended = std::move(ended)] { ended(failed(error)); },
        Qt::QueuedConnection);
}

} // namespace

LinuxChildProcessLauncher::LinuxChildProcessLauncher()
{
    // Whoever starts a process may leave SIGCHLD ignored: the kernel would then throw every exit status away.
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        signal(SIGCHLD, SIG_DFL);
}

std::unique_ptr<ChildProcess> LinuxChildProcessLauncher::launch(ChildProcessCommand command, Ended ended)
{
    StartedChild child;
    try {
        child = start(command);
    } catch (Error &error) {
        reportFailure(std::move(error), std::move(ended));
        return std::make_unique<LinuxChildProcess>();
    }
    return std::make_unique<LinuxChildProcess>(
        new RunningChild(child.pid, std::move(child.standardOutput), std::move(child.standardError), std::move(ended)));
}

} // namespace brindle
