#pragma once

#include "platform/Scheduler.h"

#include <cstdint>
#include <map>

namespace brindle {

/// A clock that stands still until it is moved by hand: rules of time are tested in no time and exactly at their
/// border.
class ManualClock : public Scheduler {
public:
    [[nodiscard]] Date date() const override { return m_now; }
    [[nodiscard]] std::unique_ptr<Timer> after(Duration delay, std::function<void()> callback) override;
    [[nodiscard]] std::unique_ptr<Timer> repeat(Duration interval, std::function<void()> callback) override;

    /// Moves the clock on, calls what falls due on the way in the order of its time, and lets the event loop finish
    /// what that brings before each next call and at the end.
    void advance(Duration duration);

    /// Delays and timers that are under way.
    [[nodiscard]] std::size_t timerCount() const { return m_timers.size(); }

private:
    class Handle;
    struct Entry {
        std::uint64_t id;
        Duration interval; ///< Zero for a single call.
        std::function<void()> callback;
    };

    std::unique_ptr<Timer> add(Duration delay, Duration interval, std::function<void()> callback);
    void remove(std::uint64_t id);

    Date m_now{std::chrono::hours(24 * 365 * 50)};
    std::uint64_t m_lastId = 0;
    std::multimap<Date, Entry> m_timers; // equal times in the order of their making
};

} // namespace brindle
