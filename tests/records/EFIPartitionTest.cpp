#include "records/EFIPartition.h"
#include "support/SampleDisks.h"

#include <gtest/gtest.h>

#include <functional>

namespace brindle {
namespace {

TEST(EFIPartition, DisplaysItsNameInBracketsBehindTheIdentifier)
{
    const EFIPartition partition{.identifier = "disk0s1", .volumeName = "NO NAME"};

    EXPECT_EQ(partition.displayName(), "disk0s1 (NO NAME)");
}

TEST(EFIPartition, WithAnEmptyVolumeNameDisplaysAsItsIdentifierAlone)
{
    const EFIPartition partition{.identifier = "disk0s1", .volumeName = ""};

    EXPECT_EQ(partition.displayName(), "disk0s1");
}

TEST(EFIPartition, WithoutAVolumeNameDisplaysAsItsIdentifierAlone)
{
    EXPECT_EQ(EFIPartition{.identifier = "disk0s1"}.displayName(), "disk0s1");
}

TEST(EFIPartition, EqualsOneThatDiffersInPlaceNameAndUUID)
{
    const EFIPartition partition{.identifier = "disk0s1", .isMounted = true};
    const EFIPartition other{.identifier = "disk0s1",
                             .mediaUUID = "6D1A1F5E",
                             .isMounted = true,
                             .mountPoint = "/Volumes/EFI 1",
                             .volumeName = "EFI"};

    EXPECT_EQ(partition, other);
    EXPECT_EQ(std::hash<EFIPartition>{}(partition), std::hash<EFIPartition>{}(other));
}

TEST(EFIPartition, DiffersFromAnotherIdentifierAndFromTheMountedState)
{
    const EFIPartition partition{.identifier = "disk0s1"};
    const EFIPartition another{.identifier = "disk0s2"};
    const EFIPartition mounted{.identifier = "disk0s1", .isMounted = true};

    EXPECT_NE(partition, another);
    EXPECT_NE(partition, mounted);
    EXPECT_NE(std::hash<EFIPartition>{}(partition), std::hash<EFIPartition>{}(another));
    EXPECT_NE(std::hash<EFIPartition>{}(partition), std::hash<EFIPartition>{}(mounted));
}

TEST(EFIPartition, KeepsEveryFieldThereAndBack)
{
    const EFIPartition partition = completeDisk().efiPartitions.front();

    const EFIPartition restored = EFIPartition::fromSerialized(partition.toSerializable());

    EXPECT_EQ(restored.identifier, partition.identifier);
    EXPECT_EQ(restored.mediaUUID, partition.mediaUUID);
    EXPECT_EQ(restored.isMounted, partition.isMounted);
    EXPECT_EQ(restored.mountPoint, partition.mountPoint);
    EXPECT_EQ(restored.volumeName, partition.volumeName);
}

} // namespace
} // namespace brindle
