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
    for (const int signalNumber : kSignals)
        std::signal(signalNumber, handler);
}

} // namespace

Interruption::Interruption(std::function<void()> beforeTheEnd) : m_beforeTheEnd(std::move(beforeTheEnd))
{
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw Error::fromErrno(errno, "A pipe can't be made");
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { end(); });
    setHandlers(noteSignal);
}

Interruption::~Interruption()
{
    setHandlers(SIG_DFL);
    m_notifier.reset();
    for (int &descriptor : signalPipe)
        close(std::exchange(descriptor, -1));
}

void Interruption::end()
{
    char signalNumber = 0;
    if (read(signalPipe[0], &signalNumber, 1) != 1)
        return;
    m_beforeTheEnd();
    setHandlers(SIG_DFL);
    std::raise(signalNumber);
}

} // namespace brindle
