#include "ui/FlushedRegion.h"
#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include "support/WaitUntil.h"

#include <fmt/format.h>

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

} // namespace
} // namespace brindle
