#include "support/ManualClock.h"

#include "base/BlockOn.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ManualClockTest : public testing::Test {
protected:
    std::function<void()> note(std::string text)
    {
        return [this, text] { notes.push_back(text); };
    }

    ManualClock clock;
    std::vector<std::string> notes;
};

TEST_F(ManualClockTest, CallsExactlyAtTheBorder)
{
    const auto timer = clock.after(2s, note("due"));

    clock.advance(1999ms);
    EXPECT_THAT(notes, IsEmpty());
    clock.advance(1ms);

    EXPECT_THAT(notes, ElementsAre("due"));
    EXPECT_EQ(clock.timerCount(), 0U);
}

TEST_F(ManualClockTest, CallsInTheOrderOfTimeAndThenOfMaking)
{
    const auto late = clock.after(3s, note("late"));
    const auto first = clock.after(1s, note("first"));
    const auto second = clock.after(1s, note("second"));

    clock.advance(5s);

    EXPECT_THAT(notes, ElementsAre("first", "second", "late"));
}

TEST_F(ManualClockTest, TellsTheTimeOfTheCallInsideIt)
{
    const auto start = clock.date();
    Scheduler::Date seen;
    const auto timer = clock.after(2s, [&] { seen = clock.date(); });

    clock.advance(10s);

    EXPECT_EQ(seen - start, 2s);
    EXPECT_EQ(clock.date() - start, 10s);
}

TEST_F(ManualClockTest, RepeatsUntilTheHandleEnds)
{
    auto timer = clock.repeat(1s, note("tick"));
    clock.advance(3s);
    timer.reset();
    clock.advance(3s);

    EXPECT_THAT(notes, ElementsAre("tick", "tick", "tick"));
}

TEST_F(ManualClockTest, LetsACallbackEndAnothersTimer)
{
    std::unique_ptr<Scheduler::Timer> second;
    const auto first = clock.after(1s, [&] { second.reset(); });
    second = clock.after(1s, note("second"));

    clock.advance(2s);

    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(ManualClockTest, SleepsForATimeOrUntilTheCancellation)
{
    const auto token = CancellationToken::cancellable();
    auto whole = clock.sleep(2s);
    auto cut = clock.sleep(2s, token);

    token.cancel();
    blockOn(std::move(cut), 1s);
    EXPECT_FALSE(whole.isReady());
    clock.advance(2s);

    blockOn(std::move(whole), 1s);
    EXPECT_EQ(clock.timerCount(), 0U);
}

} // namespace
} // namespace brindle
