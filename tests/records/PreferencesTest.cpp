#include "records/Preferences.h"

#include "support/MemoryUserDefaults.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

using Type = Preference::Type;

const Preference &preferenceOf(const std::string &key)
{
    const Preference *preference = findPreference(key);
    if (preference == nullptr)
        throw std::out_of_range(key);
    return *preference;
}

/// What a key of the table tells: the value that the program acts by and the one that a view shows where none was
/// ever written.
struct KeyCase {
    const char *key;
    Type type;
    std::optional<PropertyValue> whenMissing;
    std::optional<bool> shownWhenMissing = {};
};

const std::vector<KeyCase> &keyCases()
{
    static const std::vector<KeyCase> cases{
        {"PreferencesInitialized", Type::boolean, false, false},
        {"ShowInternalDisks", Type::boolean, true, true},
        {"ShowExternalDisks", Type::boolean, true, true},
        {"ShowRemovableDisks", Type::boolean, true, true},
        {"ShowDiskImages", Type::boolean, false, false},
        {"ShowNotifications", Type::boolean, false, true},
        {"AutoOpenFinderOnMount", Type::boolean, true, true},
        {"AutoOpenConfigOnMount", Type::boolean, false, false},
        {"OpenEFIOnNotificationClick", Type::boolean, false, true},
        {"EnableGlobalHotkey", Type::boolean, false, false},
        {"ShowDiskSpaceIndicator", Type::boolean, false, false},
        {"showDiskSpaceIndicator", Type::boolean, false, false},
        {"ShowSMARTStatus", Type::boolean, false, false},
        {"LaunchMode", Type::text, "menubar"},
        {"IsModeSwitchRelaunch", Type::boolean, false, false},
        {"HasLaunchedBefore", Type::boolean, false, false},
        {"HasRunBundleIDMigration", Type::boolean, false, false},
        {"AutoMountDiskUUIDs", Type::textsByText, PropertyValue::Dictionary()},
        {"DiskManager.LastRefreshTime", Type::date, std::nullopt},
        {"DiskManager.PersistedDisks", Type::data, std::nullopt},
        {"DiskManager.PersistedExpandedDisks", Type::texts, std::nullopt},
        {"LaunchAtLogin", Type::boolean, false, false},
        {"SUEnableAutomaticChecks", Type::boolean, std::nullopt, false},
        {"SUScheduledCheckInterval", Type::seconds, std::nullopt},
        {"SUAutomaticallyUpdate", Type::boolean, std::nullopt, false},
        {"SUShowReleaseNotes", Type::boolean, std::nullopt, false},
        {"SUEnableSystemProfiling", Type::boolean, std::nullopt, false},
    };
    return cases;
}

class PreferenceNeverWritten : public testing::TestWithParam<KeyCase> {};

TEST_P(PreferenceNeverWritten, IsReadAndShownAsItsDefault)
{
    const MemoryUserDefaults defaults;
    const Preference &preference = preferenceOf(GetParam().key);

    EXPECT_EQ(preference.type, GetParam().type);
    EXPECT_EQ(readPreference(defaults, preference), GetParam().whenMissing);
    if (GetParam().shownWhenMissing)
        EXPECT_EQ(isShownOn(defaults, preference.key), *GetParam().shownWhenMissing);
}

INSTANTIATE_TEST_SUITE_P(Preferences, PreferenceNeverWritten, testing::ValuesIn(keyCases()), [](const auto &row) {
    std::string name = row.param.key;
    std::erase(name, '.');
    return fmt::format("{}{}", row.index, name); // two differ by the case of a letter
});

TEST(Preferences, AreExactlyTheKeysOfTheTable)
{
    std::vector<std::string> expected;
    for (const KeyCase &one : keyCases())
        expected.emplace_back(one.key);

    std::vector<std::string> keys;
    for (const Preference &preference : allPreferences())
        keys.push_back(preference.key);

    EXPECT_THAT(keys, UnorderedElementsAreArray(expected));
    EXPECT_EQ(findPreference("Showinternaldisks"), nullptr);
    EXPECT_EQ(findPreference(""), nullptr);
}

TEST(Preferences, ShowDisksButImagesAndNoNotificationsInAnEmptyStoreUntilTheFirstRun)
{
    MemoryUserDefaults defaults;
    EXPECT_TRUE(isOn(defaults, "ShowInternalDisks"));
    EXPECT_TRUE(isOn(defaults, "ShowExternalDisks"));
    EXPECT_TRUE(isOn(defaults, "ShowRemovableDisks"));
    EXPECT_FALSE(isOn(defaults, "ShowDiskImages"));
    EXPECT_FALSE(isOn(defaults, "ShowNotifications"));

    initializePreferences(defaults);

    EXPECT_TRUE(isOn(defaults, "ShowNotifications"));
    EXPECT_FALSE(isOn(defaults, "ShowDiskImages"));
}

TEST(Preferences, AreResetInSixKeysAndNoOtherWhenTheMarkOfTheFirstRunAloneIsGone)
{
    MemoryUserDefaults defaults;
    for (const KeyCase &one : keyCases()) {
        if (one.type == Type::boolean)
            defaults.set(one.key, one.whenMissing != PropertyValue(true));
    }
    defaults.remove("PreferencesInitialized");
    std::vector<std::string> written;
    QObject::connect(&defaults, &UserDefaults::valueChanged, &defaults,
                     [&](const std::string &key) { written.push_back(key); });

    initializePreferences(defaults);
    initializePreferences(defaults);

    // "ShowNotifications" was on before and stays so.
    EXPECT_THAT(written, ElementsAre("ShowInternalDisks", "ShowExternalDisks", "ShowRemovableDisks", "ShowDiskImages",
                                     "AutoOpenFinderOnMount", "PreferencesInitialized"));
    EXPECT_EQ(defaults.object("ShowDiskImages"), PropertyValue(false));
    EXPECT_EQ(defaults.object("ShowNotifications"), PropertyValue(true));
}

TEST(Preferences, CountAValueOfAnotherTypeAsMissingForAnObjectRead)
{
    MemoryUserDefaults defaults;
    defaults.set("ShowInternalDisks", 0);
    defaults.set("AutoOpenFinderOnMount", "NO");
    defaults.set("ShowDiskImages", 1);
    defaults.set("LaunchMode", true);
    defaults.set("AutoMountDiskUUIDs", PropertyValue::Dictionary{{"uuid", 1}});

    EXPECT_TRUE(isOn(defaults, "ShowInternalDisks"));
    EXPECT_TRUE(isOn(defaults, "AutoOpenFinderOnMount"));
    EXPECT_FALSE(isOn(defaults, "ShowDiskImages"));
    EXPECT_EQ(readPreference(defaults, preferenceOf("LaunchMode")), PropertyValue("menubar"));
    EXPECT_EQ(readPreference(defaults, preferenceOf("AutoMountDiskUUIDs")), PropertyValue(PropertyValue::Dictionary()));
}

TEST(Preferences, TakeNumbersAndWordsForABooleanInAPlainRead)
{
    MemoryUserDefaults defaults;
    defaults.set("ShowNotifications", 1);
    defaults.set("ShowSMARTStatus", "YES");
    defaults.set("EnableGlobalHotkey", PropertyValue::Array{true});

    EXPECT_TRUE(isOn(defaults, "ShowNotifications"));
    EXPECT_TRUE(isOn(defaults, "ShowSMARTStatus"));
    EXPECT_FALSE(isOn(defaults, "EnableGlobalHotkey"));
}

TEST(Preferences, ActAsOffAndAreShownAsOnUntilTheyAreTurnedOffAndOn)
{
    MemoryUserDefaults defaults;
    initializePreferences(defaults);
    EXPECT_TRUE(isShownOn(defaults, "OpenEFIOnNotificationClick"));
    EXPECT_FALSE(isOn(defaults, "OpenEFIOnNotificationClick"));

    defaults.set("OpenEFIOnNotificationClick", false);
    EXPECT_FALSE(isShownOn(defaults, "OpenEFIOnNotificationClick"));
    defaults.set("OpenEFIOnNotificationClick", true);

    EXPECT_TRUE(isShownOn(defaults, "OpenEFIOnNotificationClick"));
    EXPECT_TRUE(isOn(defaults, "OpenEFIOnNotificationClick"));
}

TEST(Preferences, ShowTheDefaultOfTheViewForAValueOfAnotherType)
{
    MemoryUserDefaults defaults;
    defaults.set("ShowNotifications", 0);
    defaults.set("ShowSMARTStatus", 1);

    EXPECT_TRUE(isShownOn(defaults, "ShowNotifications"));
    EXPECT_FALSE(isShownOn(defaults, "ShowSMARTStatus"));
}

TEST(Preferences, KeepTheTwoKeysApartThatDifferByTheCaseOfALetter)
{
    MemoryUserDefaults defaults;

    defaults.set("ShowDiskSpaceIndicator", true);

    EXPECT_TRUE(isOn(defaults, "ShowDiskSpaceIndicator"));
    EXPECT_FALSE(isOn(defaults, "showDiskSpaceIndicator"));
}

TEST(Preferences, AreLegalOnlyInTheirTypeAndAmongTheirChoices)
{
    EXPECT_TRUE(isLegal(preferenceOf("LaunchMode"), "window"));
    EXPECT_FALSE(isLegal(preferenceOf("LaunchMode"), "Window"));
    EXPECT_FALSE(isLegal(preferenceOf("LaunchMode"), true));
    EXPECT_FALSE(isLegal(preferenceOf("ShowSMARTStatus"), 1));
    EXPECT_TRUE(isLegal(preferenceOf("SUScheduledCheckInterval"), 86400.0));
    EXPECT_FALSE(isLegal(preferenceOf("SUScheduledCheckInterval"), 0.0));
    EXPECT_FALSE(isLegal(preferenceOf("DiskManager.PersistedExpandedDisks"), PropertyValue::Array{"disk0", 1}));
    EXPECT_TRUE(isLegal(preferenceOf("DiskManager.PersistedExpandedDisks"), PropertyValue::Array{"disk0", "disk1"}));
}

TEST(Preferences, RefuseAKeyThatIsNoBooleanWhereABooleanIsAskedFor)
{
    const MemoryUserDefaults defaults;

    EXPECT_THROW(static_cast<void>(isOn(defaults, "LaunchMode")), std::logic_error);
    EXPECT_THROW(static_cast<void>(isOn(defaults, "ShowEverything")), std::logic_error);
}

} // namespace
} // namespace brindle
