#include "inventory/Identifier.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

TEST(Identifier, ReadsDisksAndPartitions)
{
    EXPECT_EQ(parseIdentifier("disk10")->disk, 10U);
    EXPECT_FALSE(parseIdentifier("disk10")->partition);
    EXPECT_EQ(parseIdentifier("disk10s2")->disk, 10U);
    EXPECT_EQ(parseIdentifier("disk10s2")->partition, 2U);
    EXPECT_EQ(parseIdentifier("/dev/disk3s1")->partition, 1U);
}

struct TextCase {
    const char *name;
    const char *text;
};

class TakesNoOtherText : public testing::TestWithParam<TextCase> {};

TEST_P(TakesNoOtherText, AsAnIdentifier)
{
    EXPECT_FALSE(parseIdentifier(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Texts, TakesNoOtherText,
                         testing::Values(TextCase{"Empty", ""}, TextCase{"NoNumber", "disk"},
                                         TextCase{"NoPartitionNumber", "disk1s"}, TextCase{"ThreeLevels", "disk1s1s1"},
                                         TextCase{"Negative", "disk-1"}, TextCase{"Sign", "disk+1"},
                                         TextCase{"MoreBehind", "disk1 "}, TextCase{"UpperCase", "Disk1"},
                                         TextCase{"TooLarge", "disk99999999999999999999"},
                                         TextCase{"KernelName", "sda1"}, TextCase{"OtherPath", "/mnt/disk1"}),
                         [](const auto &info) { return info.param.name; });

TEST(Identifier, IsWrittenAsItIsRead)
{
    EXPECT_EQ(diskIdentifier(7), "disk7");
    EXPECT_EQ(partitionIdentifier("disk7", 12), "disk7s12");
}

} // namespace
} // namespace brindle::tools
