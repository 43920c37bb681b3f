#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace brindle {

/// While it lives, the signals that end a program (SIGHUP, SIGINT, SIGTERM) call a function from the event loop first;
/// then the program ends by the signal after all, so that whoever waits for it sees why. One at a time.
class Interruption {
public:
    explicit Interruption(std::function<void()> beforeTheEnd);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    void end();

    std::function<void()> m_beforeTheEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace brindle
