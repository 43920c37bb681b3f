#include "base/VisibleText.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

struct VisibleCase {
    const char *name;
    std::string text;
    std::string visible;
};

class MakesVisible : public testing::TestWithParam<VisibleCase> {};

TEST_P(MakesVisible, WhatAScreenWouldObeyOrHide)
{
    EXPECT_EQ(visibleText(GetParam().text), GetParam().visible);
}

INSTANTIATE_TEST_SUITE_P(VisibleText, MakesVisible,
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

struct InvisibleCase {
    const char *name;
    std::string first;
    std::string last;
    const char *visible;
};

class NamesTheInvisible : public testing::TestWithParam<InvisibleCase> {};

TEST_P(NamesTheInvisible, FromTheFirstToTheLastOfARange)
{
    EXPECT_EQ(visibleText(GetParam().first + GetParam().last), GetParam().visible);
}

INSTANTIATE_TEST_SUITE_P(VisibleText, NamesTheInvisible,
                         testing::Values(InvisibleCase{"SoftHyphen", "\u00AD", "", "<U+00AD>"},
                                         InvisibleCase{"GraphemeJoiner", "\u034F", "", "<U+034F>"},
                                         InvisibleCase{"ArabicNumberSigns", "\u0600", "\u0605", "<U+0600><U+0605>"},
                                         InvisibleCase{"ArabicLetterMark", "\u061C", "", "<U+061C>"},
                                         InvisibleCase{"ArabicEndOfAyah", "\u06DD", "", "<U+06DD>"},
                                         InvisibleCase{"SyriacAbbreviation", "\u070F", "", "<U+070F>"},
                                         InvisibleCase{"ArabicPoundMarks", "\u0890", "\u0891", "<U+0890><U+0891>"},
                                         InvisibleCase{"ArabicDisputedEnd", "\u08E2", "", "<U+08E2>"},
                                         InvisibleCase{"HangulFillers", "\u115F", "\u1160", "<U+115F><U+1160>"},
                                         InvisibleCase{"KhmerVowels", "\u17B4", "\u17B5", "<U+17B4><U+17B5>"},
                                         InvisibleCase{"MongolianSeparator", "\u180E", "", "<U+180E>"},
                                         InvisibleCase{"DirectionMarks", "\u200E", "\u200F", "<U+200E><U+200F>"},
                                         InvisibleCase{"LinesAndEmbeddings", "\u2028", "\u202E", "<U+2028><U+202E>"},
                                         InvisibleCase{"WordJoinerToShapes", "\u2060", "\u206F", "<U+2060><U+206F>"},
                                         InvisibleCase{"HangulFiller", "\u3164", "\uFFA0", "<U+3164><U+FFA0>"},
                                         InvisibleCase{"ByteOrderMark", "\uFEFF", "", "<U+FEFF>"},
                                         InvisibleCase{"Interlinear", "\uFFF9", "\uFFFB", "<U+FFF9><U+FFFB>"},
                                         InvisibleCase{"KaithiSigns", "\U000110BD", "\U000110CD", "<U+110BD><U+110CD>"},
                                         InvisibleCase{"Hieroglyphs", "\U00013430", "\U0001343F", "<U+13430><U+1343F>"},
                                         InvisibleCase{"Shorthand", "\U0001BCA0", "\U0001BCA3", "<U+1BCA0><U+1BCA3>"},
                                         InvisibleCase{"Music", "\U0001D173", "\U0001D17A", "<U+1D173><U+1D17A>"},
                                         InvisibleCase{"Tags", "\U000E0020", "\U000E007F", "<U+E0020><U+E007F>"},
                                         InvisibleCase{"LanguageTag", "\U000E0001", "", "<U+E0001>"}),
                         [](const auto &row) { return row.param.name; });

TEST(VisibleText, LeavesTheNeighboursOfTheInvisibleAlone)
{
    const std::string neighbours = "\u00AC\u00AE\u034E\u0350\u0606\u06DE\u0710\u088E\u08E3\u17B6\u2010\u202F\u3163"
                                   "\uFFA1\U000110BE\U0001342F\U0001BCA4\U0001D172\U0001D17B";

    EXPECT_EQ(visibleText(neighbours), neighbours);
}

TEST(VisibleText, KeepsTheLinesOfAText)
{
    EXPECT_EQ(visibleLines("one\x1b\n\ntwo\n\n"), "one<U+001B>\n\ntwo");
    EXPECT_EQ(visibleLines("one\r\ntwo\rthree"), "one\ntwo<U+000D>three");
    EXPECT_EQ(visibleLines(""), "");
}

} // namespace
} // namespace brindle
