#include "assembly/Interruption.h"

#include "base/Error.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <ranges>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGTERM};

// A signal handler may do little more than write a byte.
int signalPipe = -1;

void noteSignal(int signalNumber)
{
    const auto byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = write(signalPipe, &byte, 1);
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

/// Takes the signals of the process and hands them to those that live.
class Interruption::Signals {
public:
    Signals()
    {
        if (pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            throw Error::fromErrno(errno, "A pipe can't be made");
        signalPipe = m_pipe[1];
        m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { interrupt(); });
        setHandlers(noteSignal);
    }

    ~Signals()
    {
        setHandlers(SIG_DFL);
        if (const int unheard = nextSignal())
            std::raise(unheard);
        m_notifier.reset();
        for (const int descriptor : m_pipe)
            close(descriptor);
    }

    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;

    std::vector<Interruption *> living; ///< The last one made is the last.

private:
    /// The signal that came first of those not yet dealt with; 0 where there is none.
    [[nodiscard]] int nextSignal() const
    {
        char signalNumber = 0;
        return read(m_pipe[0], &signalNumber, 1) == 1 ? signalNumber : 0;
    }

    void interrupt() const
    {
        const int signalNumber = nextSignal();
        if (signalNumber == 0)
            return;
        for (const Interruption *interruption : living | std::views::reverse) {
            if (interruption->m_function(signalNumber) == Then::goOn)
                return;
        }
        setHandlers(SIG_DFL);
        std::raise(signalNumber);
    }

    std::array<int, 2> m_pipe{-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

std::unique_ptr<Interruption::Signals> Interruption::s_signals;

Interruption::Interruption(std::function<void()> function, Then then)
    : Interruption([function = std::move(function), then](int) {
          function();
          return then;
      })
{
}

Interruption::Interruption(Function function) : m_function(std::move(function))
{
    if (!s_signals)
        s_signals = std::make_unique<Signals>();
    s_signals->living.push_back(this);
}

Interruption::~Interruption()
{
    std::erase(s_signals->living, this);
    if (s_signals->living.empty())
        s_signals.reset();
}

} // namespace brindle
