#include "kernel/MountTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MountTable, ReadsTheFieldsOfALine)
{
    const auto entries =
        parseMountTable("36 35 98:0 /mnt1 /mnt2 ro,noatime master:1 - ext3 /dev/root rw,errors=continue\n");

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].device, (DeviceNumber{98, 0}));
    EXPECT_EQ(entries[0].root, "/mnt1");
    EXPECT_EQ(entries[0].mountPoint, "/mnt2");
    EXPECT_EQ(entries[0].fileSystem, "ext3");
    EXPECT_EQ(entries[0].source, "/dev/root");
    EXPECT_EQ(entries[0].options, "rw,errors=continue");
    EXPECT_TRUE(entries[0].isReadOnly);
}

TEST(MountTable, TakesAnyNumberOfOptionalFields)
{
    const auto entries = parseMountTable("1 0 8:1 / /a rw - vfat /dev/sda1 rw\n"
                                         "2 0 8:2 / /b rw shared:1 master:2 propagate_from:3 - vfat /dev/sda2 rw\n");

    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].source, "/dev/sda1");
    EXPECT_EQ(entries[1].source, "/dev/sda2");
}

TEST(MountTable, DecodesTheEscapesOfPaths)
{
    const auto entries = parseMountTable("1 0 8:1 / /mnt/a\\040b\\011c\\012d\\134e rw - vfat /dev/sda1 rw\n");

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].mountPoint, "/mnt/a b\tc\nd\\e");
}

TEST(MountTable, KeepsABackslashThatIsNoEscape)
{
    const auto entries = parseMountTable("1 0 8:1 / /mnt/\\04x\\9 rw - vfat /dev/sda1 rw\n");

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].mountPoint, "/mnt/\\04x\\9");
}

TEST(MountTable, TakesOnlyTheWholeWordForReadOnly)
{
    const auto entries = parseMountTable("1 0 8:1 / /a rw,errors=remount-ro - vfat /dev/sda1 ro\n");

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_FALSE(entries[0].isReadOnly);
}

struct BrokenCase {
    const char *name;
    const char *line;
};

class LeavesOutALine : public testing::TestWithParam<BrokenCase> {};

TEST_P(LeavesOutALine, ThatIsNoEntry)
{
    EXPECT_THAT(parseMountTable(GetParam().line), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Lines, LeavesOutALine,
                         testing::Values(BrokenCase{"Empty", ""}, BrokenCase{"Blank", "\n\n"},
                                         BrokenCase{"NoDeviceNumber", "36 35 98 / /mnt rw - ext3 /dev/root rw"},
                                         BrokenCase{"NegativeNumber", "36 35 -8:1 / /mnt rw - ext3 /dev/root rw"},
                                         BrokenCase{"HugeNumber", "36 35 99999999999:1 / /mnt rw - ext3 /dev/root rw"},
                                         BrokenCase{"NoDash", "36 35 98:0 / /mnt rw ext3 /dev/root rw"},
                                         BrokenCase{"EndsEarly", "36 35 98:0 /"}),
                         [](const auto &info) { return info.param.name; });

MountEntry overlay(std::string options)
{
    return {.device = {},
            .root = "/",
            .mountPoint = "/",
            .fileSystem = "overlay",
            .source = "overlay",
            .options = std::move(options)};
}

TEST(MountTable, ListsTheLayersOfAnOverlayTheReadOnesFirst)
{
    const auto layers = overlayLayers(overlay("rw,upperdir=/up/a,lowerdir=/low/a:/low/b,workdir=/work"));

    EXPECT_THAT(layers, ElementsAre("/low/a", "/low/b", "/up/a"));
}

TEST(MountTable, TakesEscapedSeparatorsAsPartsOfALayer)
{
    const auto layers = overlayLayers(overlay("rw,lowerdir=/low\\:a:/low\\,b"));

    EXPECT_THAT(layers, ElementsAre("/low:a", "/low,b"));
}

TEST(MountTable, LeavesOutLayersThatAreNoAbsolutePaths)
{
    EXPECT_THAT(overlayLayers(overlay("rw,lowerdir=l/ABC:/low:,upperdir=")), ElementsAre("/low"));
}

TEST(MountTable, KnowsNoLayersOfOtherFileSystems)
{
    MountEntry entry = overlay("rw,lowerdir=/low");
    entry.fileSystem = "ext4";

    EXPECT_THAT(overlayLayers(entry), IsEmpty());
}

} // namespace
} // namespace brindle::tools
