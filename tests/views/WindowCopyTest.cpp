#include "views/WindowContentFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;

/// The window's content from the opening of the copy dialog to its end.
class WindowCopyTest : public WindowContentFixture {
protected:
    void copyTo(int destinations)
    {
        holdSourceAndDestinations(destinations);
        appear();
        walkThroughACopy(content(), [this] { clock.advance(WindowContentPresenter::kHeightDelay); });
    }
};

TEST_F(WindowCopyTest, IsAsHighAsTheScreenOfTheCopyThatIsShown)
{
    copyTo(2);

    EXPECT_THAT(heights(), ElementsAre("height 1 518", "height 1 428", "height 1 578", "height 1 428", "height 1 518",
                                       "height 1 294")); // 3 × 68 + 2 × 4 + 82
}

TEST_F(WindowCopyTest, IsAsHighForOneDestinationAsForTheCopyItself)
{
    copyTo(1);

    EXPECT_THAT(heights(), ElementsAre("height 1 428", "height 1 578", "height 1 428", "height 1 222"));
}

TEST_F(WindowCopyTest, TellsOfEachStepInTheFooter)
{
    std::vector<std::string> told;
    holdSourceAndDestinations(1);
    QObject::connect(&content(), &WindowContentPresenter::footerChanged, [&] {
        const QString sign = content().spinnerScale() > 0 ? QStringLiteral("*") : content().statusSymbol();
        const std::string line = fmt::format("{} {}", sign.toStdString(), content().statusText().toStdString());
        if (told.empty() || told.back() != line)
            told.push_back(line);
    });

    walkThroughACopy(content(), [] {});
    clock.advance(std::chrono::seconds(5));

    EXPECT_THAT(told, ElementsAre(" Ready", "* Preparing EFI copy operation...", "* Checking destination...",
                                  "* Preparing to copy EFI folder...", "* Copying EFI from disk2s1 to disk3s1...",
                                  "* Removing existing EFI folder...", "* Copying files...",
                                  "* Copy completed, verifying...", "* Verifying copied files...",
                                  "* Verification completed successfully", "* EFI copy completed successfully",
                                  "checkmark.circle.fill EFI copy completed successfully", " Ready"));
}

} // namespace
} // namespace brindle
