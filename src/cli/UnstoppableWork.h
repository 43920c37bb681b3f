#pragma once

#include "assembly/Interruption.h"

#include <functional>
#include <string>

namespace brindle {

/// Work that must be ended once it has begun. While this lives, the first signal that ends programs says that the work
/// is waited for, and only an interrupt from the keyboard after it ends the program at once: a terminal that is closed
/// hangs up twice. From its begin on, nobody needs to read what the program writes.
class UnstoppableWork {
public:
    /// \a complaint says what can't be stopped. \a stop is tried first, at each signal: true where it could stop the
    /// work after all.
    explicit UnstoppableWork(
        std::string complaint, std::function<bool()> stop = [] { return false; });

private:
    Interruption::Then interrupt(int signalNumber);

    std::string m_complaint;
    std::function<bool()> m_stop;
    bool m_isWaitedFor = false;
    Interruption m_interruption;
};

} // namespace brindle
