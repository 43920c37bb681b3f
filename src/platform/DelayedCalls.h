#pragma once

#include "platform/Scheduler.h"

#include <functional>
#include <list>
#include <memory>
#include <utility>

namespace brindle {

/// Calls that come after a delay and that nothing withdraws but the end of their owner.
class DelayedCalls {
public:
    explicit DelayedCalls(Scheduler &scheduler) : m_scheduler(scheduler) {} ///< Outlives the calls.

    void after(Scheduler::Duration delay, std::function<void()> call)
    {
        const auto place = m_timers.emplace(m_timers.end());
        *place = m_scheduler.after(delay, [this, place, call = std::move(call)] {
            m_timers.erase(place);
            call();
        });
    }

private:
    Scheduler &m_scheduler;
    std::list<std::unique_ptr<Scheduler::Timer>> m_timers;
};

} // namespace brindle
