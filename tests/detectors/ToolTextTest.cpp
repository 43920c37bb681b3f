#include "detectors/ToolText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace brindle {
namespace {

using std::string_view_literals::operator""sv;

TEST(ToolText, GivesTheValueBehindALabelTrimmed)
{
    EXPECT_EQ(ToolText::valueOf("Protocol:   USB \t", "Protocol:"), "USB");
    EXPECT_EQ(ToolText::valueOf("Protocol:", "Protocol:"), "");
    EXPECT_EQ(ToolText::valueOf("Protocol: a: b", "Protocol:"), "a: b");
}

TEST(ToolText, RemovesTheLabelWhereverItStandsInTheLine)
{
    EXPECT_EQ(ToolText::valueOf("Whole: a Whole: b", "Whole:"), "a  b");
}

TEST(ToolText, GivesNoValueOfALineThatBeginsWithSomethingElse)
{
    EXPECT_EQ(ToolText::valueOf("The Protocol: USB", "Protocol:"), std::nullopt);
    EXPECT_EQ(ToolText::valueOf("protocol: USB", "Protocol:"), std::nullopt);
    EXPECT_EQ(ToolText::valueOf("Proto", "Protocol:"), std::nullopt);
}

TEST(ToolText, TakesOnlyTheExactWordsNotApplicableAsNothing)
{
    EXPECT_FALSE(ToolText::isGiven(""));
    EXPECT_FALSE(ToolText::isGiven("Not applicable"));
    EXPECT_TRUE(ToolText::isGiven("Not applicable (no file system)"));
    EXPECT_TRUE(ToolText::isGiven("not applicable"));
}

struct PartitionCase {
    const char *name;
    std::string_view text;
    std::string_view disk;
    std::optional<std::string_view> partition;
};

class PartitionInAText : public testing::TestWithParam<PartitionCase> {};

TEST_P(PartitionInAText, IsTheFirstOneOfTheDisk)
{
    EXPECT_EQ(ToolText::partitionIn(GetParam().text, GetParam().disk), GetParam().partition);
}

INSTANTIATE_TEST_SUITE_P(ToolText, PartitionInAText,
                         testing::Values(PartitionCase{"Plain", "EFI 209.7 MB disk0s1", "disk0", "disk0s1"},
                                         PartitionCase{"AllDigits", "disk10s12", "disk10", "disk10s12"},
                                         PartitionCase{"Snapshot", "disk1s5s1", "disk1", "disk1s5"},
                                         PartitionCase{"Glued", "xdisk1s5y", "disk1", "disk1s5"},
                                         PartitionCase{"OtherDiskFirst", "disk2s1 disk1s7", "disk1", "disk1s7"},
                                         PartitionCase{"LongerNumber", "disk11s1", "disk1", std::nullopt},
                                         PartitionCase{"NoDigits", "disk1s disk1sx disk1s3", "disk1", "disk1s3"},
                                         PartitionCase{"WholeDisk", "disk1", "disk1", std::nullopt},
                                         PartitionCase{"OtherCase", "DISK1S1", "disk1", std::nullopt},
                                         PartitionCase{"Empty", "", "disk1", std::nullopt},
                                         PartitionCase{"CutShort", "disk1s", "disk1", std::nullopt}),
                         [](const auto &row) { return row.param.name; });

TEST(ToolText, FindsTheFirstNumberedStem)
{
    EXPECT_EQ(ToolText::numbered("/dev/disk12 (x)", "/dev/disk"), "/dev/disk12");
    EXPECT_EQ(ToolText::numbered("diskdisk3", "disk"), "disk3");
    EXPECT_EQ(ToolText::numbered("disk", "disk"), std::nullopt);
}

TEST(ToolText, FindsTheContainerOfALine)
{
    EXPECT_EQ(ToolText::containerIn("2: Apple_APFS Container disk12 500.1 GB disk0s2"), "disk12");
    EXPECT_EQ(ToolText::containerIn("\u2068Container disk3\u2069"), "disk3");
    EXPECT_EQ(ToolText::containerIn("APFS Container Scheme - +500.1 GB disk1"), std::nullopt);
    EXPECT_EQ(ToolText::containerIn("container disk1"), std::nullopt);
    EXPECT_EQ(ToolText::containerIn("Container  disk1"), std::nullopt);
    EXPECT_EQ(ToolText::containerIn("Container diskX Container disk4"), "disk4");
}

struct SizeCase {
    const char *name;
    std::string_view text;
    std::optional<std::size_t> position;
};

class SizeInAText : public testing::TestWithParam<SizeCase> {};

TEST_P(SizeInAText, BeginsAtItsFirstDigit)
{
    EXPECT_EQ(ToolText::positionOfSize(GetParam().text), GetParam().position);
}

INSTANTIATE_TEST_SUITE_P(
    ToolText, SizeInAText,
    testing::Values(SizeCase{"Plain", "Data 500.3 GB", 5}, SizeCase{"Whole", "Data 8 TB", 5},
                    SizeCase{"Kilobytes", "24.6 KB", 0}, SizeCase{"Megabytes", "24.6 MB", 0},
                    SizeCase{"Starred", "*500.3 GB", 1}, SizeCase{"PointWithoutFraction", "x 5. GB", 2},
                    SizeCase{"FractionAlone", ".5 GB", 1}, SizeCase{"ThreeParts", "1.2.3 GB", 2},
                    SizeCase{"TwoPoints", "1..2 GB", 3}, SizeCase{"SeveralBlanks", "5 \t  GB", 0},
                    SizeCase{"OtherBlanks", "5\v\f\rGB", 0}, SizeCase{"NoBlank", "5GB", std::nullopt},
                    SizeCase{"BlankBehindThePoint", "5 .5 GB", 3}, SizeCase{"Bytes", "5 B", std::nullopt},
                    SizeCase{"LowerCase", "5 gb", std::nullopt}, SizeCase{"LongerUnit", "5 GBx", 0},
                    SizeCase{"VersionInTheName", "10.14 250.0 GB", 6}, SizeCase{"NumberInTheName", "Disk 7 8 GB", 7},
                    SizeCase{"UnitInTheName", "64 GB Stick 62.0 GB", 0}, SizeCase{"NoDigits", "GB", std::nullopt},
                    SizeCase{"CutInTheUnit", "5.0 G", std::nullopt}, SizeCase{"CutAtTheBlank", "5.0 ", std::nullopt},
                    SizeCase{"Empty", "", std::nullopt}),
    [](const auto &row) { return row.param.name; });

TEST(ToolText, KeepsEachTextOnceInTheOrderOfAppearance)
{
    ToolText::DistinctTexts texts;
    for (const auto text : {"b"sv, "a"sv, "b"sv, "c"sv, "a"sv})
        texts.add(text);

    EXPECT_THAT(texts.list(), testing::ElementsAre("b", "a", "c"));
    EXPECT_TRUE(texts.contains("c"));
    EXPECT_FALSE(texts.contains("d"));
}

} // namespace
} // namespace brindle
