#pragma once

#include "assembly/Interruption.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace brindle {

/// Work that must be ended once it has begun. While this lives, the first interruption of the program says that the
/// work is waited for, and the next one ends the program at once.
class UnstoppableWork {
public:
    /// \a complaint says what can't be stopped. \a stop is tried first, at each interruption: true where it could stop
    /// the work after all.
    explicit UnstoppableWork(
        std::string complaint, std::function<bool()> stop = [] { return false; });

private:
    void interrupt();

    std::string m_complaint;
    std::function<bool()> m_stop;
    QObject m_receiver; ///< What is called back here is called no more after the end.
    std::optional<Interruption> m_interruption;
};

} // namespace brindle
