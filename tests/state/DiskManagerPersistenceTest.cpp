#include "state/DiskManagerFixture.h"

#include "records/SerializablePhysicalDisk.h"
#include "support/Patience.h"
#include "support/SampleDisks.h"

#include <array>
#include <set>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

PropertyValue::Data dataOf(std::string_view text)
{
    PropertyValue::Data data;
    for (const char character : text)
        data.push_back(static_cast<std::byte>(character));
    return data;
}

class DiskManagerPersistence : public DiskManagerFixture {
protected:
    /// What a process leaves that ends for a switch of the launch mode.
    void leaveForModeSwitch(std::string_view disks)
    {
        defaults.set("DiskManager.PersistedDisks", dataOf(disks));
        defaults.set("IsModeSwitchRelaunch", true);
    }

    [[nodiscard]] std::string persistedDisks() const
    {
        std::string text;
        for (const std::byte byte :
             defaults.objectAs<PropertyValue::Data>("DiskManager.PersistedDisks").value_or(PropertyValue::Data()))
            text += static_cast<char>(byte);
        return text;
    }
};

// --- first run

constexpr std::array<std::pair<const char *, bool>, 7> kFirstRun{{{"ShowInternalDisks", true},
                                                                  {"ShowExternalDisks", true},
                                                                  {"ShowRemovableDisks", true},
                                                                  {"ShowDiskImages", false},
                                                                  {"ShowNotifications", true},
                                                                  {"AutoOpenFinderOnMount", true},
                                                                  {"PreferencesInitialized", true}}};

TEST_F(DiskManagerPersistence, WritesTheFirstRunSettingsInOrderBeforeAnyScan)
{
    std::vector<std::string> written;
    QObject::connect(&defaults, &UserDefaults::valueChanged, &defaults,
                     [&](const std::string &key) { written.push_back(key); });

    manager();

    EXPECT_THAT(written, ElementsAre("ShowInternalDisks", "ShowExternalDisks", "ShowRemovableDisks", "ShowDiskImages",
                                     "ShowNotifications", "AutoOpenFinderOnMount", "PreferencesInitialized"));
    for (const auto &[key, value] : kFirstRun)
        EXPECT_EQ(defaults.object(key), PropertyValue(value)) << key;
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(DiskManagerPersistence, TurnsTheNotificationsOnThatAreOffInAnEmptyStore)
{
    EXPECT_FALSE(defaults.boolForKey("ShowNotifications"));

    manager();

    EXPECT_TRUE(defaults.boolForKey("ShowNotifications"));
}

TEST_F(DiskManagerPersistence, LeavesTheSettingsAloneOnceTheyAreInitialized)
{
    defaults.set("PreferencesInitialized", true);
    defaults.set("ShowInternalDisks", false);

    manager();

    EXPECT_EQ(defaults.object("ShowInternalDisks"), PropertyValue(false));
    EXPECT_EQ(defaults.object("ShowNotifications"), std::nullopt);
}

TEST_F(DiskManagerPersistence, ResetsTheSixKeysAndNothingElseWhenTheMarkAloneIsGone)
{
    for (const auto &[key, value] : kFirstRun)
        defaults.set(key, !value);
    defaults.remove("PreferencesInitialized");
    defaults.set("EnableGlobalHotkey", true);
    defaults.set("LaunchMode", "window");

    manager();

    for (const auto &[key, value] : kFirstRun)
        EXPECT_EQ(defaults.object(key), PropertyValue(value)) << key;
    EXPECT_EQ(defaults.object("EnableGlobalHotkey"), PropertyValue(true));
    EXPECT_EQ(defaults.object("LaunchMode"), PropertyValue("window"));
}

// --- launches

TEST_F(DiskManagerPersistence, IgnoresTheStoredListAtANormalLaunch)
{
    defaults.set("DiskManager.PersistedDisks", dataOf(encodeDisks({completeDisk()})));

    EXPECT_THAT(manager().disks(), IsEmpty());
    EXPECT_FALSE(manager().hasCompletedInitialScan());
    EXPECT_THAT(log.lines(), ElementsAre("🚀 Fresh app launch — will scan disks"));
    EXPECT_EQ(persistedDisks(), encodeDisks({completeDisk()}));
}

TEST_F(DiskManagerPersistence, TakesTheStoredListBackAfterASwitchOfTheLaunchMode)
{
    PhysicalDisk unmounted;
    unmounted.identifier = "disk1";
    leaveForModeSwitch(encodeDisks({completeDisk(), unmounted}));

    ASSERT_THAT(manager().disks(), ElementsAre(completeDisk(), unmounted));
    EXPECT_EQ(manager().disks()[0].volumeName, completeDisk().volumeName);
    EXPECT_TRUE(manager().hasCompletedInitialScan());
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_THAT(manager().efiStates(), ElementsAre(Pair("disk1", false), Pair("disk4", true)));
    EXPECT_EQ(defaults.object("IsModeSwitchRelaunch"), std::nullopt);
    EXPECT_THAT(log.lines(), ElementsAre("🔄 Mode switch detected — loading persisted disk state",
                                         "📦 Loaded 2 persisted disks from mode switch"));
}

struct CorruptCase {
    const char *name;
    const char *text;
};

class CorruptList : public DiskManagerPersistence, public testing::WithParamInterface<CorruptCase> {};

TEST_P(CorruptList, IsDroppedWithoutAWordAndTheMarkConsumed)
{
    leaveForModeSwitch(GetParam().text);

    EXPECT_THAT(manager().disks(), IsEmpty());
    EXPECT_FALSE(manager().hasCompletedInitialScan());
    EXPECT_EQ(defaults.object("IsModeSwitchRelaunch"), std::nullopt);
    EXPECT_EQ(persistedDisks(), GetParam().text);
    EXPECT_THAT(log.lines(), ElementsAre("🔄 Mode switch detected — loading persisted disk state"));
}

INSTANTIATE_TEST_SUITE_P(DiskManagerPersistence, CorruptList,
                         testing::Values(CorruptCase{"Empty", ""}, CorruptCase{"CutShort", "[{\"identifier\":"},
                                         CorruptCase{"NoArray", "{}"}, CorruptCase{"LackingKeys", "[{}]"}),
                         [](const auto &row) { return row.param.name; });

TEST_F(DiskManagerPersistence, ConsumesTheMarkWhereNoListIsStored)
{
    defaults.set("IsModeSwitchRelaunch", true);

    EXPECT_FALSE(manager().hasCompletedInitialScan());
    EXPECT_EQ(defaults.object("IsModeSwitchRelaunch"), std::nullopt);
}

TEST_F(DiskManagerPersistence, ShowsARestoredDiskThatWasUnpluggedUntilTheFirstScanEnds)
{
    leaveForModeSwitch(encodeDisks({completeDisk()}));
    plugIn({"disk0"});

    EXPECT_THAT(manager().disks(), ElementsAre(completeDisk()));
    scan();

    ASSERT_EQ(manager().disks().size(), 1U);
    EXPECT_EQ(manager().disks()[0].identifier, "disk0");
}

// --- rows

TEST_F(DiskManagerPersistence, BringsTheOpenedRowsBackAtAnyLaunchAndClosesThoseOfMissingDisksAtTheFirstPublish)
{
    defaults.set("DiskManager.PersistedExpandedDisks", PropertyValue::Array{"disk0", "disk7"});
    plugIn({"disk0"});

    EXPECT_THAT(manager().expandedDisks(), UnorderedElementsAre("disk0", "disk7"));
    scan();

    EXPECT_THAT(manager().expandedDisks(), UnorderedElementsAre("disk0"));
    EXPECT_EQ(defaults.object("DiskManager.PersistedExpandedDisks"), PropertyValue(PropertyValue::Array{"disk0"}));
}

TEST_F(DiskManagerPersistence, BringsTheOpenedRowsBackAfterASwitchOfTheLaunchMode)
{
    leaveForModeSwitch("broken");
    defaults.set("DiskManager.PersistedExpandedDisks", PropertyValue::Array{"disk4"});

    EXPECT_THAT(manager().expandedDisks(), UnorderedElementsAre("disk4"));
}

TEST_F(DiskManagerPersistence, IgnoresAWholeListOfRowsThatHoldsANumber)
{
    defaults.set("DiskManager.PersistedExpandedDisks", PropertyValue::Array{"disk0", 7});

    EXPECT_THAT(manager().expandedDisks(), IsEmpty());
}

TEST_F(DiskManagerPersistence, ClosesTheRowOfADiskThatIsHidden)
{
    plugIn({"disk0"});
    scan();
    manager().toggleExpanded("disk0");

    defaults.set("ShowInternalDisks", false);
    scan();

    EXPECT_THAT(manager().disks(), IsEmpty());
    EXPECT_THAT(manager().expandedDisks(), IsEmpty());
}

TEST_F(DiskManagerPersistence, PersistsARowThatIsOpenedAndClosed)
{
    manager().toggleExpanded("disk0");
    EXPECT_EQ(defaults.object("DiskManager.PersistedExpandedDisks"), PropertyValue(PropertyValue::Array{"disk0"}));
    EXPECT_EQ(log.lines().back(), "💾 Persisted disk state");

    manager().toggleExpanded("disk0");
    EXPECT_EQ(defaults.object("DiskManager.PersistedExpandedDisks"), PropertyValue(PropertyValue::Array{}));
}

// --- publishing

TEST_F(DiskManagerPersistence, PersistsThePublishedListInItsOrder)
{
    plugIn({"disk10", "disk2"});

    scan();

    const auto stored = decodeDisks(persistedDisks());
    ASSERT_EQ(stored.size(), 2U);
    EXPECT_EQ(stored[0].identifier, "disk2");
    EXPECT_EQ(stored[1].identifier, "disk10");
    EXPECT_EQ(manager().lastRefreshTime(), clock.date());
}

TEST_F(DiskManagerPersistence, PublishesInTheToldOrder)
{
    plugIn({"disk0"});
    manager().toggleExpanded("gone");
    std::vector<std::string> steps;
    const auto note = [&](const char *step) { return [&steps, step] { steps.emplace_back(step); }; };
    QObject::connect(&manager(), &DiskManager::disksChanged, &manager(), note("disks"));
    QObject::connect(&manager(), &DiskManager::expandedDisksChanged, &manager(), note("expandedDisks"));
    QObject::connect(&manager(), &DiskManager::efiStatesChanged, &manager(), note("efiStates"));
    QObject::connect(&manager(), &DiskManager::isLoadingDisksChanged, &manager(), note("isLoadingDisks"));
    QObject::connect(&manager(), &DiskManager::hasCompletedInitialScanChanged, &manager(), note("hasCompleted"));
    QObject::connect(&defaults, &UserDefaults::valueChanged, &manager(),
                     [&](const std::string &key) { steps.push_back(key); });

    scan();

    EXPECT_THAT(steps, ElementsAre("isLoadingDisks", "disks", "expandedDisks", "DiskManager.PersistedDisks",
                                   "DiskManager.PersistedExpandedDisks", "efiStates", "isLoadingDisks", "hasCompleted",
                                   "DiskManager.LastRefreshTime"));
}

TEST_F(DiskManagerPersistence, TellsOfTheStatesAtEveryPublishAlsoWhereNothingDiffers)
{
    plugIn({"disk0"});
    scan();
    int told = 0;
    QObject::connect(&manager(), &DiskManager::efiStatesChanged, &manager(), [&] { ++told; });

    scan();

    EXPECT_EQ(told, 1);
}

TEST_F(DiskManagerPersistence, KeepsTheStateOfADiskThatWasUnpluggedWithoutAnEject)
{
    plugIn({"disk0", "disk1"});
    scan();
    plugIn({"disk0"});
    scan();

    EXPECT_THAT(manager().efiStates(), ElementsAre(Pair("disk0", false), Pair("disk1", false)));
}

// --- the throttle

class Throttle : public DiskManagerFixture {
protected:
    /// Whether a refresh of the user scans.
    bool refreshScans()
    {
        const std::size_t before = tools.calls().size();
        blockOn(manager().refresh(false), kPatience);
        return tools.calls().size() > before;
    }
};

TEST_F(Throttle, PassesOverARefreshLessThanTwoSecondsAfterTheLastScan)
{
    plugIn({"disk0"});
    EXPECT_TRUE(refreshScans());

    clock.advance(1999ms);

    EXPECT_FALSE(refreshScans());
    EXPECT_EQ(log.lines().back(), "⏸️ Throttling manual refresh");
}

TEST_F(Throttle, ScansExactlyTwoSecondsLater)
{
    plugIn({"disk0"});
    EXPECT_TRUE(refreshScans());

    clock.advance(2s);

    EXPECT_TRUE(refreshScans());
    EXPECT_THAT(log.lines(), Not(Contains("⏸️ Throttling manual refresh")));
}

TEST_F(Throttle, ReachesAcrossARelaunch)
{
    defaults.set("DiskManager.LastRefreshTime", clock.date() - 1s);
    plugIn({"disk0"});

    EXPECT_FALSE(refreshScans());
}

TEST_F(Throttle, PassesOverAStoredValueThatIsNoDate)
{
    defaults.set("DiskManager.LastRefreshTime", 12.5);
    plugIn({"disk0"});

    EXPECT_EQ(manager().lastRefreshTime(), std::nullopt);
    EXPECT_TRUE(refreshScans());
}

TEST_F(Throttle, IsNotHeldUpByADateThatAClockLeftInTheFuture)
{
    defaults.set("DiskManager.LastRefreshTime", clock.date() + 1h);
    plugIn({"disk0"});

    EXPECT_TRUE(refreshScans());
}

TEST_F(Throttle, DoesNotApplyToAForcedRefresh)
{
    plugIn({"disk0"});
    EXPECT_TRUE(refreshScans());
    const std::size_t before = tools.calls().size();

    blockOn(manager().refresh(true), kPatience);

    EXPECT_GT(tools.calls().size(), before);
}

TEST_F(Throttle, IsNotMovedByAScanThatFindsNoDisk)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    EXPECT_TRUE(refreshScans());

    EXPECT_EQ(manager().lastRefreshTime(), std::nullopt);
    EXPECT_TRUE(refreshScans());
}

} // namespace
} // namespace brindle
