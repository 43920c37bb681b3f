#include "base/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

std::vector<std::string> linesOf(std::string_view text)
{
    std::vector<std::string> result;
    for (const std::string_view line : Lines(text))
        result.emplace_back(line);
    return result;
}

TEST(Text, SplitsAtNewlinesAndCountsACarriageReturnIn)
{
    EXPECT_EQ(linesOf("one\ntwo\r\nthree"), (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(linesOf("one\n\n"), (std::vector<std::string>{"one", "", ""}));
    EXPECT_EQ(linesOf(""), (std::vector<std::string>{""}));
    EXPECT_EQ(linesOf("a\rb"), (std::vector<std::string>{"a\rb"}));
}

TEST(Text, TrimsBlanksTabsAndCarriageReturns)
{
    EXPECT_EQ(trimmed(" \t\r name \r"), "name");
    EXPECT_EQ(trimmed(" \t"), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(Text, IsTrimmedOfNewlinesOnlyWhereThatIsAskedFor)
{
    EXPECT_EQ(trimmed("\n name \n"), "\n name \n");
    EXPECT_EQ(trimmedWithNewlines(" \n\tfirst\nsecond \r\n \n"), "first\nsecond");
    EXPECT_EQ(trimmedWithNewlines("\r\n"), "");
}

TEST(Text, LowersAndRaisesAsciiAlone)
{
    EXPECT_EQ(lowerCased("NTFS ÄÖ 42"), "ntfs ÄÖ 42");
    EXPECT_EQ(upperCased("efi äö 42"), "EFI äö 42");
}

TEST(Text, TellsWhetherAWordStandsInIt)
{
    EXPECT_TRUE(contains("a  efi b", " efi "));
    EXPECT_TRUE(contains("a", ""));
    EXPECT_FALSE(contains("a  EFI b", " efi "));
    EXPECT_FALSE(contains("", "a"));
    EXPECT_TRUE(contains(std::string_view("a\0b", 3), "b"));
}

TEST(Text, FindsAWordInAnyCase)
{
    EXPECT_EQ(findIgnoringCase("1: APPLE_hfs Data", "apple_hfs"), 3U);
    EXPECT_EQ(findIgnoringCase("1: Apple", "apple_hfs"), std::string_view::npos);
    EXPECT_EQ(findIgnoringCase("", "a"), std::string_view::npos);
}

TEST(Text, RemovesEveryOccurrenceOfAWord)
{
    EXPECT_EQ(without("A - Data - Data", " - Data"), "A");
    EXPECT_EQ(without("nothing", " - Data"), "nothing");
}

struct Utf8Case {
    const char *name;
    std::string bytes;
    bool valid;
};

class TellsUtf8 : public testing::TestWithParam<Utf8Case> {};

TEST_P(TellsUtf8, FromOtherBytes)
{
    EXPECT_EQ(isUtf8(GetParam().bytes), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(
    Text, TellsUtf8,
    testing::Values(Utf8Case{"Empty", "", true}, Utf8Case{"Ascii", "disk0", true},
                    Utf8Case{"TwoBytes", "Gen\xC3\xA9rico", true}, Utf8Case{"ThreeBytes", "\xE2\x80\xA2", true},
                    Utf8Case{"FourBytes", "\xF0\x9F\x92\xBE", true},
                    Utf8Case{"LastCodePoint", "\xF4\x8F\xBF\xBF", true},
                    Utf8Case{"BeyondTheLast", "\xF4\x90\x80\x80", false}, Utf8Case{"Overlong", "\xC0\xAF", false},
                    Utf8Case{"OverlongThree", "\xE0\x80\xAF", false}, Utf8Case{"Surrogate", "\xED\xA0\x80", false},
                    Utf8Case{"CutShort", "\xE2\x80", false}, Utf8Case{"LoneContinuation", "a\x80", false},
                    Utf8Case{"Latin1", "Gen\xE9rico", false}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
