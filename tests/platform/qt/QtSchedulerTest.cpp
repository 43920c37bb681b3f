#include "platform/qt/QtScheduler.h"

#include "base/BlockOn.h"
#include "base/Completion.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <memory>

namespace brindle {
namespace {

using namespace std::chrono_literals;

// The delays are as short as timers can be: what is tested is what fires, in which order, and never how long it takes.

QCoro::Task<> await(Completion<bool> completion)
{
    co_await completion;
}

void runUntil(const Completion<bool> &completion)
{
    blockOn(await(completion), kPatience);
}

TEST(QtScheduler, FiresFromTheEventLoopAndNotInsideTheCall)
{
    QtScheduler scheduler;
    const Completion<bool> fired;

    const auto timer = scheduler.after(0s, [&] { fired.complete(true); });
    const bool hasFiredInside = fired.isComplete();
    runUntil(fired);

    EXPECT_FALSE(hasFiredInside);
}

TEST(QtScheduler, FiresNeverEarly)
{
    QtScheduler scheduler;
    const Completion<bool> fired;
    std::chrono::steady_clock::time_point firedAt;

    const auto start = std::chrono::steady_clock::now();
    const auto timer = scheduler.after(1900us, [&] {
        firedAt = std::chrono::steady_clock::now();
        fired.complete(true);
    });
    runUntil(fired);

    EXPECT_GE(firedAt - start, 1900us);
}

TEST(QtScheduler, NeverFiresATimerWhoseHandleIsGone)
{
    QtScheduler scheduler;
    const Completion<bool> laterFired;
    bool hasFired = false;
    auto dropped = scheduler.after(1ms, [&] { hasFired = true; });
    const auto later = scheduler.after(3ms, [&] { laterFired.complete(true); });

    dropped.reset();
    runUntil(laterFired);

    EXPECT_FALSE(hasFired);
}

TEST(QtScheduler, RepeatsUntilACallbackDropsItsOwnTimer)
{
    QtScheduler scheduler;
    const Completion<bool> laterFired;
    int count = 0;
    std::unique_ptr<Scheduler::Timer> later;
    std::unique_ptr<Scheduler::Timer> timer;
    timer = scheduler.repeat(1ms, [&] {
        if (++count < 3)
            return;
        timer.reset();
        later = scheduler.after(3ms, [&] { laterFired.complete(true); });
    });

    runUntil(laterFired);

    EXPECT_EQ(count, 3);
}

TEST(QtScheduler, LetsACallbackDropItsOwnDelay)
{
    QtScheduler scheduler;
    const Completion<bool> fired;
    std::unique_ptr<Scheduler::Timer> timer;
    timer = scheduler.after(1ms, [&] {
        timer.reset();
        fired.complete(true);
    });

    runUntil(fired);

    EXPECT_TRUE(fired.isComplete());
}

struct LongDelay {
    const char *name;
    Scheduler::Duration delay;
};

class QtSchedulerWaits : public testing::TestWithParam<LongDelay> {};

TEST_P(QtSchedulerWaits, LongerThanAnIntCountsMilliseconds)
{
    QtScheduler scheduler;
    const Completion<bool> shortFired;
    bool hasLongFired = false;

    const auto longTimer = scheduler.after(GetParam().delay, [&] { hasLongFired = true; });
    const auto shortTimer = scheduler.after(5ms, [&] { shortFired.complete(true); });
    runUntil(shortFired);

    EXPECT_FALSE(hasLongFired);
}

INSTANTIATE_TEST_SUITE_P(Delays, QtSchedulerWaits,
                         testing::Values(LongDelay{"WrapsToOneMillisecond", (1LL << 32) * 1ms + 1ms},
                                         LongDelay{"ForEver", Scheduler::Duration::max()}),
                         [](const auto &row) { return row.param.name; });

TEST(QtScheduler, TellsTheDateOfTheMachine)
{
    const QtScheduler scheduler;

    const auto before = std::chrono::system_clock::now();
    const auto date = scheduler.date();
    const auto after = std::chrono::system_clock::now();

    EXPECT_GE(date, before);
    EXPECT_LE(date, after);
}

} // namespace
} // namespace brindle
