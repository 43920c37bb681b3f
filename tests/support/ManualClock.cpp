#include "support/ManualClock.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

void drainEventLoop()
{
    // Until a turn brings nothing more: what runs may queue more work for the next turn.
    for (int turn = 0; turn < 32; ++turn)
        QCoreApplication::processEvents();
}

} // namespace

class ManualClock::Handle : public Scheduler::Timer {
public:
    Handle(ManualClock &clock, std::uint64_t id) : m_clock(clock), m_id(id) {}
    ~Handle() override { m_clock.remove(m_id); }

private:
    ManualClock &m_clock;
    std::uint64_t m_id;
};

std::unique_ptr<Scheduler::Timer> ManualClock::after(Duration delay, std::function<void()> callback)
{
    return add(delay, Duration::zero(), std::move(callback));
}

std::unique_ptr<Scheduler::Timer> ManualClock::repeat(Duration interval, std::function<void()> callback)
{
    return add(interval, interval, std::move(callback));
}

void ManualClock::advance(Duration duration)
{
    drainEventLoop();
    const Date end = m_now + duration;
    while (!m_timers.empty() && m_timers.begin()->first <= end) {
        auto due = m_timers.extract(m_timers.begin());
        m_now = due.key();
        const auto callback = due.mapped().callback;
        if (due.mapped().interval > Duration::zero()) {
            due.key() += due.mapped().interval;
            m_timers.insert(std::move(due));
        }
        callback();
        drainEventLoop();
    }
    m_now = end;
}

std::unique_ptr<Scheduler::Timer> ManualClock::add(Duration delay, Duration interval, std::function<void()> callback)
{
    const std::uint64_t id = ++m_lastId;
    m_timers.emplace(m_now + delay, Entry{id, interval, std::move(callback)});
    return std::make_unique<Handle>(*this, id);
}

void ManualClock::remove(std::uint64_t id)
{
    const auto found =
        std::find_if(m_timers.begin(), m_timers.end(), [id](const auto &timer) { return timer.second.id == id; });
    if (found != m_timers.end())
        m_timers.erase(found);
}

} // namespace brindle
