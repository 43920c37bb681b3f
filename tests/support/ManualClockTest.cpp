#include "support/ManualClock.h"
#include "support/Patience.h"

#include "base/BlockOn.h"
#include "base/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTimer>

#include <memory>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

QCoro::Task<> sleepThenNote(ManualClock *clock, Scheduler::Duration duration, CancellationToken token,
                            std::vector<Scheduler::Date> *wokenAt)
{
    auto sleep = clock->sleep(duration, token);
    co_await sleep;
    wokenAt->push_back(clock->date());
}

TEST(ManualClock, StandsStillUntilItIsMoved)
{
    ManualClock clock;
    const auto start = clock.date();

    clock.advance(1500ms);

    EXPECT_EQ(clock.date() - start, 1500ms);
}

TEST(ManualClock, FiresInTheOrderOfTheDeadlines)
{
    ManualClock clock;
    std::vector<std::string> fired;
    const auto late = clock.after(3s, [&] { fired.emplace_back("late"); });
    const auto early = clock.after(1s, [&] { fired.emplace_back("early"); });
    const auto alsoEarly = clock.after(1s, [&] { fired.emplace_back("also early"); });

    clock.advance(5s);

    EXPECT_THAT(fired, ElementsAre("early", "also early", "late"));
}

TEST(ManualClock, FiresAtTheBorderAndNotANanosecondBefore)
{
    ManualClock clock;
    bool hasFired = false;
    const auto timer = clock.after(30s, [&] { hasFired = true; });

    clock.advance(30s - 1ns);
    const bool hadFiredBefore = hasFired;
    clock.advance(1ns);

    EXPECT_FALSE(hadFiredBefore);
    EXPECT_TRUE(hasFired);
}

TEST(ManualClock, ShowsTheDeadlineAsItsDateWhileItFires)
{
    ManualClock clock;
    const auto start = clock.date();
    Scheduler::Date seen;
    const auto timer = clock.after(2s, [&] { seen = clock.date(); });

    clock.advance(10s);

    EXPECT_EQ(seen - start, 2s);
    EXPECT_EQ(clock.date() - start, 10s);
}

TEST(ManualClock, FiresWhatACallbackSchedulesWithinTheSameMove)
{
    ManualClock clock;
    const auto start = clock.date();
    Scheduler::Date seen;
    std::unique_ptr<Scheduler::Timer> second;
    const auto first = clock.after(2s, [&] { second = clock.after(3s, [&] { seen = clock.date(); }); });

    clock.advance(5s);

    EXPECT_EQ(seen - start, 5s);
}

TEST(ManualClock, DropsATimerWhoseHandleIsGone)
{
    ManualClock clock;
    bool hasFired = false;
    auto timer = clock.after(1s, [&] { hasFired = true; });

    timer.reset();
    clock.advance(2s);

    EXPECT_FALSE(hasFired);
}

TEST(ManualClock, LetsACallbackCancelAnotherTimerOfTheSameMoment)
{
    ManualClock clock;
    bool hasFired = false;
    std::unique_ptr<Scheduler::Timer> victim;
    const auto timer = clock.after(1s, [&] { victim.reset(); });
    victim = clock.after(1s, [&] { hasFired = true; });

    clock.advance(2s);

    EXPECT_FALSE(hasFired);
}

TEST(ManualClock, RepeatsUntilACallbackCancelsItsOwnTimer)
{
    ManualClock clock;
    const auto start = clock.date();
    std::vector<Scheduler::Duration> firedAt;
    std::unique_ptr<Scheduler::Timer> timer;
    timer = clock.repeat(500ms, [&] {
        firedAt.emplace_back(clock.date() - start);
        if (firedAt.size() == 3)
            timer.reset();
    });

    clock.advance(10s);

    EXPECT_THAT(firedAt, ElementsAre(500ms, 1000ms, 1500ms));
}

TEST(ManualClock, CountsThePendingTimers)
{
    ManualClock clock;
    const auto once = clock.after(1s, [] {});
    const auto again = clock.repeat(1s, [] {});
    auto dropped = clock.after(1s, [] {});

    const std::size_t atFirst = clock.pendingTimers();
    dropped.reset();
    const std::size_t afterTheDrop = clock.pendingTimers();
    clock.advance(1s);
    const std::size_t afterTheMove = clock.pendingTimers();

    EXPECT_EQ(atFirst, 3U);
    EXPECT_EQ(afterTheDrop, 2U);
    EXPECT_EQ(afterTheMove, 1U);
}

TEST(ManualClock, MayEndBeforeItsTimers)
{
    const auto held = std::make_shared<int>();
    auto clock = std::make_unique<ManualClock>();
    auto timer = clock->after(1s, [held] {});

    clock.reset();
    timer.reset();

    EXPECT_EQ(held.use_count(), 1);
}

TEST(ManualClock, LetsTheEventLoopRunBetweenTwoDeadlines)
{
    ManualClock clock;
    std::vector<std::string> order;
    const auto first = clock.after(1s, [&] {
        QTimer::singleShot(0, [&] { order.emplace_back("event"); });
        order.emplace_back("first");
    });
    const auto second = clock.after(2s, [&] { order.emplace_back("second"); });

    clock.advance(2s);

    EXPECT_THAT(order, ElementsAre("first", "event", "second"));
}

TEST(ManualClock, WakesSleepersAtTheirTimes)
{
    ManualClock clock;
    const auto start = clock.date();
    std::vector<Scheduler::Date> wokenAt;
    auto longer = sleepThenNote(&clock, 300ms, {}, &wokenAt);
    auto shorter = sleepThenNote(&clock, 100ms, {}, &wokenAt);

    clock.advance(1s);

    EXPECT_THAT(wokenAt, ElementsAre(start + 100ms, start + 300ms));
}

TEST(ManualClock, WakesASleeperWhoseTokenIsCancelled)
{
    ManualClock clock;
    const auto start = clock.date();
    const auto token = CancellationToken::cancellable();
    std::vector<Scheduler::Date> wokenAt;
    auto sleeper = sleepThenNote(&clock, 10s, token, &wokenAt);

    clock.advance(3s);
    token.cancel();
    clock.advance(0s);

    EXPECT_THAT(wokenAt, ElementsAre(start + 3s));
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST(ManualClock, NeverSleepsWithACancelledToken)
{
    ManualClock clock;
    const auto token = CancellationToken::cancellable();
    token.cancel();
    std::vector<Scheduler::Date> wokenAt;

    blockOn(sleepThenNote(&clock, 10s, token, &wokenAt), kPatience);

    EXPECT_EQ(wokenAt.size(), 1U);
}

} // namespace
} // namespace brindle
