#pragma once

#include <functional>
#include <memory>

namespace brindle {

/// While it lives, the signals that end a program (SIGHUP unless it was ignored, SIGINT, SIGTERM) call a function from
/// the event loop. Of several that live, the last one made is called first, and a signal that is to end the program is
/// passed on to the one made before it. They end in any order.
class Interruption {
public:
    /// What becomes of the program after the function: it ends by the signal after all, so that whoever waits for it
    /// sees why; or it goes on, and the function has seen to its end.
    enum class Then { endBySignal, goOn };

    using Function = std::function<Then(int signalNumber)>;

    /// \a function ends no interruption within its own call.
    explicit Interruption(Function function);
    explicit Interruption(std::function<void()> function, Then then = Then::endBySignal);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    class Signals;

    static std::unique_ptr<Signals> s_signals; ///< While any interruption lives.

    Function m_function;
};

} // namespace brindle
