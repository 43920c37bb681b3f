#include "platform/qt/QtScheduler.h"

#include <QTimer>

#include <utility>

namespace brindle {

namespace {

class QtSchedulerTimer : public Scheduler::Timer {
public:
    QtSchedulerTimer(Scheduler::Duration interval, bool isSingleShot, std::function<void()> callback)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setSingleShot(isSingleShot);
        QObject::connect(&m_timer, &QTimer::timeout, [callback = std::move(callback)] {
            const auto copy = callback; // it may end the timer, and with it the callback itself
            copy();
        });
        // Never early: what is left of a millisecond counts as a whole one.
        m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(interval));
    }

private:
    QTimer m_timer;
};

} // namespace

Scheduler::Date QtScheduler::date() const
{
    return std::chrono::system_clock::now();
}

std::unique_ptr<Scheduler::Timer> QtScheduler::after(Duration delay, std::function<void()> callback)
{
    return std::make_unique<QtSchedulerTimer>(delay, true, std::move(callback));
}

std::unique_ptr<Scheduler::Timer> QtScheduler::repeat(Duration interval, std::function<void()> callback)
{
    return std::make_unique<QtSchedulerTimer>(interval, false, std::move(callback));
}

} // namespace brindle
