#include "platform/linux/PortalAppearance.h"

#include "support/FakeAppearance.h"
#include "support/FakePortal.h"
#include "support/ManualClock.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace brindle {
namespace {

constexpr uint kNoPreference = 0;
constexpr uint kDark = 1;
constexpr uint kLight = 2;

/// The real client on a bus of the test's own.
class PortalAppearanceTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
    }

    void TearDown() override { drainEventLoop(); } // one may still connect

    void make()
    {
        appearance = std::make_unique<PortalAppearance>(palette);
        QObject::connect(appearance.get(), &Appearance::colorSchemeChanged, appearance.get(), [this] { ++changes; });
    }

    std::optional<PrivateBus> bus;
    FakeAppearance palette; ///< Light at first.
    std::unique_ptr<PortalAppearance> appearance;
    int changes = 0;
};

TEST_F(PortalAppearanceTest, IsThePalettesAtOnceAndThePortalsOnceThatHasAnswered)
{
    FakePortal portal(kDark);

    make();
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::light);

    waitUntil([&] { return changes == 1; });
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::dark);
}

TEST_F(PortalAppearanceTest, FollowsThePortal)
{
    FakePortal portal(kDark);
    make();
    waitUntil([&] { return changes == 1; });

    portal.colorScheme = kLight;
    portal.tell();

    waitUntil([&] { return changes == 2; });
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::light);
}

TEST_F(PortalAppearanceTest, IsThePalettesWhereThePortalHasNoPreference)
{
    FakePortal portal(kDark);
    make();
    waitUntil([&] { return changes == 1; });

    portal.colorScheme = kNoPreference;
    portal.tell();
    waitUntil([&] { return changes == 2; });
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::light);

    palette.setColorScheme(ColorScheme::dark);
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::dark);
}

TEST_F(PortalAppearanceTest, TellsNothingOfAPaletteThatThePortalOverrules)
{
    FakePortal portal(kDark);
    make();
    waitUntil([&] { return changes == 1; });

    palette.setColorScheme(ColorScheme::dark);
    palette.setColorScheme(ColorScheme::light);

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::dark);
}

TEST_F(PortalAppearanceTest, AsksAgainRatherThanBelievingASignal)
{
    FakePortal portal(kDark);
    make();
    waitUntil([&] { return changes == 1; });

    FakePortal::pretendToTell(kLight);
    waitUntil([&] { return portal.reads == 2; });
    FakePortal::pretendToTell(kLight);
    waitUntil([&] { return portal.reads == 3; }); // the second answer was sent before

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::dark);
}

TEST_F(PortalAppearanceTest, PassesOverOtherSettings)
{
    FakePortal portal(kDark);
    make();
    waitUntil([&] { return changes == 1; });

    portal.tell(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("accent-color"));
    portal.tell(QStringLiteral("org.example.appearance"), QStringLiteral("color-scheme"));
    portal.colorScheme = kLight;
    portal.tell();
    waitUntil([&] { return changes == 2; });

    EXPECT_EQ(portal.reads, 2);
}

TEST_F(PortalAppearanceTest, IsThePalettesForAnAnswerThatIsNoNumber)
{
    FakePortal portal(QStringLiteral("dark"));
    make();
    waitUntil([&] { return portal.reads == 1; });

    portal.colorScheme = kDark;
    portal.tell();
    waitUntil([&] { return changes == 1; }); // behind the first answer

    EXPECT_EQ(portal.reads, 2);
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::dark);
}

TEST_F(PortalAppearanceTest, MayEndBeforeItIsConnected)
{
    FakePortal portal(kDark);
    make();
    appearance.reset();

    make();
    waitUntil([&] { return changes == 1; });

    EXPECT_EQ(portal.reads, 1);
}

} // namespace
} // namespace brindle
