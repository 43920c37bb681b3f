#include "base/NotificationCenter.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NotificationCenterTest : public testing::Test {
protected:
    /// An observer that notes \a word.
    std::function<void()> note(std::string word)
    {
        return [this, word = std::move(word)] { notes.push_back(word); };
    }

    std::unique_ptr<NotificationCenter> center = std::make_unique<NotificationCenter>();
    std::vector<std::string> notes;
};

TEST_F(NotificationCenterTest, TellsThoseWhoObserveTheNameInTheirOrder)
{
    const auto first = center->observe("OpenSettings", note("first"));
    const auto other = center->observe("CloseMenuBarPopover", note("other"));
    const auto second = center->observe("OpenSettings", note("second"));

    center->post("OpenSettings");

    EXPECT_THAT(notes, ElementsAre("first", "second"));
}

TEST_F(NotificationCenterTest, TellsNobodyWhoseObservationHasEnded)
{
    auto observation = center->observe("OpenSettings", note("told"));
    observation.reset();

    center->post("OpenSettings");

    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(NotificationCenterTest, TellsNobodyWhomAnotherHasTakenOutMeanwhile)
{
    std::unique_ptr<NotificationCenter::Observation> second;
    const auto first = center->observe("OpenSettings", [&] { second.reset(); });
    second = center->observe("OpenSettings", note("told"));

    center->post("OpenSettings");

    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(NotificationCenterTest, LetsAnObserverEndItself)
{
    std::unique_ptr<NotificationCenter::Observation> observation;
    observation = center->observe("OpenSettings", [&, word = std::string("told")] {
        observation.reset();
        notes.push_back(word);
    });

    center->post("OpenSettings");
    center->post("OpenSettings");

    EXPECT_THAT(notes, ElementsAre("told"));
}

TEST_F(NotificationCenterTest, TellsOneWhoBeginsMeanwhileFromTheNextTimeOn)
{
    std::unique_ptr<NotificationCenter::Observation> late;
    const auto first = center->observe("OpenSettings", [&] {
        if (!late)
            late = center->observe("OpenSettings", note("late"));
    });

    center->post("OpenSettings");
    EXPECT_THAT(notes, IsEmpty());

    center->post("OpenSettings");
    EXPECT_THAT(notes, ElementsAre("late"));
}

TEST_F(NotificationCenterTest, MayEndBeforeItsObservers)
{
    const auto observation = center->observe("OpenSettings", note("told"));

    center.reset();
}

} // namespace
} // namespace brindle
