#include "text/Words.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kReplaced = "\xEF\xBF\xBD";

struct TextCase {
    const char *name;
    std::string_view raw;
    std::string text;
};

class MakesNamesPrintable : public testing::TestWithParam<TextCase> {};

TEST_P(MakesNamesPrintable, AsOneLineOfUtf8)
{
    EXPECT_EQ(printable(GetParam().raw), GetParam().text);
}

using namespace std::string_view_literals;

INSTANTIATE_TEST_SUITE_P(
    Raw, MakesNamesPrintable,
    testing::Values(
        TextCase{"Empty", "", ""}, TextCase{"Ascii", "EFI - NIXOS", "EFI - NIXOS"},
        TextCase{"TwoThreeAndFourBytes", "é系😀", "é系😀"},
        TextCase{"Nul", "a\0b"sv, "a" + std::string(kReplaced) + "b"},
        TextCase{"Newline", "a\nb", "a" + std::string(kReplaced) + "b"},
        TextCase{"Delete", "a\x7F", "a" + std::string(kReplaced)},
        TextCase{"NextLineOfC1", "a\xC2\x85", "a" + std::string(kReplaced)},
        TextCase{"LineSeparator", "a\xE2\x80\xA8", "a" + std::string(kReplaced)},
        TextCase{"RightToLeftOverride", "gnp\u202Eexe", "gnp" + std::string(kReplaced) + "exe"},
        TextCase{"Isolate", "\u2066a\u2069", std::string(kReplaced) + "a" + std::string(kReplaced)},
        TextCase{"ZeroWidthSpace", "E\u200BFI", "E" + std::string(kReplaced) + "FI"},
        TextCase{"ByteOrderMark", "\uFEFFEFI", std::string(kReplaced) + "EFI"},
        TextCase{"JoinerOfEmoji", "👩\u200D👧", "👩\u200D👧"}, TextCase{"MarkOnALetter", "e\u0301", "e\u0301"},
        TextCase{"Latin1", "\xE9t\xE9", std::string(kReplaced) + "t" + std::string(kReplaced)},
        TextCase{"CutSequence", "a\xE7\xB3", "a" + std::string(kReplaced) + std::string(kReplaced)},
        TextCase{"Overlong", "\xC0\xAF", std::string(kReplaced) + std::string(kReplaced)},
        TextCase{"Surrogate", "\xED\xA0\x80", std::string(kReplaced) + std::string(kReplaced) + std::string(kReplaced)},
        TextCase{"AboveUnicode", "\xF4\x90\x80\x80",
                 std::string(kReplaced) + std::string(kReplaced) + std::string(kReplaced) + std::string(kReplaced)}),
    [](const auto &info) { return info.param.name; });

struct SizeCase {
    const char *name;
    std::uint64_t bytes;
    const char *text;
};

class PrintsSizes : public testing::TestWithParam<SizeCase> {};

TEST_P(PrintsSizes, InDecimalUnitsWithOneDigit)
{
    EXPECT_EQ(sizeText(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Sizes, PrintsSizes,
                         testing::Values(SizeCase{"Nothing", 0, "0 B"}, SizeCase{"LastOfBytes", 999, "999 B"},
                                         SizeCase{"FirstOfKilobytes", 1000, "1.0 KB"},
                                         SizeCase{"Kilobytes", 20480, "20.5 KB"},
                                         SizeCase{"Megabytes", 209715200, "209.7 MB"},
                                         SizeCase{"Gigabytes", 500277790720, "500.3 GB"},
                                         SizeCase{"KeepsTheUnitWhenRoundedUp", 999'960'000'000, "1000.0 GB"},
                                         SizeCase{"Terabytes", 1'000'555'581'440, "1.0 TB"},
                                         SizeCase{"TheLargest", ~std::uint64_t{0}, "18.4 EB"}),
                         [](const auto &info) { return info.param.name; });

struct CellsCase {
    const char *name;
    const char *text;
    std::size_t cells;
};

class CountsCells : public testing::TestWithParam<CellsCase> {};

TEST_P(CountsCells, AsATerminalShowsThem)
{
    EXPECT_EQ(cellCount(GetParam().text), GetParam().cells);
}

INSTANTIATE_TEST_SUITE_P(Texts, CountsCells,
                         testing::Values(CellsCase{"Ascii", "EFI", 3}, CellsCase{"Accents", "Größe", 5},
                                         CellsCase{"MarkOnALetter", "e\u0301", 1}, CellsCase{"Ideographs", "系統", 4},
                                         CellsCase{"Hangul", "한국", 4}, CellsCase{"FullWidthLetters", "ＥＦＩ", 6},
                                         CellsCase{"Rocket", "🚀", 2}, CellsCase{"Watch", "⌚", 2},
                                         CellsCase{"JoinedEmoji", "👩\u200D👧", 4}, CellsCase{"Thai", "ดิ", 1},
                                         CellsCase{"Replaced", "\uFFFD", 1}, CellsCase{"HalfWidthKana", "ｱ", 1}),
                         [](const auto &info) { return info.param.name; });

TEST(Words, CutsBetweenCharacters)
{
    EXPECT_EQ(cutToCells("系統保留", 8), "系統保留");
    EXPECT_EQ(cutToCells("系統保留", 7), "系統...");
    EXPECT_EQ(cutToCells("系統保留", 6), "系...");
    EXPECT_EQ(cutToCells("e\u0301e\u0301e\u0301e\u0301e\u0301", 5), "e\u0301e\u0301e\u0301e\u0301e\u0301");
    EXPECT_EQ(cutToCells("e\u0301e\u0301e\u0301e\u0301e\u0301", 4), "e\u0301...");
    EXPECT_EQ(cutToCells("abcdef", 2), "..");
    EXPECT_EQ(cutToCells("abcdef", 0), "");
}

} // namespace
} // namespace brindle::tools
