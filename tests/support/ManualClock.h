#pragma once

#include "platform/Scheduler.h"

#include <cstddef>

namespace brindle {

/// Runs the event loop until nothing is left to be done.
void drainEventLoop();

/// A clock that stands still until a test moves it, so that a rule of time is tested in no time, exactly at its border.
class ManualClock : public Scheduler {
public:
    ManualClock();

    /// Begins at midnight of 1 January 2024 (UTC) and moves with advance() alone.
    [[nodiscard]] Date date() const override;
    [[nodiscard]] std::unique_ptr<Timer> after(Duration delay, std::function<void()> callback) override;
    /// \a interval above zero: the clock would not get past the first moment.
    [[nodiscard]] std::unique_ptr<Timer> repeat(Duration interval, std::function<void()> callback) override;

    /// Moves the clock on by \a duration and fires what falls due by then (the end included), in the order of the
    /// deadlines and of equal ones in that of the calls. date() is the deadline meanwhile. Before the first and after
    /// each the event loop does all that it has to do.
    void advance(Duration duration);

    /// Delays and timers that are under way.
    [[nodiscard]] std::size_t pendingTimers() const;

private:
    struct State;
    class Pending;

    [[nodiscard]] std::unique_ptr<Timer> add(Duration delay, Duration interval, std::function<void()> callback);

    std::shared_ptr<State> m_state; ///< A timer may outlive the clock.
};

} // namespace brindle
