#include "state/SpaceFigures.h"

#include <gmock/gmock.h>

#include <limits>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// --- df

TEST(ParseDfOutput, CountsAVolumeOfAnAPFSSnapshotForItsWholeDisk)
{
    const DiskUsage usage = parseDfOutput(
        "Filesystem    1024-blocks      Used Available Capacity iused      ifree %iused  Mounted on\n"
        "/dev/disk3s1s1  971350180  22345678 500000000     5%  404167 4293000000    0%   /\n"
        "devfs                 206       206         0   100%     714          0  100%   /dev\n"
        "/dev/disk3s5    971350180 400000000 500000000    45% 1234567 5000000000    0%   /System/Volumes/Data\n"
        "/dev/disk0s1       204800      1000    203800     1%       0          0  100%   /Volumes/EFI\n"
        "map auto_home           0         0         0   100%       0          0  100%   /System/Volumes/Data/home\n");

    EXPECT_THAT(usage, ElementsAre(Pair("disk0", ElementsAre(FileSystemUsage{.used = 1000, .total = 204800})),
                                   Pair("disk3", ElementsAre(FileSystemUsage{.used = 22345678, .total = 971350180},
                                                             FileSystemUsage{.used = 400000000, .total = 971350180}))));
}

struct LineCase {
    const char *name;
    const char *line;
    std::size_t disks;
};

class ParsesALineOfDf : public testing::TestWithParam<LineCase> {};

TEST_P(ParsesALineOfDf, OrSkipsIt)
{
    EXPECT_THAT(parseDfOutput(GetParam().line), SizeIs(GetParam().disks));
}

INSTANTIATE_TEST_SUITE_P(
    SpaceFigures, ParsesALineOfDf,
    testing::Values(
        LineCase{"WithFourFields", "/dev/disk1 10 5 5", 1}, LineCase{"WithThreeFields", "/dev/disk1 10 5", 0},
        LineCase{"ParsedByTabsToo", "/dev/disk1\t10\t5\t5", 1}, LineCase{"AfterBlanks", "   /dev/disk1 10 5 5", 1},
        LineCase{"OfAnotherDevice", "/dev/sda1 10 5 5", 0}, LineCase{"OfADiskWithoutNumber", "/dev/disks1 10 5 5", 0},
        LineCase{"WithANumberFurtherOn", "/dev/diskette/disk7s1 10 5 5", 1},
        LineCase{"WithoutATotal", "/dev/disk1 - 5 5", 0}, LineCase{"WithoutAUsed", "/dev/disk1 10 - 5", 0},
        LineCase{"WithAFraction", "/dev/disk1 10.5 5 5", 0}, LineCase{"WithAUnit", "/dev/disk1 10G 5G 5G", 0},
        LineCase{"WithAPlus", "/dev/disk1 +10 +5 5", 1}, LineCase{"WithAMinus", "/dev/disk1 -10 -5 5", 1},
        LineCase{"WithTwoSigns", "/dev/disk1 +-10 5 5", 0}, LineCase{"WithASignAlone", "/dev/disk1 + 5 5", 0},
        LineCase{"WithMoreThanAnIntegerHolds", "/dev/disk1 9223372036854775808 5 5", 0}, LineCase{"OfNothing", "", 0},
        LineCase{"EndingInACarriageReturn", "/dev/disk1 10 5 5\r\n", 1}),
    [](const auto &row) { return row.param.name; });

// --- containers

TEST(ContainerDisks, GivesEachContainerOfTheSectionInLineOrderAndTwiceWhereItStandsTwice)
{
    const auto containers =
        containerDisks("/dev/disk0 (internal, physical):\n"
                       "   2:                 Apple_APFS Container disk3         494.4 GB   disk0s2\n"
                       "   3:                 Apple_APFS Container disk1         5.4 GB     disk0s3\n"
                       "   4:                 Apple_APFS container disk9         5.4 GB     disk0s4\n"
                       "   5:                 Apple_APFS Container disk3         5.4 GB     disk0s5");

    EXPECT_THAT(containers, ElementsAre("disk3", "disk1", "disk3"));
}

TEST(ContainerDisks, GivesNoneForAnEmptySection)
{
    EXPECT_THAT(containerDisks(""), IsEmpty());
}

// --- figures

TEST(SpaceFigures, SumsTheDisksOwnFileSystems)
{
    const DiskUsage usage{{"disk0", {{.used = 1, .total = 10}, {.used = 2, .total = 20}}}};

    EXPECT_EQ(spaceFigures("disk0", {}, usage), (SpaceFigures{.usedSpaceBytes = 3072, .totalSpaceBytes = 30720}));
}

TEST(SpaceFigures, CountsAContainerAsTheSumOfUsedAndTheLargestOfTotals)
{
    const DiskUsage usage{{"disk0", {{.used = 1, .total = 10}, {.used = 1, .total = 10}}},
                          {"disk3", {{.used = 5, .total = 100}, {.used = 6, .total = 90}}}};

    EXPECT_EQ(spaceFigures("disk0", {"disk3"}, usage),
              (SpaceFigures{.usedSpaceBytes = 13 * 1024, .totalSpaceBytes = 120 * 1024}));
}

TEST(SpaceFigures, CountsAContainerTwiceThatIsNamedTwice)
{
    const DiskUsage usage{{"disk3", {{.used = 5, .total = 100}}}};

    EXPECT_EQ(spaceFigures("disk0", {"disk3", "disk3"}, usage),
              (SpaceFigures{.usedSpaceBytes = 10 * 1024, .totalSpaceBytes = 200 * 1024}));
}

TEST(SpaceFigures, CountsADiskThatIsItsOwnContainerAsAContainer)
{
    const DiskUsage usage{{"disk3", {{.used = 5, .total = 100}, {.used = 5, .total = 100}}}};

    EXPECT_EQ(spaceFigures("disk3", {"disk3"}, usage),
              (SpaceFigures{.usedSpaceBytes = 20 * 1024, .totalSpaceBytes = 200 * 1024}));
}

TEST(SpaceFigures, AreAbsentBelowOne)
{
    EXPECT_EQ(spaceFigures("disk0", {}, {}), SpaceFigures());
    EXPECT_EQ(spaceFigures("disk0", {}, {{"disk0", {{.used = 0, .total = 0}}}}), SpaceFigures());
    EXPECT_EQ(spaceFigures("disk0", {}, {{"disk0", {{.used = -1, .total = 1}}}}),
              (SpaceFigures{.usedSpaceBytes = {}, .totalSpaceBytes = 1024}));
}

TEST(SpaceFigures, AreAbsentForASumThatLiesBelowTheSmallestNumber)
{
    const DiskUsage usage{{"disk0", {{.used = kLeast, .total = kLeast}, {.used = kLeast, .total = -1}}}};

    EXPECT_EQ(spaceFigures("disk0", {}, usage), SpaceFigures());
}

TEST(SpaceFigures, StopAtTheLargestNumberInsteadOfOverflowing)
{
    const DiskUsage usage{{"disk0", {{.used = kMost, .total = kMost}, {.used = kMost, .total = kMost / 1024}}}};

    EXPECT_EQ(spaceFigures("disk0", {}, usage), (SpaceFigures{.usedSpaceBytes = kMost, .totalSpaceBytes = kMost}));
}

} // namespace
} // namespace brindle
