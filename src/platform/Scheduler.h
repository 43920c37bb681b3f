#pragma once

#include "base/CancellationToken.h"

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>

namespace brindle {

/// The clock: dates, delays and timers. Tests put a clock in its place that is moved by hand. Main thread only.
class Scheduler {
public:
    using Date = std::chrono::system_clock::time_point;
    using Duration = std::chrono::nanoseconds;

    /// A delay or timer that is under way; its end cancels it.
    class Timer {
    public:
        virtual ~Timer() = default;
    };

    virtual ~Scheduler() = default;

    /// The wall clock.
    [[nodiscard]] virtual Date date() const = 0;

    /// Calls \a callback once, \a delay from now, from the event loop.
    [[nodiscard]] virtual std::unique_ptr<Timer> after(Duration delay, std::function<void()> callback) = 0;

    /// Calls \a callback every \a interval, which is above zero, from now on, from the event loop.
    [[nodiscard]] virtual std::unique_ptr<Timer> repeat(Duration interval, std::function<void()> callback) = 0;

    /// Returns \a duration from now, or at the cancellation of \a token; never throws for either.
    QCoro::Task<> sleep(Duration duration, CancellationToken token = {});
};

} // namespace brindle
