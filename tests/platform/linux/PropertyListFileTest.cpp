#include "platform/linux/PropertyListFile.h"

#include "base/Text.h"
#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

using Array = PropertyValue::Array;
using Data = PropertyValue::Data;
using Date = PropertyValue::Date;
using Dictionary = PropertyValue::Dictionary;

/// The dictionary of \a text; a failed test and nothing where it is none.
Dictionary dictionaryOf(const std::string &text)
{
    auto result = readPropertyList(text);
    if (const Error *error = std::get_if<Error>(&result)) {
        ADD_FAILURE() << error->localizedDescription() << " in " << text;
        return {};
    }
    return std::get<PropertyList>(result).values;
}

std::string listWith(const std::string &value)
{
    return "<plist><dict><key>Value</key>" + value + "</dict></plist>";
}

Data bytes(std::initializer_list<int> values)
{
    Data result;
    for (const int value : values)
        result.push_back(static_cast<std::byte>(value));
    return result;
}

struct ValueCase {
    const char *name;
    PropertyValue value;
};

class HoldsExactly : public testing::TestWithParam<ValueCase> {};

TEST_P(HoldsExactly, AValue)
{
    const Dictionary values{{"Before", "a"}, {"Value", GetParam().value}, {"X", 1}};

    EXPECT_EQ(dictionaryOf(writePropertyList(values)), values);
}

INSTANTIATE_TEST_SUITE_P(
    Values, HoldsExactly,
    testing::Values(ValueCase{"True", true}, ValueCase{"False", false}, ValueCase{"Zero", 0}, ValueCase{"MinusOne", -1},
                    ValueCase{"TheSmallestInteger", std::numeric_limits<std::int64_t>::min()},
                    ValueCase{"TheGreatestInteger", std::numeric_limits<std::int64_t>::max()},
                    ValueCase{"AWholeReal", 86400.0}, ValueCase{"AReal", 0.30000000000000004},
                    ValueCase{"ATinyReal", 5e-324}, ValueCase{"AHugeReal", 1.7e308},
                    ValueCase{"Infinity", -std::numeric_limits<double>::infinity()}, ValueCase{"AnEmptyText", ""},
                    ValueCase{"AText", "EFI · Größe 💾"}, ValueCase{"MarkupInAText", "<string>&amp;</string>]]> \"'"},
                    ValueCase{"BlanksInAText", "  a\n\tb\r\nc\r "}, ValueCase{"ABlankText", " \n "},
                    ValueCase{"ADirectionMark", "\u2068name\u2069"}, ValueCase{"AByteOrderMark", "\uFEFFa\uFEFF"},
                    ValueCase{"AWholeSecond", Date(1'719'837'296s)}, ValueCase{"ADateBefore1970", Date(-1s)},
                    ValueCase{"ALeapDay", Date(std::chrono::sys_days(std::chrono::year(2024) / 2 / 29))},
                    ValueCase{"ALateDate", Date(std::chrono::floor<std::chrono::seconds>(Date::max()))},
                    ValueCase{"AnEarlyDate", Date(std::chrono::ceil<std::chrono::seconds>(Date::min()))},
                    ValueCase{"NoData", Data{}}, ValueCase{"Data", bytes({0, 1, 10, 60, 127, 128, 255})},
                    ValueCase{"AnEmptyArray", Array{}},
                    ValueCase{"AnArray", Array{true, 1, 1.5, "a", Array{}, Dictionary{}}},
                    ValueCase{"AnEmptyDictionary", Dictionary{}},
                    ValueCase{"ADictionary", Dictionary{{"", 1}, {"<&>", Dictionary{{"a", Array{bytes({1})}}}}}}),
    [](const auto &row) { return row.param.name; });

TEST(PropertyListFile, HoldsARealThatIsNoNumber)
{
    const Dictionary read = dictionaryOf(writePropertyList({{"Value", std::nan("")}}));

    ASSERT_TRUE(read.contains("Value"));
    EXPECT_TRUE(std::isnan(*read.at("Value").as<double>()));
}

TEST(PropertyListFile, LosesOnlyTheFractionOfASecondOfADate)
{
    const Dictionary values{{"After", Date(1'719'837'296s + 999ms)}, {"Before", Date(-1s - 1ms)}};

    const Dictionary read = dictionaryOf(writePropertyList(values));

    EXPECT_EQ(read, (Dictionary{{"After", Date(1'719'837'296s)}, {"Before", Date(-2s)}}));
}

struct TextCase {
    const char *name;
    std::string text;
    const char *held;
};

class HoldsNearly : public testing::TestWithParam<TextCase> {};

TEST_P(HoldsNearly, ATextThatXmlForbids)
{
    const std::string text = GetParam().text;
    const std::string held = GetParam().held;

    const std::string written = writePropertyList({{"A", Array{text}}, {"Key " + text, true}, {"Z", "z"}});

    EXPECT_EQ(dictionaryOf(written), (Dictionary{{"A", Array{held}}, {"Key " + held, true}, {"Z", "z"}}));
    EXPECT_TRUE(isUtf8(written));
}

INSTANTIATE_TEST_SUITE_P(Texts, HoldsNearly,
                         testing::Values(TextCase{"Nul", std::string("a\0b", 3), "a\uFFFDb"},
                                         TextCase{"Controls", "\x01\x1B[31m\x1F", "\uFFFD\uFFFD[31m\uFFFD"},
                                         TextCase{"NoCharacters", "a\uFFFE\uFFFFb", "a\uFFFD\uFFFDb"},
                                         TextCase{"ALatin1Letter",
                                                  "Gr\xF6\xDF"
                                                  "e",
                                                  "Gr\uFFFD\uFFFDe"},
                                         TextCase{"ACutCharacter", "disk \xF0\x9F\x92", "disk \uFFFD\uFFFD\uFFFD"}),
                         [](const auto &row) { return row.param.name; });

TEST(PropertyListFile, IsWrittenInTheFormOfThePlatform)
{
    const std::string read = fixture("plist/every-kind.plist");

    const std::string written = writePropertyList(dictionaryOf(read));

    EXPECT_THAT(written, testing::StartsWith(read.substr(0, read.find("<dict>") + 7)));
    EXPECT_THAT(written, testing::EndsWith("</dict>\n</plist>\n"));
    EXPECT_THAT(written, HasSubstr("\t<key>DiskManager.PersistedExpandedDisks</key>\n"
                                   "\t<array>\n\t\t<string>disk2</string>\n\t\t<string>disk4</string>\n\t</array>\n"));
    EXPECT_THAT(written, HasSubstr("\t<key>Smallest</key>\n\t<integer>-9223372036854775808</integer>\n"));
    EXPECT_THAT(written, HasSubstr("\t<date>2024-07-01T12:34:56Z</date>\n"));
}

TEST(PropertyListFile, KeepsEveryKindApart)
{
    const Dictionary read = dictionaryOf(fixture("plist/every-kind.plist"));

    EXPECT_EQ(read, (Dictionary{
                        {"ShowInternalDisks", true},
                        {"ShowDiskImages", false},
                        {"Smallest", std::numeric_limits<std::int64_t>::min()},
                        {"SUScheduledCheckInterval", 86400.5},
                        {"LaunchMode", "menubar"},
                        {"DiskManager.LastRefreshTime", Date(1'719'837'296s)},
                        {"DiskManager.PersistedDisks", bytes({'[', ']'})},
                        {"DiskManager.PersistedExpandedDisks", Array{"disk2", "disk4"}},
                        {"AutoMountDiskUUIDs", Dictionary{{"5D2E8C1A", "Backup"}}},
                    }));
}

TEST(PropertyListFile, TakesWhatAPersonWrites)
{
    const Dictionary read = dictionaryOf(fixture("plist/edited-by-hand.plist"));

    EXPECT_EQ(read, (Dictionary{
                        {"ShowInternalDisks", true},
                        {"Count", 42},
                        {"Ratio", std::numeric_limits<double>::infinity()},
                        {"Name", "a <b> & <c>💾"},
                        {"Blanks", "  two  "},
                        {"Nothing", ""},
                        {"Data", bytes({0, 1, 2, 3, 4})},
                        {"Empty", Dictionary{}},
                        {"None", Array{}},
                        {"LaunchMode", "window"},
                    }));
}

TEST(PropertyListFile, LeavesOutKeysOfOtherKindsAndReadsTheRest)
{
    const Dictionary read = dictionaryOf(fixture("plist/other-kinds.plist"));

    EXPECT_EQ(read, (Dictionary{
                        {"LaunchMode", "window"},
                        {"Reference", Dictionary{{"CF$UID", 3}}},
                        {"ShowInternalDisks", true},
                    }));
}

struct DamageCase {
    const char *name;
    const char *file;
    const char *reason;
};

class RefusesAsAWhole : public testing::TestWithParam<DamageCase> {};

TEST_P(RefusesAsAWhole, AListThatIs)
{
    const auto result = readPropertyList(fixture(std::string("plist/") + GetParam().file + ".plist"));

    const Error *error = std::get_if<Error>(&result);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "PropertyListError");
    EXPECT_THAT(error->localizedDescription(), testing::StartsWith("line "));
    EXPECT_THAT(error->localizedDescription(), HasSubstr(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Files, RefusesAsAWhole,
    testing::Values(DamageCase{"Empty", "empty", ""}, DamageCase{"PlainText", "plain-text", ""},
                    DamageCase{"Binary", "binary", ""},
                    DamageCase{"AnotherDocument", "other-document", "not a property list"},
                    DamageCase{"WithoutAValue", "no-value", "no dictionary at the top"},
                    DamageCase{"AnArray", "array-at-the-top", "no dictionary at the top"},
                    DamageCase{"TwoValues", "two-values-at-the-top", "more than one value"},
                    DamageCase{"ADictionaryAlone", "dictionary-alone", "not a property list"},
                    DamageCase{"TruncatedInAText", "truncated-in-a-text", ""},
                    DamageCase{"TruncatedBetweenKeys", "truncated-between-keys", ""},
                    DamageCase{"TruncatedBehindTheDictionary", "truncated-behind-the-dictionary", ""},
                    DamageCase{"FollowedByText", "text-behind-the-end", ""},
                    DamageCase{"AnIntegerOfLetters", "integer-of-letters", "not a number"},
                    DamageCase{"AnIntegerWithATail", "integer-with-a-tail", "not a number"},
                    DamageCase{"AnEmptyInteger", "integer-empty", "not a number"},
                    DamageCase{"ARealWithAComma", "real-with-a-comma", "not a number"},
                    DamageCase{"ADateInWords", "date-in-words", "not a date"},
                    DamageCase{"NoSuchDay", "date-without-such-a-day", "not a date"},
                    DamageCase{"NoSuchTime", "date-without-such-a-time", "not a date"},
                    DamageCase{"NotBase64", "data-of-other-characters", "not base64 data"},
                    DamageCase{"ABooleanWithText", "boolean-with-text", "text in a Boolean"},
                    DamageCase{"AnElementInAText", "string-with-an-element", "not a text"},
                    DamageCase{"ALastKeyAlone", "key-without-a-value-at-the-end", "a key without a value"},
                    DamageCase{"AKeyBeforeAKey", "key-without-a-value-in-between", "a key without a value"},
                    DamageCase{"AValueAlone", "value-without-a-key", "a value without a key"},
                    DamageCase{"StrayText", "text-between-values", "text outside of a value"},
                    DamageCase{"AnUndeclaredEntity", "undeclared-entity", "not a text"},
                    DamageCase{"AnUndeclaredEntityBetweenValues", "undeclared-entity-between-values",
                               "text outside of a value"},
                    DamageCase{"AControlCharacter", "control-character", ""}, DamageCase{"NotUtf8", "not-utf-8", ""}),
    [](const auto &row) { return row.param.name; });

TEST(PropertyListFile, RefusesEveryTruncatedList)
{
    const std::string whole = fixture("plist/every-kind.plist");
    const std::size_t end = whole.find("</plist>") + std::string_view("</plist>").size();

    for (std::size_t length = 0; length < end; ++length)
        EXPECT_TRUE(std::holds_alternative<Error>(readPropertyList(whole.substr(0, length)))) << "at " << length;

    EXPECT_TRUE(std::holds_alternative<PropertyList>(readPropertyList(whole.substr(0, end))));
}

TEST(PropertyListFile, NamesTheLineOfTheDamage)
{
    const auto result = readPropertyList(fixture("plist/integer-of-letters.plist"));

    EXPECT_EQ(std::get<Error>(result).localizedDescription(), "line 8: not a number");
}

TEST(PropertyListFile, RefusesAListThatIsNestedWithoutEnd)
{
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "<array>";

    const auto result = readPropertyList(listWith(text));

    EXPECT_THAT(std::get<Error>(result).localizedDescription(), HasSubstr("nested too deeply"));
}

PropertyValue nestedArrays(int depth)
{
    PropertyValue value = Array{};
    for (int i = 1; i < depth; ++i)
        value = Array{value};
    return value;
}

TEST(PropertyListFile, HoldsWhatIsNestedAHundredDeepAndLeavesOutWhatIsDeeper)
{
    EXPECT_EQ(dictionaryOf(writePropertyList({{"Value", nestedArrays(100)}})),
              (Dictionary{{"Value", nestedArrays(100)}}));
    EXPECT_EQ(dictionaryOf(writePropertyList({{"Value", nestedArrays(300)}})),
              (Dictionary{{"Value", nestedArrays(100)}}));
}

TEST(PropertyListFile, DoesNotFollowEntitiesThatGrowWithoutEnd)
{
    std::string text = "<!DOCTYPE plist [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i) {
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int copies = 0; copies < 10; ++copies)
            text += "&a" + std::to_string(i - 1) + ";";
        text += "\">";
    }
    text += "]>" + listWith("<string>&a11;</string>");

    const auto result = readPropertyList(text);

    EXPECT_TRUE(std::holds_alternative<Error>(result));
}

} // namespace
} // namespace brindle
