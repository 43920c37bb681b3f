#pragma once

#include <array>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace brindle {

/// While it lives, the signals that end a program (SIGHUP unless it was ignored, SIGINT, SIGTERM) call a function from
/// the event loop. Of several that live, the last one made gets the signals, and passes on those that are to end the
/// program.
class Interruption {
public:
    /// What becomes of the program after the function: it ends by the signal after all, so that whoever waits for it
    /// sees why; or it goes on, and the function has seen to its end.
    enum class Then { endBySignal, goOn };

    explicit Interruption(std::function<void()> function, Then then = Then::endBySignal);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    void interrupt();

    std::function<void()> m_function;
    Then m_then;
    std::array<int, 2> m_pipe{-1, -1};
    std::array<int, 2> m_outerPipe; ///< Of the one that lived before; below 0 where there was none.
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace brindle
