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

TEST(DisplayText, CutsNoSequenceOfJoinedCharacters)
{
    EXPECT_EQ(elided("👩\u200D👧!", 4), "…");
    EXPECT_EQ(elided("👩\u200D👧!?", 5), "👩\u200D👧…");
    EXPECT_EQ(elided("a❤\uFE0F\u200D🔥!", 4), "a…");
    EXPECT_EQ(elidedAtStart("!👩\u200D👧", 4), "…");
    EXPECT_EQ(elidedAtStart("?!👩\u200D👧", 5), "…👩\u200D👧");
}

TEST(DisplayText, LeavesNoMarkOfACharacterThatItCutOff)
{
    EXPECT_EQ(elidedAtStart("abe\u0301\u0302fg", 3), "…fg");
    EXPECT_EQ(elidedAtStart("abe\u0301fg", 4), "…e\u0301fg");
}

} // namespace
} // namespace brindle
