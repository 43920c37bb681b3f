#include "detectors/DiskDetector.h"

#include "detectors/DiskDetectorFixture.h"
#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>

namespace brindle {
namespace {

using testing::ElementsAre;
using DiskFacts = DiskDetector::DiskFacts;
using DiskType = PhysicalDisk::DiskType;

/// The facts of disk2, whose info text is the line that makes it a whole disk, and \a lines.
DiskFacts factsOf(std::string_view lines)
{
    const auto facts = DiskDetector::readDiskInfo("   Whole:  Yes\n" + std::string(lines), "disk2");
    if (!facts)
        ADD_FAILURE() << "not of a whole disk: " << lines;
    return facts.value_or(DiskFacts{});
}

// --- which texts are of a whole disk

TEST(DiskInfo, OfAPartitionGivesNothing)
{
    EXPECT_FALSE(DiskDetector::readDiskInfo(fixture("diskutil/info-efi-mounted.txt"), "disk0s1"));
}

TEST(DiskInfo, WithoutTheLabelWholeGivesNothing)
{
    EXPECT_FALSE(DiskDetector::readDiskInfo("   Device / Media Name:  Yes\n", "disk2"));
    EXPECT_FALSE(DiskDetector::readDiskInfo("", "disk2"));
}

TEST(DiskInfo, TakesTheLastOfSeveralLinesOnWholeness)
{
    EXPECT_TRUE(DiskDetector::readDiskInfo("Whole: No\nWhole: Yes", "disk2"));
    EXPECT_FALSE(DiskDetector::readDiskInfo("Whole: Yes\nWhole: No", "disk2"));
}

TEST(DiskInfo, TellsNothingButTheIdentifierAtFirst)
{
    const DiskFacts facts = factsOf("");

    EXPECT_EQ(facts.name, "DISK2");
    EXPECT_EQ(facts.size, "Unknown");
    EXPECT_EQ(facts.fileSystem, "Unknown");
    EXPECT_EQ(facts.mountPoint, std::nullopt);
    EXPECT_FALSE(facts.isRemovable);
    EXPECT_TRUE(facts.isWritable);
    EXPECT_EQ(facts.smartStatus, SMARTStatus::unknown);
    EXPECT_FALSE(facts.isSolidState);
    EXPECT_FALSE(facts.trimSupported);
    EXPECT_EQ(facts.protocol, "");
    EXPECT_EQ(facts.location, "");
    EXPECT_EQ(facts.mediaUUID, std::nullopt);
}

// --- the labels, one by one

struct TextCase {
    const char *name;
    const char *lines;
    std::string DiskFacts::*field;
    const char *value;
};

class TextOfTheInfo : public testing::TestWithParam<TextCase> {};

TEST_P(TextOfTheInfo, FollowsTheRuleOfItsLabel)
{
    EXPECT_EQ(factsOf(GetParam().lines).*GetParam().field, GetParam().value);
}

constexpr auto kName = &DiskFacts::name;
constexpr auto kSize = &DiskFacts::size;
constexpr auto kFileSystem = &DiskFacts::fileSystem;
constexpr auto kProtocol = &DiskFacts::protocol;
constexpr auto kLocation = &DiskFacts::location;

INSTANTIATE_TEST_SUITE_P(
    DiskInfo, TextOfTheInfo,
    testing::Values(
        TextCase{"Name", "   Device / Media Name:   Example SSD  ", kName, "Example SSD"},
        TextCase{"EmptyName", "Device / Media Name:  ", kName, "DISK2"},
        TextCase{"EmptyNameBehindAName", "Device / Media Name: A\nDevice / Media Name:", kName, "A"},
        TextCase{"LaterName", "Device / Media Name: A\nDevice / Media Name: B", kName, "B"},
        TextCase{"NameWithALabelInIt", "Device / Media Name: My Protocol: USB", kName, "My Protocol: USB"},
        TextCase{"NameLabelInOtherCase", "device / media name: A", kName, "DISK2"},
        TextCase{"NameInIsolates", "Device / Media Name: \u2068A\u2069", kName, "\u2068A\u2069"},
        TextCase{"TotalSizeKeepsWhatStandsBeforeTheBracket", "Total Size: 500.1 GB (500107862016 Bytes) (exactly)",
                 kSize, "500.1 GB"},
        TextCase{"SizeWithoutABracket", "Total Size:  500.1 GB ", kSize, "500.1 GB"},
        TextCase{"LaterDiskSizeReplacesTotalSize", "Total Size: 1 GB (1)\nDisk Size: 2 GB (2)", kSize, "2 GB"},
        TextCase{"LaterTotalSizeReplacesDiskSize", "Disk Size: 2 GB (2)\nTotal Size: 1 GB (1)", kSize, "1 GB"},
        TextCase{"EmptySize", "Disk Size:", kSize, ""},
        TextCase{"SizeThatIsABracket", "Disk Size: (unknown)", kSize, ""},
        TextCase{"Content", "Content (IOContent): GUID_partition_scheme", kFileSystem, "GUID_partition_scheme"},
        TextCase{"EmptyContent", "Content (IOContent):", kFileSystem, ""},
        TextCase{"Personality", "File System Personality: ExFAT", kFileSystem, "ExFAT"},
        TextCase{"EmptyPersonality", "File System Personality:", kFileSystem, "Unknown"},
        TextCase{"Bundle", "Type (Bundle): exfat", kFileSystem, "exfat"},
        TextCase{"ContentBehindPersonality", "File System Personality: ExFAT\nContent (IOContent): None", kFileSystem,
                 "None"},
        TextCase{"PersonalityBehindContent", "Content (IOContent): None\nFile System Personality: ExFAT", kFileSystem,
                 "None"},
        TextCase{"PersonalityBehindEmptyContent", "Content (IOContent):\nFile System Personality: ExFAT", kFileSystem,
                 ""},
        TextCase{"BundleBehindPersonality", "File System Personality: ExFAT\nType (Bundle): exfat", kFileSystem,
                 "ExFAT"},
        TextCase{"PersonalityBehindUnknownContent", "Content (IOContent): Unknown\nFile System Personality: ExFAT",
                 kFileSystem, "ExFAT"},
        TextCase{"Protocol", "Protocol: PCI-Express", kProtocol, "PCI-Express"},
        TextCase{"LaterEmptyProtocol", "Protocol: USB\nProtocol:", kProtocol, ""},
        TextCase{"Location", "Device Location: Internal", kLocation, "Internal"},
        TextCase{"LaterLocation", "Device Location: Internal\nDevice Location: \"Bay 4\"", kLocation, "\"Bay 4\""}),
    [](const auto &row) { return row.param.name; });

struct OptionalCase {
    const char *name;
    const char *lines;
    std::optional<std::string> DiskFacts::*field;
    std::optional<std::string> value;
};

class OptionalOfTheInfo : public testing::TestWithParam<OptionalCase> {};

TEST_P(OptionalOfTheInfo, FollowsTheRuleOfItsLabel)
{
    EXPECT_EQ(factsOf(GetParam().lines).*GetParam().field, GetParam().value);
}

constexpr auto kMountPoint = &DiskFacts::mountPoint;
constexpr auto kMediaUUID = &DiskFacts::mediaUUID;

INSTANTIATE_TEST_SUITE_P(
    DiskInfo, OptionalOfTheInfo,
    testing::Values(
        OptionalCase{"MountPoint", "Mount Point: /Volumes/My Disk", kMountPoint, "/Volumes/My Disk"},
        OptionalCase{"EmptyMountPoint", "Mount Point:", kMountPoint, std::nullopt},
        OptionalCase{"MountPointNotApplicable", "Mount Point: Not applicable", kMountPoint, std::nullopt},
        OptionalCase{"MountPointNotApplicableWithAReason", "Mount Point: Not applicable (no file system)", kMountPoint,
                     "Not applicable (no file system)"},
        OptionalCase{"MountPointStaysBehindAnEmptyOne", "Mount Point: /A\nMount Point:\nMount Point: Not applicable",
                     kMountPoint, "/A"},
        OptionalCase{"PartitionUUID", "Disk / Partition UUID: P", kMediaUUID, "P"},
        OptionalCase{"EmptyPartitionUUIDIsPresent", "Disk / Partition UUID:", kMediaUUID, ""},
        OptionalCase{"VolumeUUID", "Volume UUID: V", kMediaUUID, "V"},
        OptionalCase{"VolumeUUIDBehindPartitionUUID", "Disk / Partition UUID: P\nVolume UUID: V", kMediaUUID, "P"},
        OptionalCase{"PartitionUUIDBehindVolumeUUID", "Volume UUID: V\nDisk / Partition UUID: P", kMediaUUID, "P"},
        OptionalCase{"VolumeUUIDBehindEmptyPartitionUUID", "Disk / Partition UUID:\nVolume UUID: V", kMediaUUID, ""},
        OptionalCase{"FirstOfTwoVolumeUUIDs", "Volume UUID: V\nVolume UUID: W", kMediaUUID, "V"}),
    [](const auto &row) { return row.param.name; });

struct FlagCase {
    const char *name;
    const char *lines;
    bool DiskFacts::*field;
    bool value;
};

class FlagOfTheInfo : public testing::TestWithParam<FlagCase> {};

TEST_P(FlagOfTheInfo, IsYesOnlyByThatVeryWord)
{
    EXPECT_EQ(factsOf(GetParam().lines).*GetParam().field, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    DiskInfo, FlagOfTheInfo,
    testing::Values(FlagCase{"Removable", "Removable Media: Yes", &DiskFacts::isRemovable, true},
                    FlagCase{"RemovableInAnotherWord", "Removable Media: Removable", &DiskFacts::isRemovable, false},
                    FlagCase{"RemovableInLowerCase", "Removable Media: yes", &DiskFacts::isRemovable, false},
                    FlagCase{"RemovableThenFixed", "Removable Media: Yes\nRemovable Media: Fixed",
                             &DiskFacts::isRemovable, false},
                    FlagCase{"YesInsideAWord", "Removable Media: Yesterday", &DiskFacts::isRemovable, true},
                    FlagCase{"ReadOnly", "Read-Only Media: Yes", &DiskFacts::isWritable, false},
                    FlagCase{"Writable", "Read-Only Media: Yes\nRead-Only Media: No", &DiskFacts::isWritable, true},
                    FlagCase{"ReadOnlyForAReason", "Read-Only Media: Yes (switch)", &DiskFacts::isWritable, false},
                    FlagCase{"SolidState", "Solid State: Yes", &DiskFacts::isSolidState, true},
                    FlagCase{"SolidStateUnknown", "Solid State: Info not available", &DiskFacts::isSolidState, false},
                    FlagCase{"Trim", "TRIM Support: Yes", &DiskFacts::trimSupported, true},
                    FlagCase{"NoTrim", "TRIM Support: Yes\nTRIM Support: No", &DiskFacts::trimSupported, false}),
    [](const auto &row) { return row.param.name; });

struct HealthCase {
    const char *name;
    const char *line;
    SMARTStatus status;
};

class HealthOfTheInfo : public testing::TestWithParam<HealthCase> {};

TEST_P(HealthOfTheInfo, FollowsTheToolsWord)
{
    EXPECT_EQ(factsOf(GetParam().line).smartStatus, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    DiskInfo, HealthOfTheInfo,
    testing::Values(HealthCase{"Verified", "SMART Status:  Verified", SMARTStatus::verified},
                    HealthCase{"InCapitals", "SMART Status: VERIFIED", SMARTStatus::verified},
                    HealthCase{"Failing", "SMART Status: Failing", SMARTStatus::failing},
                    HealthCase{"NotSupported", "SMART Status: Not Supported", SMARTStatus::notSupported},
                    HealthCase{"EmptyIsUnknown", "SMART Status:", SMARTStatus::unknown},
                    HealthCase{"AWordNeverSeenIsNotSupported", "SMART Status: Dubious", SMARTStatus::notSupported},
                    HealthCase{"EmptyBehindFailing", "SMART Status: Failing\nSMART Status:", SMARTStatus::unknown}),
    [](const auto &row) { return row.param.name; });

TEST(DiskInfo, ReadsRepeatedLabelsInAnyOrder)
{
    const auto facts = DiskDetector::readDiskInfo(fixture("diskutil/info-stick-labels-repeated.txt"), "disk4");

    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->name, "Example Stick");
    EXPECT_EQ(facts->size, "7.9 GB");
    EXPECT_EQ(facts->fileSystem, "Windows_FAT_32");
    EXPECT_EQ(facts->mountPoint, "/Volumes/STICK");
    EXPECT_TRUE(facts->isRemovable);
    EXPECT_TRUE(facts->isWritable);
    EXPECT_EQ(facts->smartStatus, SMARTStatus::notSupported);
    EXPECT_EQ(facts->protocol, "Secure Digital");
    EXPECT_EQ(facts->location, "\"Bay 4\"");
    EXPECT_EQ(facts->mediaUUID, "6D1A1F5E-0000-4000-8000-0000000000AA");
}

TEST(DiskInfo, OfAnyFixtureReadsTheSameBeforeCarriageReturns)
{
    const std::string info = fixture("diskutil/info-internal-ssd.txt");

    const auto facts = DiskDetector::readDiskInfo(withCarriageReturns(info), "disk0");

    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->name, "EXAMPLE SSD 1TB");
    EXPECT_EQ(facts->size, "1.0 TB");
    EXPECT_EQ(facts->protocol, "PCI-Express");
    EXPECT_EQ(facts->smartStatus, SMARTStatus::verified);
}

// --- the type

struct TypeCase {
    const char *name;
    const char *lines;
    bool isDiskImage;
    DiskType type;
};

class TypeOfTheInfo : public testing::TestWithParam<TypeCase> {};

TEST_P(TypeOfTheInfo, IsTheFirstThatFits)
{
    EXPECT_EQ(DiskDetector::diskType(factsOf(GetParam().lines), GetParam().isDiskImage), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(
    DiskInfo, TypeOfTheInfo,
    testing::Values(
        TypeCase{"NothingKnown", "", false, DiskType::physicalInternal},
        TypeCase{"Image", "Removable Media: Yes\nProtocol: USB", true, DiskType::diskImage},
        TypeCase{"RemovableOnUSB", "Removable Media: Yes\nProtocol: USB", false, DiskType::removable},
        TypeCase{"USB", "Protocol: USB\nDevice Location: Internal", false, DiskType::physicalExternal},
        TypeCase{"USBWithinAWord", "Protocol: xusb4", false, DiskType::physicalExternal},
        TypeCase{"Thunderbolt", "Protocol: THUNDERBOLT", false, DiskType::physicalExternal},
        TypeCase{"External", "Protocol: SATA\nDevice Location: External", false, DiskType::physicalExternal},
        TypeCase{"LaterLocationIsABay", "Device Location: External\nDevice Location: \"Bay 4\"", false,
                 DiskType::physicalInternal},
        TypeCase{"Internal", "Protocol: PCI\nDevice Location: Internal", false, DiskType::physicalInternal}),
    [](const auto &row) { return row.param.name; });

// --- the record

TEST_F(DiskDetectorTest, MakesTheRecordOfAnInternalDisk)
{
    const std::string info = fixture("diskutil/info-internal-ssd.txt");
    tools.answer("/usr/sbin/diskutil info disk0", info);

    const auto record = resultOf(detector.diskRecord("disk0", ""));

    EXPECT_EQ(record.info, info);
    ASSERT_TRUE(record.disk);
    const PhysicalDisk &disk = *record.disk;
    EXPECT_EQ(disk.identifier, "disk0");
    EXPECT_EQ(disk.name, "EXAMPLE SSD 1TB");
    EXPECT_EQ(disk.size, "1.0 TB");
    EXPECT_EQ(disk.fileSystem, "GUID_partition_scheme");
    EXPECT_EQ(disk.mountPoint, std::nullopt);
    EXPECT_EQ(disk.mediaUUID, std::nullopt);
    EXPECT_EQ(disk.volumeName, std::nullopt);
    EXPECT_FALSE(disk.isRemovable);
    EXPECT_TRUE(disk.isWritable);
    EXPECT_EQ(disk.diskType, DiskType::physicalInternal);
    EXPECT_FALSE(disk.isDiskImage);
    EXPECT_EQ(disk.smartStatus, SMARTStatus::verified);
    EXPECT_TRUE(disk.isSolidState);
    EXPECT_TRUE(disk.trimSupported);
    EXPECT_EQ(disk.busProtocol, "PCI-Express");
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0"));
    EXPECT_THAT(log.lines(), ElementsAre("Created disk: EXAMPLE SSD 1TB (disk0) - Volume: none"));
}

TEST_F(DiskDetectorTest, LeavesToOthersWhatTheTextDoesNotTell)
{
    tools.answer("/usr/sbin/diskutil info disk0", fixture("diskutil/info-internal-ssd.txt"));

    const auto record = resultOf(detector.diskRecord("disk0", fixture("diskutil/list-two-systems.txt")));

    ASSERT_TRUE(record.disk);
    EXPECT_TRUE(record.disk->efiPartitions.empty());
    EXPECT_FALSE(record.disk->isBootDisk);
    EXPECT_FALSE(record.disk->hasMacOS || record.disk->hasOpenCore || record.disk->hasClover ||
                 record.disk->hasWindows || record.disk->hasLinux || record.disk->hasExFAT);
    EXPECT_EQ(record.disk->totalSpaceBytes, std::nullopt);
    EXPECT_EQ(record.disk->usedSpaceBytes, std::nullopt);
}

TEST_F(DiskDetectorTest, MakesAStickRemovableAndNotExternal)
{
    tools.answer("/usr/sbin/diskutil info disk2", "Whole: Yes\nProtocol: USB\nRemovable Media: Yes\nMount Point: /A\n"
                                                  "Disk / Partition UUID: P\nRead-Only Media: Yes\n");

    const auto record = resultOf(detector.diskRecord("disk2", ""));

    ASSERT_TRUE(record.disk);
    EXPECT_EQ(record.disk->diskType, DiskType::removable);
    EXPECT_TRUE(record.disk->isRemovable);
    EXPECT_FALSE(record.disk->isWritable);
    EXPECT_EQ(record.disk->mountPoint, "/A");
    EXPECT_EQ(record.disk->mediaUUID, "P");
    EXPECT_EQ(record.disk->busProtocol, "USB");
}

TEST_F(DiskDetectorTest, TellsADiskImageByItsSection)
{
    tools.answer("/usr/sbin/diskutil info disk5", "Whole: Yes\nProtocol: Disk Image\nRemovable Media: Yes\n");

    const auto image = resultOf(detector.diskRecord("disk5", fixture("diskutil/list-disk-image.txt")));
    const auto withoutSection = resultOf(detector.diskRecord("disk5", ""));

    ASSERT_TRUE(image.disk);
    ASSERT_TRUE(withoutSection.disk);
    EXPECT_EQ(image.disk->diskType, DiskType::diskImage);
    EXPECT_TRUE(image.disk->isDiskImage);
    EXPECT_FALSE(image.disk->isRemovable);
    EXPECT_EQ(image.disk->volumeName, "Installer");
    EXPECT_EQ(withoutSection.disk->diskType, DiskType::removable);
    EXPECT_FALSE(withoutSection.disk->isDiskImage);
}

TEST_F(DiskDetectorTest, TellsADiskImageByItsInfoAlone)
{
    tools.answer("/usr/sbin/diskutil info disk5", "Whole: Yes\nWhat: (disk image)\nContent (IOContent): GPT\n");

    const auto record = resultOf(detector.diskRecord("disk5", ""));

    ASSERT_TRUE(record.disk);
    EXPECT_TRUE(record.disk->isDiskImage);
}

TEST_F(DiskDetectorTest, LogsTheLabelOfTheDisk)
{
    tools.answer("/usr/sbin/diskutil info disk5", "Whole: Yes\n");

    (void)resultOf(detector.diskRecord("disk5", fixture("diskutil/list-disk-image.txt")));

    EXPECT_THAT(log.lines(), ElementsAre("Created disk: DISK5 (disk5) - Volume: Installer"));
}

TEST_F(DiskDetectorTest, DropsTheDiskWhenItsInfoToolFails)
{
    tools.fail("/usr/sbin/diskutil info disk2", Error("CommandError", 1, "Could not find disk: disk2"));

    const auto record = resultOf(detector.diskRecord("disk2", fixture("diskutil/list-two-systems.txt")));

    EXPECT_FALSE(record.disk);
    EXPECT_EQ(record.info, "");
    EXPECT_THAT(log.lines(), ElementsAre("Failed to get info for disk2: Could not find disk: disk2"));
}

TEST_F(DiskDetectorTest, RunsNoFurtherToolForWhatIsNoWholeDisk)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", fixture("diskutil/info-efi-mounted.txt"));

    const auto record = resultOf(detector.diskRecord("disk0s1", fixture("diskutil/list-two-systems.txt")));

    EXPECT_FALSE(record.disk);
    EXPECT_EQ(record.info, fixture("diskutil/info-efi-mounted.txt"));
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s1"));
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
} // namespace brindle
