#include "assembly/Interruption.h"

#include "support/ChildOfTest.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using Then = Interruption::Then;

/// Interruptions that note their names when they are called.
class InterruptionTest : public testing::Test {
protected:
    std::function<void()> note(const char *name)
    {
        return [this, name] { called.emplace_back(name); };
    }

    /// Lets a signal come and be dealt with; \a calls have been made by then.
    void interrupt(std::size_t calls)
    {
        ASSERT_EQ(::raise(SIGTERM), 0);
        waitUntil([&] { return called.size() >= calls; });
    }

    std::vector<std::string> called;
};

TEST_F(InterruptionTest, CallsTheLastOneMadeAndPassesOnWhatIsToEndTheProgram)
{
    const Interruption outermost(note("outermost"), Then::goOn);
    const Interruption outer(note("outer"), Then::goOn);
    const Interruption inner(note("inner"), Then::endBySignal);

    interrupt(2);

    EXPECT_THAT(called, ElementsAre("inner", "outer"));
}

TEST_F(InterruptionTest, ServesThoseThatLiveInWhateverOrderTheOthersEnd)
{
    std::optional<Interruption> first(std::in_place, note("first"), Then::goOn);
    std::optional<Interruption> second(std::in_place, note("second"), Then::goOn);
    std::optional<Interruption> third(std::in_place, note("third"), Then::goOn);

    first.reset();
    interrupt(1);
    third.reset();
    interrupt(2);
    first.emplace(note("first again"), Then::goOn);
    second.reset();
    interrupt(3);

    EXPECT_THAT(called, ElementsAre("third", "second", "first again"));
}

TEST_F(InterruptionTest, LetsASignalEndTheProgramThatNobodyHasDealtWithYet)
{
    const pid_t child = startChild([] {
        const Interruption interruption([] {}, Then::goOn);
        ::raise(SIGTERM);
    });

    EXPECT_EQ(endOf(child), -SIGTERM);
}

} // namespace
} // namespace brindle
