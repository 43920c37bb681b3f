#include "cli/DisplayText.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

struct WidthCase {
    const char *name;
    std::string text;
    std::size_t cells;
};

class MeasuresText : public testing::TestWithParam<WidthCase> {};

TEST_P(MeasuresText, InCellsOfATerminal)
{
    EXPECT_EQ(displayWidth(GetParam().text), GetParam().cells);
}

INSTANTIATE_TEST_SUITE_P(DisplayText, MeasuresText,
                         testing::Values(WidthCase{"Empty", "", 0}, WidthCase{"Ascii", "EFI", 3},
                                         WidthCase{"Accents", "Macintosh été", 13},
                                         WidthCase{"CombiningMark", "e\u0301", 1}, WidthCase{"Cjk", "无标题", 6},
                                         WidthCase{"Emoji", "💾", 2}, WidthCase{"Mixed", "a无💾", 5}),
                         [](const auto &row) { return row.param.name; });

struct VisibleCase {
    const char *name;
    std::string text;
    std::string visible;
};

class MakesVisible : public testing::TestWithParam<VisibleCase> {};

TEST_P(MakesVisible, WhatATerminalWouldObeyOrHide)
{
    EXPECT_EQ(visibleText(GetParam().text), GetParam().visible);
}

INSTANTIATE_TEST_SUITE_P(DisplayText, MakesVisible,
                         testing::Values(VisibleCase{"PlainText", "Größe 无 💾", "Größe 无 💾"},
                                         VisibleCase{"EscapeSequence", "\x1b[31mred", "<U+001B>[31mred"},
                                         VisibleCase{"Newline", "two\nlines", "two<U+000A>lines"},
                                         VisibleCase{"EightBitControl", "\u009B31m", "<U+009B>31m"},
                                         VisibleCase{"Isolates", "\u2068EFI\u2069", "<U+2068>EFI<U+2069>"},
                                         VisibleCase{"RightToLeftOverride", "gnp\u202Eexe", "gnp<U+202E>exe"},
                                         VisibleCase{"ZeroWidthSpace", "E\u200BFI", "E<U+200B>FI"},
                                         VisibleCase{"NoUtf8", "Gen\xE9rico", "Gen\uFFFDrico"},
                                         VisibleCase{"CutShort", "EFI\xE2\x80", "EFI\uFFFD\uFFFD"},
                                         VisibleCase{"FamilyOfEmoji", "👩\u200D👧", "👩\u200D👧"}),
                         [](const auto &row) { return row.param.name; });

TEST(DisplayText, CutsByCellsAndNeverThroughAWideCharacter)
{
    EXPECT_EQ(elided("Macintosh HD", 12), "Macintosh HD");
    EXPECT_EQ(elided("Macintosh HD", 6), "Macin…");
    EXPECT_EQ(elided("无标题卷", 6), "无标…");
    EXPECT_EQ(elided("无标题卷", 5), "无标…");
    EXPECT_EQ(elided("EFI", 1), "…");
    EXPECT_EQ(elided("EFI", 0), "");
}

TEST(DisplayText, KeepsTheEndOfAPath)
{
    EXPECT_EQ(elidedAtStart("/Volumes/EFI", 12), "/Volumes/EFI");
    EXPECT_EQ(elidedAtStart("/Volumes/EFI", 5), "…/EFI");
    EXPECT_EQ(elidedAtStart("/Volumes/无标", 5), "…无标");
    EXPECT_EQ(elidedAtStart("/Volumes/无标", 4), "…标");
    EXPECT_EQ(elidedAtStart("/Volumes/EFI", 0), "");
}

TEST(DisplayText, KeepsTheMarksOfTheLastCharacterWhenItCuts)
{
    EXPECT_EQ(elided("ae\u0301iou", 3), "ae\u0301…");
}

} // namespace
} // namespace brindle
