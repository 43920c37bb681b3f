#include "ui/FlushedRegion.h"
#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include "support/WaitUntil.h"

#include <fmt/format.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

constexpr int kDisks = 500;

/// The window with more disks than anybody has.
class LongListTest : public WindowContentFixture {
protected:
    LongListTest()
    {
        std::vector<PhysicalDisk> disks;
        for (int i = 0; i < kDisks; ++i) {
            const std::string identifier = fmt::format("disk{}", i);
            disks.push_back(externalDisk(identifier, {{.identifier = identifier + "s1"}}));
        }
        hold(disks);
        window.emplace("WindowContentView { width: 500; height: 600 }", 600,
                       QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        settle();
        (void)window->picture();
        QmlWindow::settle();
    }

    QQuickItem &list() { return window->item(QStringLiteral("diskList")); }

    /// The rows that are there, in sight or near.
    int rowsMade()
    {
        const auto rows = list().property("contentItem").value<QQuickItem *>()->childItems();
        return static_cast<int>(std::ranges::count_if(
            rows, [](const QQuickItem *item) { return item->property("row").isValid() && item->isVisible(); }));
    }

    /// As a wheel does, in steps.
    void scrollTo(double y)
    {
        constexpr double kStep = 200;
        double place = list().property("contentY").toDouble();
        while (place != y) {
            place = y > place ? std::min(y, place + kStep) : std::max(y, place - kStep);
            list().setProperty("contentY", place);
            (void)window->picture(); // lays it out
            QmlWindow::settle();
        }
    }

    void mountTheEFIPartitionOf(const std::string &disk)
    {
        answerInfo(disk + "s1", true);
        finished(manager().updateEFIPartitionState(disk + "s1"));
        QmlWindow::settle();
    }

    std::optional<QmlWindow> window;
};

TEST_F(LongListTest, RepaintsOneRowWhereAPublishChangesOneDisk)
{
    int told = 0;
    for (int i = 0; i < kDisks; ++i)
        QObject::connect(&row(i), &RowPresenter::changed, [&] { ++told; });
    const QQuickItem &changed = window->item(QStringLiteral("disk3"));
    const QRect place = changed.mapRectToScene(changed.boundingRect()).toAlignedRect();
    FlushedRegion flushed;

    mountTheEFIPartitionOf("disk3");
    waitUntil([&] { return !flushed.bounds().isEmpty(); });

    EXPECT_EQ(told, 1);
    EXPECT_TRUE(place.contains(flushed.bounds()));
}

TEST_F(LongListTest, RepaintsNothingWhereAPublishChangesADiskOutOfSight)
{
    int told = 0;
    for (int i = 0; i < kDisks; ++i)
        QObject::connect(&row(i), &RowPresenter::changed, [&] { ++told; });
    const FlushedRegion flushed;

    mountTheEFIPartitionOf("disk400");
    (void)window->picture();

    EXPECT_EQ(told, 1);
    EXPECT_TRUE(flushed.bounds().isEmpty());
}

TEST_F(LongListTest, HoldsNoMoreRowsThanCanBeSeenSoon)
{
    constexpr int kInSightAndNear = 24; // 600 points and 400 on either side, of 72 each, and what is cut

    EXPECT_GT(rowsMade(), 0);
    EXPECT_LT(rowsMade(), kInSightAndNear);
    for (int y = 0; y < kDisks * 72; y += 7000) {
        list().setProperty("contentY", y);
        QmlWindow::settle();
    }
    list().setProperty("contentY", kDisks * 72 - 600);
    QmlWindow::settle();
    EXPECT_LT(rowsMade(), kInSightAndNear);
    waitUntil([&] { return window->shows(QStringLiteral("disk499")); });
}

// --- a row with the keyboard that is scrolled out of sight

TEST_F(LongListTest, StaysWhereItIsScrolledToWhileARowFarAwayHasTheKeyboard)
{
    window->click(QStringLiteral("disk1/diskName"));
    ASSERT_EQ(window->focused(), "disk1");

    scrollTo(2000);

    EXPECT_EQ(list().property("contentY").toDouble(), 2000);
}

TEST_F(LongListTest, GoesOnByKeysFromTheRowThatHasTheKeyboard)
{
    window->click(QStringLiteral("disk1/diskName"));
    scrollTo(2000);

    window->press(Qt::Key_Down);

    EXPECT_EQ(window->focused(), "disk2");
    EXPECT_LT(list().property("contentY").toDouble(), 3 * 72);
}

TEST_F(LongListTest, ShowsTheRowThatHasTheKeyboardBeforeAKeyActsOnIt)
{
    window->click(QStringLiteral("disk1/diskName"));
    scrollTo(2000);
    answerInfo("disk1s1", false);
    answerSudo("mount disk1s1");

    window->press(Qt::Key_Space);
    EXPECT_EQ(window->focused(), "disk1");
    EXPECT_THAT(journal, testing::Not(testing::Contains(sudo("mount disk1s1"))));
    window->press(Qt::Key_Space);
    settle();
    EXPECT_THAT(journal, testing::Contains(sudo("mount disk1s1")));
}

TEST_F(LongListTest, GivesTheKeyboardBackToItsRowOnceThatIsInSightAgain)
{
    window->click(QStringLiteral("disk1/diskName"));
    scrollTo(2000);
    scrollTo(0);

    EXPECT_EQ(window->focused(), "disk1");
}

// --- disks that go while the window isn't drawn

TEST_F(LongListTest, SaysNothingOfDisksThatGoBeforeItIsDrawnAgain)
{
    for (int first = 1; first <= 3; ++first) {
        content().rows()->setDisks(std::vector(manager().disks().begin() + first, manager().disks().end()), {});
        QmlWindow::settle();
    }

    (void)window->picture();
    EXPECT_FALSE(window->shows(QStringLiteral("disk2")));
    EXPECT_TRUE(window->shows(QStringLiteral("disk3")));
}

} // namespace
} // namespace brindle
