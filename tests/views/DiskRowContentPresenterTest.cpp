#include "views/DiskRowContentPresenter.h"

#include "base/DefaultsKeys.h"
#include "support/MemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <memory>

namespace brindle {
namespace {

PhysicalDisk stick()
{
    return {.identifier = "disk2",
            .name = "Stick",
            .size = "16 GB",
            .volumeName = "WORK",
            .efiPartitions = {{.identifier = "disk2s1"}},
            .diskType = PhysicalDisk::DiskType::removable,
            .totalSpaceBytes = 1000,
            .usedSpaceBytes = 905,
            .hasOpenCore = true,
            .hasLinux = true,
            .smartStatus = SMARTStatus::failing};
}

class DiskRowContentPresenterTest : public testing::Test {
protected:
    DiskRowContentPresenter &present(DiskRowContent content)
    {
        m_presenter = std::make_unique<DiskRowContentPresenter>(std::move(content), defaults);
        QObject::connect(m_presenter.get(), &DiskRowContentPresenter::changed, [this] { ++changes; });
        return *m_presenter;
    }

    DiskRowContentPresenter &presentStick()
    {
        return present({.disk = stick(), .efiMounted = true, .iconSize = 20, .showEFIIndicator = true});
    }

    void switchOnAll()
    {
        defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
        defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    }

    MemoryUserDefaults defaults;
    int changes = 0;

private:
    std::unique_ptr<DiskRowContentPresenter> m_presenter;
};

TEST_F(DiskRowContentPresenterTest, HandsOutTheContentOfTheRow)
{
    switchOnAll();
    const DiskRowContentPresenter &row = presentStick();

    EXPECT_EQ(row.icon(), (RowSymbolValue{QStringLiteral("externaldrive.connected.to.line.below.fill"), 20,
                                          QStringLiteral("#00CCFF")}));
    EXPECT_EQ(row.name(),
              (RowTextValue{QStringLiteral("Stick"), 12, QStringLiteral("medium"), QStringLiteral("black")}));
    EXPECT_EQ(row.volumeLabel(),
              (RowTextValue{QStringLiteral("WORK"), 12, QStringLiteral("medium"), QStringLiteral("black")}));
    EXPECT_EQ(row.bullet().text, QStringLiteral("•"));
    ASSERT_EQ(row.details().size(), 5);
    EXPECT_EQ(row.details().at(2).value<RowTextValue>(),
              (RowTextValue{QStringLiteral("OC"), 11, QStringLiteral("medium"), QStringLiteral("#00CCFF")}));
    EXPECT_EQ(row.details().at(3).value<RowTextValue>(),
              (RowTextValue{QStringLiteral("Linux"), 11, QStringLiteral("regular"), QStringLiteral("purple")}));
    EXPECT_EQ(row.details().at(4).value<RowTextValue>(),
              (RowTextValue{QStringLiteral("SMART Failing"), 11, QStringLiteral("bold"), QStringLiteral("red")}));
}

TEST_F(DiskRowContentPresenterTest, HandsOutTheSpaceBar)
{
    switchOnAll();
    const DiskRowContentPresenter &row = presentStick();

    EXPECT_TRUE(row.hasSpaceBar());
    EXPECT_DOUBLE_EQ(row.usedRatio(), 0.905);
    EXPECT_EQ(row.barColor(), QStringLiteral("red"));
    EXPECT_EQ(row.space().text, QStringLiteral("0 MB of 0 MB used"));
    EXPECT_EQ(row.percent().text, QStringLiteral("91%"));
    EXPECT_DOUBLE_EQ(row.fillWidth(row.usedRatio(), 200), 181);
}

TEST_F(DiskRowContentPresenterTest, HandsOutTheEFIIndicatorAsASymbolOrACount)
{
    DiskRowContentPresenter &row = presentStick();

    EXPECT_TRUE(row.hasEFIIndicator());
    EXPECT_EQ(row.efiSymbol(), (RowSymbolValue{QStringLiteral("checkmark.circle.fill"), 16, QStringLiteral("green")}));
    EXPECT_EQ(row.efiCount().text, QString());
    EXPECT_EQ(row.efiLabel().text, QStringLiteral("EFI"));

    PhysicalDisk two = stick();
    two.efiPartitions.push_back({.identifier = "disk2s2"});
    row.setDisk(two, false);
    EXPECT_EQ(row.efiSymbol().name, QString());
    EXPECT_EQ(row.efiCount(),
              (RowTextValue{QStringLiteral("2"), 14, QStringLiteral("regular"), QStringLiteral("secondary")}));
}

TEST_F(DiskRowContentPresenterTest, HasNothingToHandOutOfWhatIsNotShown)
{
    const DiskRowContentPresenter &row = present({.disk = stick()});

    EXPECT_FALSE(row.hasSpaceBar());
    EXPECT_EQ(row.usedRatio(), 0);
    EXPECT_EQ(row.barColor(), QString());
    EXPECT_EQ(row.space().text, QString());
    EXPECT_EQ(row.percent().text, QString());
    EXPECT_EQ(row.fillWidth(0.5, 200), 0);
    EXPECT_FALSE(row.hasEFIIndicator());
    EXPECT_EQ(row.efiSymbol().name, QString());
    EXPECT_EQ(row.efiLabel().text, QString());
}

TEST_F(DiskRowContentPresenterTest, LetsNoTextOfADiskCommandTheView)
{
    PhysicalDisk hostile = stick();
    hostile.name = "two\nlines";
    hostile.volumeName = "gnp\u202Eexe";
    hostile.size = "\xE9";

    const DiskRowContentPresenter &row = present({.disk = hostile});

    EXPECT_EQ(row.name().text, QStringLiteral("two<U+000A>lines"));
    EXPECT_EQ(row.volumeLabel().text, QStringLiteral("gnp<U+202E>exe"));
    EXPECT_EQ(row.details().at(0).value<RowTextValue>().text, QString(QChar(0xFFFD)));
}

TEST_F(DiskRowContentPresenterTest, IsReadByTheNamesOfItsProperties)
{
    const DiskRowContentPresenter &row = presentStick();

    EXPECT_EQ(row.property("name").value<RowTextValue>(), row.name());
    EXPECT_EQ(row.property("icon").value<RowSymbolValue>(), row.icon());
    EXPECT_EQ(RowTextValue::staticMetaObject.indexOfProperty("weight"), 2);
}

// --- narrow lines

// The details of the stick are its size, its type, "OC", "Linux" and its health, each 10 wide; a bullet takes 2.
TEST_F(DiskRowContentPresenterTest, HidesNothingOfALineThatFits)
{
    switchOnAll();

    EXPECT_EQ(presentStick().hiddenDetails(QList<double>(5, 10), 2, 4, 58), QList<int>());
}

TEST_F(DiskRowContentPresenterTest, HidesIndicatorsFromTheRightOfALineThatIsTooLong)
{
    switchOnAll();
    const DiskRowContentPresenter &row = presentStick();

    EXPECT_EQ(row.hiddenDetails(QList<double>(5, 10), 2, 4, 57), QList<int>{3});
    EXPECT_EQ(row.hiddenDetails(QList<double>(5, 10), 2, 4, 52), QList<int>{3});
    EXPECT_EQ(row.hiddenDetails(QList<double>(5, 10), 2, 4, 51), (QList<int>{2, 3}));
    EXPECT_EQ(row.hiddenDetails(QList<double>(5, 10), 2, 4, 0), (QList<int>{2, 3}));
}

TEST_F(DiskRowContentPresenterTest, HidesAHealthThatIsNoWarning)
{
    switchOnAll();
    PhysicalDisk boot = stick();
    boot.isBootDisk = true;
    boot.smartStatus = SMARTStatus::verified;

    EXPECT_EQ(present({.disk = boot}).hiddenDetails(QList<double>(5, 10), 2, 4, 0), (QList<int>{3, 4}));
}

// --- changes

TEST_F(DiskRowContentPresenterTest, TellsOfARecordThatIsEqualAndLooksDifferent)
{
    DiskRowContentPresenter &row = presentStick();
    PhysicalDisk renamed = stick();
    renamed.volumeName = "PLAY";
    ASSERT_EQ(renamed, stick());

    row.setDisk(renamed, true);

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(row.volumeLabel().text, QStringLiteral("PLAY"));
}

TEST_F(DiskRowContentPresenterTest, TellsOfANewColourSchemeOnce)
{
    DiskRowContentPresenter &row = presentStick();

    row.setColorScheme(ColorScheme::dark);
    row.setColorScheme(ColorScheme::dark);

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(row.name().color, QStringLiteral("white"));
}

TEST_F(DiskRowContentPresenterTest, FollowsItsTwoSettingsAndNoOthers)
{
    const DiskRowContentPresenter &row = presentStick();
    ASSERT_FALSE(row.hasSpaceBar());
    ASSERT_EQ(row.details().size(), 4);

    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    EXPECT_TRUE(row.hasSpaceBar());
    EXPECT_EQ(changes, 1);
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    EXPECT_EQ(row.details().size(), 5);
    EXPECT_EQ(changes, 2);
    defaults.set(DefaultsKeys::kShowNotifications, true);
    EXPECT_EQ(changes, 2);
}

} // namespace
} // namespace brindle
