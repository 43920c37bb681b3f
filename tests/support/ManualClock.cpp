#include "support/ManualClock.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QThreadPool>

#include <algorithm>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <utility>

namespace brindle {

namespace {

constexpr std::chrono::sys_days kFirstDate = std::chrono::year{2024} / std::chrono::January / 1;

struct Entry {
    Scheduler::Duration deadline;
    Scheduler::Duration interval; ///< Zero: fires once.
    std::function<void()> callback;
};

} // namespace

void drainEventLoop()
{
    QAbstractEventDispatcher *const dispatcher = QAbstractEventDispatcher::instance();
    do {
        while (dispatcher->processEvents(QEventLoop::AllEvents)) {
        }
        QThreadPool::globalInstance()->waitForDone(); // what a task has handed to another thread
    } while (dispatcher->processEvents(QEventLoop::AllEvents));
}

struct ManualClock::State {
    Duration passed{};
    std::uint64_t lastId = 0;
    std::map<std::uint64_t, Entry> entries; // the identifiers rise, so that the order is that of the calls

    /// Fires the first that falls due by \a end; false where none does.
    bool fireNext(Duration end);
};

class ManualClock::Pending : public Scheduler::Timer {
public:
    Pending(std::weak_ptr<State> state, std::uint64_t id) : m_state(std::move(state)), m_id(id) {}
    ~Pending() override
    {
        if (const auto state = m_state.lock())
            state->entries.erase(m_id);
    }

private:
    std::weak_ptr<State> m_state;
    std::uint64_t m_id;
};

bool ManualClock::State::fireNext(Duration end)
{
    const auto next = std::ranges::min_element(entries, {}, [](const auto &entry) { return entry.second.deadline; });
    if (next == entries.end() || next->second.deadline > end)
        return false;
    Entry &entry = next->second;
    passed = std::max(passed, entry.deadline);
    const auto callback = entry.callback; // it may cancel its own timer
    if (entry.interval > Duration::zero())
        entry.deadline += entry.interval;
    else
        entries.erase(next);
    callback();
    return true;
}

ManualClock::ManualClock() : m_state(std::make_shared<State>()) {}

Scheduler::Date ManualClock::date() const
{
    return kFirstDate + std::chrono::duration_cast<Date::duration>(m_state->passed);
}

std::unique_ptr<Scheduler::Timer> ManualClock::after(Duration delay, std::function<void()> callback)
{
    return add(delay, Duration::zero(), std::move(callback));
}

std::unique_ptr<Scheduler::Timer> ManualClock::repeat(Duration interval, std::function<void()> callback)
{
    if (interval <= Duration::zero())
        throw std::invalid_argument("A timer cannot repeat without time between.");
    return add(interval, interval, std::move(callback));
}

std::unique_ptr<Scheduler::Timer> ManualClock::add(Duration delay, Duration interval, std::function<void()> callback)
{
    const std::uint64_t id = ++m_state->lastId;
    m_state->entries.emplace(id, Entry{m_state->passed + delay, interval, std::move(callback)});
    return std::make_unique<Pending>(m_state, id);
}

void ManualClock::advance(Duration duration)
{
    const Duration end = m_state->passed + duration;
    drainEventLoop();
    while (m_state->fireNext(end))
        drainEventLoop();
    m_state->passed = end;
}

std::size_t ManualClock::pendingTimers() const
{
    return m_state->entries.size();
}

} // namespace brindle
