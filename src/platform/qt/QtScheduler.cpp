#include "platform/qt/QtScheduler.h"

#include <QTimer>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace brindle {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// As good as for ever, and far from the end of the clock's range.
constexpr Scheduler::Duration kLongestDelay = 24h * 365 * 100;

// QTimer counts in an int, which overflows after 24 days.
constexpr std::chrono::milliseconds kLongestStep{std::numeric_limits<int>::max()};

class QtTimer : public Scheduler::Timer {
public:
    QtTimer(Scheduler::Duration delay, std::optional<Scheduler::Duration> interval, std::function<void()> callback)
        : m_deadline(Clock::now() + std::clamp(delay, Scheduler::Duration::zero(), kLongestDelay)),
          m_interval(interval),
          m_callback(std::move(callback))
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { fireIfDue(); });
        arm();
    }

private:
    void arm()
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
        m_timer.start(std::clamp(left, 0ms, kLongestStep));
    }

    void fireIfDue()
    {
        const Clock::time_point now = Clock::now();
        if (now < m_deadline)
            return arm();
        const auto callback = m_callback; // it may drop this timer
        if (m_interval) {
            m_deadline += *m_interval;
            if (m_deadline < now) // the machine slept, or the event loop stood still: missed turns are left out
                m_deadline = now + *m_interval;
            arm();
        }
        callback();
    }

    Clock::time_point m_deadline;
    std::optional<Scheduler::Duration> m_interval;
    std::function<void()> m_callback;
    QTimer m_timer;
};

} // namespace

Scheduler::Date QtScheduler::date() const
{
    return std::chrono::system_clock::now();
}

std::unique_ptr<Scheduler::Timer> QtScheduler::after(Duration delay, std::function<void()> callback)
{
    return std::make_unique<QtTimer>(delay, std::nullopt, std::move(callback));
}

std::unique_ptr<Scheduler::Timer> QtScheduler::repeat(Duration interval, std::function<void()> callback)
{
    return std::make_unique<QtTimer>(interval, interval, std::move(callback));
}

} // namespace brindle
