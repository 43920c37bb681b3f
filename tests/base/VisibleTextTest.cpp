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

} // namespace
} // namespace brindle
