#include "records/FindDisk.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

class FindDisk : public testing::Test {
protected:
    const std::vector<PhysicalDisk> disks{
        {.identifier = "disk0"},
        {.identifier = "disk1", .efiPartitions = {{.identifier = "disk1s1"}, {.identifier = "disk1s2"}}},
        {.identifier = "disk10", .efiPartitions = {{.identifier = "disk10s1"}, {.identifier = "disk1s2"}}},
    };
};

TEST_F(FindDisk, FindsADiskByItsWholeIdentifier)
{
    EXPECT_EQ(findDisk(disks, "disk1"), &disks[1]);
    EXPECT_EQ(findDisk(disks, "disk10"), &disks[2]);
    EXPECT_EQ(findDisk(disks, "disk1s1"), nullptr);
    EXPECT_EQ(findDisk({}, "disk1"), nullptr);
}

TEST_F(FindDisk, FindsTheFirstDiskOfAnEFIPartition)
{
    EXPECT_EQ(findDiskOfEFIPartition(disks, "disk10s1"), &disks[2]);
    EXPECT_EQ(findDiskOfEFIPartition(disks, "disk1s2"), &disks[1]);
    EXPECT_EQ(findDiskOfEFIPartition(disks, "disk1"), nullptr);
}

TEST_F(FindDisk, FindsAnEFIPartitionOnADiskOrOnAny)
{
    EXPECT_EQ(findEFIPartition(disks[2], "disk1s2"), &disks[2].efiPartitions[1]);
    EXPECT_EQ(findEFIPartition(disks, "disk1s2"), &disks[1].efiPartitions[1]);
    EXPECT_EQ(findEFIPartition(disks[0], "disk1s2"), nullptr);
    EXPECT_EQ(findEFIPartition(disks, "disk0s1"), nullptr);
}

} // namespace
} // namespace brindle
