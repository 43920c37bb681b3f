#include "detectors/EFIPartitionReader.h"

#include "base/BlockOn.h"
#include "support/FakeToolRunner.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CandidateCase {
    const char *name;
    std::string_view section;
    std::vector<std::string> candidates;
};

class EFICandidates : public testing::TestWithParam<CandidateCase> {};

TEST_P(EFICandidates, AreThePartitionsOfEFILines)
{
    EXPECT_EQ(EFIPartitionReader::efiCandidates("disk0", GetParam().section), GetParam().candidates);
}

INSTANTIATE_TEST_SUITE_P(
    EFIPartitionReader, EFICandidates,
    testing::Values(CandidateCase{"Plain", "   1:   EFI EFI   209.7 MB   disk0s1", {"disk0s1"}},
                    CandidateCase{
                        "InLineOrder", "1: EFI A 1 MB disk0s6\n2: EFI B 1 MB disk0s1", {"disk0s6", "disk0s1"}},
                    CandidateCase{"OnceForTwoLines", "1: EFI A 1 MB disk0s1\n2: EFI B 1 MB disk0s1", {"disk0s1"}},
                    CandidateCase{"EFIWithAPFS", "1: APPLE_APFS EFI 1 GB disk0s1", {}},
                    CandidateCase{"EFIWithHFS", "1: Apple_HFS My EFI 1 GB disk0s1", {}},
                    CandidateCase{"EFIWithNTFS", "1: Windows_NTFS EFI 1 GB disk0s1", {}},
                    CandidateCase{"EFIWithExFAT", "1: EFI exFAT 1 GB disk0s1", {}},
                    CandidateCase{"LowerCase", "1: efi efi 1 MB disk0s1", {"disk0s1"}},
                    CandidateCase{"ESP", "1: Linux esp 1 MB disk0s1", {"disk0s1"}},
                    CandidateCase{"EFIWithinAWord", "1: Microsoft Basic Data VTOYEFI 1 MB disk0s2", {"disk0s2"}},
                    CandidateCase{"ESPWithinAWord", "1: Linux Respect 1 MB disk0s2", {"disk0s2"}},
                    CandidateCase{"NoEFI", "1: Microsoft Basic Data A 1 MB disk0s2", {}},
                    CandidateCase{"OtherDisk", "1: EFI EFI 1 MB disk1s1", {}},
                    CandidateCase{"LongerDisk", "1: EFI EFI 1 MB disk00s1", {}},
                    CandidateCase{"IdentifierInCapitals", "1: EFI EFI 1 MB DISK0S1", {}},
                    CandidateCase{"IdentifierInTheName", "1: EFI disk0s9 1 MB disk0s1", {"disk0s9"}},
                    CandidateCase{"NoIdentifier", "1: EFI EFI 1 MB", {}},
                    CandidateCase{"InBrackets", "1: EFI EFI 1 MB (disk0s1)", {"disk0s1"}},
                    CandidateCase{"Empty", "", {}}),
    [](const auto &row) { return row.param.name; });

TEST(EFIPartitionReader, FindsTheCandidatesOfAWholeSection)
{
    const std::string list = fixture("diskutil/list-two-systems.txt");

    EXPECT_THAT(EFIPartitionReader::efiCandidates("disk0", list), ElementsAre("disk0s1"));
    EXPECT_THAT(EFIPartitionReader::efiCandidates("disk0", withCarriageReturns(list)), ElementsAre("disk0s1"));
    EXPECT_THAT(EFIPartitionReader::efiCandidates("disk0", fixture("diskutil/list-names-in-isolates.txt")),
                ElementsAre("disk0s4"));
}

// --- what the info tells

EFIPartition partitionOf(std::string_view info)
{
    const auto partition = EFIPartitionReader::readPartitionInfo(info, "disk0s1");
    if (!partition)
        ADD_FAILURE() << "not of a partition: " << info;
    return partition.value_or(EFIPartition{});
}

TEST(EFIPartitionReader, ReadsAMountedPartition)
{
    const EFIPartition partition = partitionOf(fixture("diskutil/info-efi-mounted.txt"));

    EXPECT_EQ(partition.identifier, "disk0s1");
    EXPECT_EQ(partition.mediaUUID, "C3A1F35A-54D4-4C0A-9A0C-4A1D5E2B7F10");
    EXPECT_TRUE(partition.isMounted);
    EXPECT_EQ(partition.mountPoint, "/Volumes/EFI 1");
    EXPECT_EQ(partition.volumeName, "EFI");
}

TEST(EFIPartitionReader, CountsAPartitionWithoutAMountPointAsNotMounted)
{
    for (const std::string &info : {fixture("diskutil/info-efi-unmounted.txt"), std::string("Mount Point:"),
                                    std::string("Mount Point:  Not applicable"), std::string("Mounted: Yes")}) {
        const EFIPartition partition = partitionOf(info);

        EXPECT_FALSE(partition.isMounted) << info;
        EXPECT_EQ(partition.mountPoint, std::nullopt) << info;
    }
}

TEST(EFIPartitionReader, TakesOnlyTheExactWordsNotApplicableAsNoMountPoint)
{
    EXPECT_TRUE(partitionOf("Mount Point: Not applicable (no file system)").isMounted);
}

TEST(EFIPartitionReader, GivesNoNameForAnEmptyOneAndForNotApplicable)
{
    EXPECT_EQ(partitionOf(fixture("diskutil/info-efi-unmounted.txt")).volumeName, std::nullopt);
    EXPECT_EQ(partitionOf("Volume Name: Not applicable").volumeName, std::nullopt);
    EXPECT_EQ(partitionOf("Volume Name: A\nVolume Name:").volumeName, "A");
    EXPECT_EQ(partitionOf("Volume Name: Not applicable (no file system)").volumeName,
              "Not applicable (no file system)");
    EXPECT_EQ(partitionOf("Volume Name: Untitled").volumeName, "Untitled");
}

TEST(EFIPartitionReader, PrefersThePartitionsUUIDInWhicheverOrderTheLinesStand)
{
    EXPECT_EQ(partitionOf("Disk / Partition UUID: P\nVolume UUID: V").mediaUUID, "P");
    EXPECT_EQ(partitionOf("Volume UUID: V\nDisk / Partition UUID: P").mediaUUID, "P");
}

TEST(EFIPartitionReader, FallsBackToTheFirstUUIDOfTheVolume)
{
    EXPECT_EQ(partitionOf("Volume UUID: V\nVolume UUID: W").mediaUUID, "V");
    EXPECT_EQ(partitionOf("").mediaUUID, std::nullopt);
}

TEST(EFIPartitionReader, TakesAnEmptyPartitionUUIDAsPresent)
{
    EXPECT_EQ(partitionOf("Disk / Partition UUID:\nVolume UUID: V").mediaUUID, "");
    EXPECT_EQ(partitionOf("Volume UUID: V\nDisk / Partition UUID:").mediaUUID, "");
}

TEST(EFIPartitionReader, ReadsTheSameBeforeCarriageReturns)
{
    const EFIPartition partition = partitionOf(withCarriageReturns(fixture("diskutil/info-efi-mounted.txt")));

    EXPECT_EQ(partition.mountPoint, "/Volumes/EFI 1");
    EXPECT_EQ(partition.volumeName, "EFI");
}

TEST(EFIPartitionReader, GivesNothingForATextThatSaysItCouldNotBeFound)
{
    EXPECT_FALSE(EFIPartitionReader::readPartitionInfo("disk9s9 could not be found", "disk9s9"));
    EXPECT_TRUE(EFIPartitionReader::readPartitionInfo("Could Not Be Found", "disk9s9"));
}

// --- asking the tool

class EFIPartitionReaderTest : public testing::Test {
protected:
    template <typename T>
    static T resultOf(QCoro::Task<T> task)
    {
        return blockOn(std::move(task), kPatience);
    }

    FakeToolRunner tools;
    EFIPartitionReader reader{tools, ToolPaths::system()};
};

TEST_F(EFIPartitionReaderTest, AsksTheToolAboutThePartition)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", fixture("diskutil/info-efi-mounted.txt"));

    const auto partition = resultOf(reader.partitionInfo("disk0s1"));

    ASSERT_TRUE(partition);
    EXPECT_EQ(partition->identifier, "disk0s1");
    EXPECT_EQ(partition->mountPoint, "/Volumes/EFI 1");
}

TEST_F(EFIPartitionReaderTest, GivesNothingForAnIdentifierThatTheToolDoesNotKnow)
{
    tools.fail("/usr/sbin/diskutil info disk9s9", Error("CommandError", 1, "Could not find disk: disk9s9"));

    EXPECT_FALSE(resultOf(reader.partitionInfo("disk9s9")));
}

TEST_F(EFIPartitionReaderTest, ReadsAllCandidatesInOrderAndKeepsThoseWithARecord)
{
    tools.answer("/usr/sbin/diskutil info disk0s6", "Volume Name: SIX");
    tools.fail("/usr/sbin/diskutil info disk0s1", Error("CommandError", 1, "gone"));
    tools.answer("/usr/sbin/diskutil info disk0s2", "Mount Point: /Volumes/TWO");

    const auto partitions = resultOf(
        reader.efiPartitions("disk0", "1: EFI A 1 MB disk0s6\n2: EFI B 1 MB disk0s1\n3: EFI C 1 MB disk0s2\n"));

    ASSERT_EQ(partitions.size(), 2U);
    EXPECT_EQ(partitions[0].displayName(), "disk0s6 (SIX)");
    EXPECT_EQ(partitions[1].mountPoint, "/Volumes/TWO");
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s6", "/usr/sbin/diskutil info disk0s1",
                                           "/usr/sbin/diskutil info disk0s2"));
}

TEST_F(EFIPartitionReaderTest, AsksNothingForASectionWithoutCandidates)
{
    EXPECT_THAT(resultOf(reader.efiPartitions("disk0", "1: Apple_HFS A 1 GB disk0s1")), IsEmpty());
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(EFIPartitionReaderTest, HandsItsTokenToTheTool)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "Volume Name: EFI");
    tools.hold("/usr/sbin/diskutil info disk0s1");
    const auto token = CancellationToken::cancellable();

    auto reading = reader.efiPartitions("disk0", "1: EFI EFI 1 MB disk0s1", token);
    token.cancel();

    EXPECT_THAT(resultOf(std::move(reading)), IsEmpty());
}

// --- whether a partition is still mounted where it was

struct MountedCase {
    const char *name;
    bool isThere;
    std::optional<std::string> info; ///< nullopt where the tool fails.
    std::optional<std::string> uuid = "A-1";
};

class EFIMounted : public testing::TestWithParam<MountedCase> {};

TEST_P(EFIMounted, WhereItWasOnlyAsTheSamePartition)
{
    FakeToolRunner tools;
    EFIPartitionReader reader{tools, ToolPaths::system()};
    if (GetParam().info)
        tools.answer("/usr/sbin/diskutil info disk2s1", *GetParam().info);

    EXPECT_EQ(blockOn(reader.isMountedThere({.identifier = "disk2s1",
                                             .mediaUUID = GetParam().uuid,
                                             .isMounted = true,
                                             .mountPoint = "/Volumes/EFI"}),
                      kPatience),
              GetParam().isThere);
}

INSTANTIATE_TEST_SUITE_P(
    EFIPartitionReader, EFIMounted,
    testing::Values(MountedCase{"Same", true, "   Mount Point: /Volumes/EFI\n   Disk / Partition UUID: A-1\n"},
                    MountedCase{"WithoutAUUID", true, "   Mount Point: /Volumes/EFI\n", std::nullopt},
                    MountedCase{"Elsewhere", false, "   Mount Point: /Volumes/EFI 1\n   Disk / Partition UUID: A-1\n"},
                    MountedCase{"NotAnyMore", false, "   Mount Point:\n   Disk / Partition UUID: A-1\n"},
                    MountedCase{"AnotherPartition", false,
                                "   Mount Point: /Volumes/EFI\n   Disk / Partition UUID: B-2\n"},
                    MountedCase{"Gone", false, "disk2s1 could not be found\n"}, MountedCase{"NothingTold", false, ""},
                    MountedCase{"FailingTool", false, std::nullopt}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
