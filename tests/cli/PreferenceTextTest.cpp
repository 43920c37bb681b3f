#include "cli/PreferenceText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace brindle {
namespace {

PropertyValue::Data dataOf(const std::string &text)
{
    PropertyValue::Data data;
    for (const char character : text)
        data.push_back(static_cast<std::byte>(character));
    return data;
}

const PropertyValue::Date kDate{std::chrono::sys_days{std::chrono::year(2026) / 1 / 31} + std::chrono::hours(8)};

struct TextCase {
    const char *name;
    const char *key;
    PropertyValue value;
    std::string text;
};

class PreferenceAsText : public testing::TestWithParam<TextCase> {};

TEST_P(PreferenceAsText, IsWrittenAndReadBack)
{
    const Preference &preference = *findPreference(GetParam().key);

    EXPECT_EQ(preferenceText(GetParam().value), GetParam().text);
    EXPECT_EQ(preferenceFromText(preference, GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    PreferenceText, PreferenceAsText,
    testing::Values(TextCase{"True", "ShowSMARTStatus", true, "true"},
                    TextCase{"False", "ShowSMARTStatus", false, "false"},
                    TextCase{"Choice", "LaunchMode", "window", "window"},
                    TextCase{"WholeSeconds", "SUScheduledCheckInterval", 604800.0, "604800"},
                    TextCase{"PartsOfASecond", "SUScheduledCheckInterval", 0.5, "0.5"},
                    TextCase{"Date", "DiskManager.LastRefreshTime", kDate, "2026-01-31T08:00:00Z"},
                    TextCase{"Data", "DiskManager.PersistedDisks", dataOf("[ ]"), "[ ]"},
                    TextCase{"Texts", "DiskManager.PersistedExpandedDisks", PropertyValue::Array{"disk0", "disk \"1\""},
                             R"(["disk0","disk \"1\""])"},
                    TextCase{"NoTexts", "DiskManager.PersistedExpandedDisks", PropertyValue::Array(), "[]"},
                    TextCase{"TextsByText", "AutoMountDiskUUIDs", PropertyValue::Dictionary{{"0E239BC6", "Größe"}},
                             R"({"0E239BC6":"Größe"})"}),
    [](const auto &row) { return row.param.name; });

struct RefusedCase {
    const char *name;
    const char *key;
    std::string text;
    std::string legal;
};

class RefusedPreference : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedPreference, HasNoValueAndSaysWhatIsLegal)
{
    const Preference &preference = *findPreference(GetParam().key);

    EXPECT_EQ(preferenceFromText(preference, GetParam().text), std::nullopt);
    EXPECT_EQ(legalValues(preference), GetParam().legal);
}

INSTANTIATE_TEST_SUITE_P(
    PreferenceText, RefusedPreference,
    testing::Values(
        RefusedCase{"NumberForABoolean", "ShowSMARTStatus", "1", "true or false"},
        RefusedCase{"AnotherCase", "ShowSMARTStatus", "True", "true or false"},
        RefusedCase{"NothingForABoolean", "ShowSMARTStatus", "", "true or false"},
        RefusedCase{"NoChoice", "LaunchMode", "dock", "menubar or window"},
        RefusedCase{"NothingForAChoice", "LaunchMode", "", "menubar or window"},
        RefusedCase{"NoSeconds", "SUScheduledCheckInterval", "0", "a number of seconds above 0"},
        RefusedCase{"NegativeSeconds", "SUScheduledCheckInterval", "-5", "a number of seconds above 0"},
        RefusedCase{"EndlessSeconds", "SUScheduledCheckInterval", "inf", "a number of seconds above 0"},
        RefusedCase{"SecondsAndMore", "SUScheduledCheckInterval", "5s", "a number of seconds above 0"},
        RefusedCase{"NoSuchDay", "DiskManager.LastRefreshTime", "2026-02-30T08:00:00Z",
                    "a date such as 2026-01-31T08:00:00Z"},
        RefusedCase{"NoJson", "DiskManager.PersistedDisks", "[", "a JSON array of disks"},
        RefusedCase{"NoDisks", "DiskManager.PersistedDisks", "5", "a JSON array of disks"},
        RefusedCase{"NoWholeDisk", "DiskManager.PersistedDisks", R"([{"identifier": "disk0"}])",
                    "a JSON array of disks"},
        RefusedCase{"YearAfterTheClock", "DiskManager.LastRefreshTime", "9999-12-31T23:59:59Z",
                    "a date such as 2026-01-31T08:00:00Z"},
        RefusedCase{"YearBeforeTheClock", "DiskManager.LastRefreshTime", "1600-12-31T23:59:59Z",
                    "a date such as 2026-01-31T08:00:00Z"},
        RefusedCase{"ControlCharacter", "DiskManager.PersistedExpandedDisks", R"(["disk\u00000"])",
                    "a JSON array of texts"},
        RefusedCase{"ControlCharacterInAKey", "AutoMountDiskUUIDs", R"({"\u0001":"x"})", "a JSON object of texts"},
        RefusedCase{"NumberAmongTexts", "DiskManager.PersistedExpandedDisks", "[\"disk0\",1]", "a JSON array of texts"},
        RefusedCase{"ObjectForTexts", "DiskManager.PersistedExpandedDisks", "{}", "a JSON array of texts"},
        RefusedCase{"ArrayForTextsByText", "AutoMountDiskUUIDs", "[]", "a JSON object of texts"},
        RefusedCase{"NumberByText", "AutoMountDiskUUIDs", "{\"a\":1}", "a JSON object of texts"},
        RefusedCase{"NoUtf8", "AutoMountDiskUUIDs", "{\"a\":\"\xE9\"}", "a JSON object of texts"}),
    [](const auto &row) { return row.param.name; });

TEST(PreferenceText, WritesBytesThatAreNoUtf8AsReplacements)
{
    EXPECT_EQ(preferenceText(PropertyValue::Array{"Gen\xE9rico"}), "[\"Gen\uFFFDrico\"]");
}

} // namespace
} // namespace brindle
