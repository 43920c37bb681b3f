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

TEST(Words, CutsBetweenCharacters)
{
    EXPECT_EQ(cutToCells("系統保留", 8), "系統保留");
    EXPECT_EQ(cutToCells("系統保留", 7), "系統...");
    EXPECT_EQ(cutToCells("系統保留", 6), "系...");
    EXPECT_EQ(cutToCells("abcdef", 2), "..");
    EXPECT_EQ(cutToCells("abcdef", 0), "");
}

} // namespace
} // namespace brindle::tools
