#include "cli/Interruption.h"

#include "base/Error.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGTERM};

// A signal handler may do little more than write a byte.
std::array<int, 2> signalPipe{-1, -1};

void noteSignal(int signalNumber)
{
    const auto byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

void setHandlers(void (*handler)(int))
{
    for (const int signalNumber : kSignals) {
        const auto before = std::signal(signalNumber, handler);
        if (signalNumber == SIGHUP && before == SIG_IGN) // nohup(1) wants the program to outlive its terminal
            std::signal(signalNumber, SIG_IGN);
    }
}

} // namespace

Interruption::Interruption(std::function<void()> function, Then then)
    : m_function(std::move(function)),
      m_then(then),
      m_outerPipe(signalPipe)
{
    if (pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw Error::fromErrno(errno, "A pipe can't be made");
    signalPipe = m_pipe;
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { interrupt(); });
    setHandlers(noteSignal);
}

Interruption::~Interruption()
{
    if (m_outerPipe[0] < 0)
        setHandlers(SIG_DFL);
    m_notifier.reset();
    signalPipe = m_outerPipe;
    for (const int descriptor : m_pipe)
        close(descriptor);
}

void Interruption::interrupt()
{
    char signalNumber = 0;
    if (read(m_pipe[0], &signalNumber, 1) != 1)
        return;
    m_function();
    if (m_then == Then::goOn)
        return;
    if (m_outerPipe[1] >= 0) {
        [[maybe_unused]] const ssize_t written = write(m_outerPipe[1], &signalNumber, 1);
        return;
    }
    setHandlers(SIG_DFL);
    std::raise(signalNumber);
}

} // namespace brindle
