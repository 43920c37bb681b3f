// The rules by which the words of a text are weighed.

#include "detectors/FilesystemDetector.h"

#include "detectors/FilesystemDetectorFixture.h"
#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TextCase {
    const char *name;
    std::string_view text;
    FilesystemFlags flags;
    std::vector<std::string> findings;
};

void expectAnalysis(const TextReader &reader, const TextCase &row)
{
    const Analysis analysis = analysisOf(reader, row.text);

    EXPECT_EQ(analysis.flags, row.flags);
    EXPECT_EQ(analysis.findings, row.findings);
}

std::string nameOf(const testing::TestParamInfo<TextCase> &row)
{
    return row.param.name;
}

// --- the content of a whole disk

constexpr const char *kContentNTFS = "   ✅ Windows detected in Content field: NTFS";
constexpr const char *kContentSystem = "   ✅ Windows detected in Content field: Windows system partition";
constexpr const char *kContentBasicData =
    "   ✅ Windows detected in Content field: Microsoft Basic Data with Windows context";

class ContentValue : public testing::TestWithParam<TextCase> {};

TEST_P(ContentValue, IsWeighed)
{
    expectAnalysis(kMainDiskInfo, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    FilesystemDetector, ContentValue,
    testing::Values(
        TextCase{"APFS", "   Content (IOContent):   Apple_APFS", kMacOS, {}},
        TextCase{"HFS", "   Content (IOContent):   Apple_HFS", kMacOS, {}},
        TextCase{"HFSPlus", "   Content (IOContent):   HFS+", kMacOS, {}},
        TextCase{"BareHFSOfNoSystem", "   Content (IOContent):   HFS", kNoSystem, {}},
        TextCase{"Scheme", "   Content (IOContent):   GUID_partition_scheme", kNoSystem, {}},
        TextCase{"NTFS", "   Content (IOContent):   Windows_NTFS", kWindows, {kContentNTFS}},
        TextCase{"NTFSOfTuxera", "   Content (IOContent):   NTFS (Tuxera)", kNoSystem, {}},
        TextCase{"NTFSOfParagon", "   Content (IOContent):   Paragon NTFS", kNoSystem, {}},
        TextCase{"DriverNamedOnAnotherLine", "Content (IOContent): NTFS\nTuxera", kWindows, {kContentNTFS}},
        TextCase{"Reserved", "   Content (IOContent):   Microsoft Reserved", kWindows, {kContentSystem}},
        TextCase{"Recovery", "   Content (IOContent):   Windows Recovery", kWindows, {kContentSystem}},
        TextCase{"NTFSBeforeRecovery", "Content (IOContent): Windows Recovery NTFS", kWindows, {kContentNTFS}},
        TextCase{"RecoveryBehindNTFSOfTuxera",
                 "Content (IOContent): Windows Recovery NTFS Tuxera",
                 kWindows,
                 {kContentSystem}},
        TextCase{"BasicDataAlone", "   Content (IOContent):   Microsoft Basic Data", kNoSystem, {}},
        TextCase{"WindowsAlone", "   Content (IOContent):   Windows", kNoSystem, {}},
        TextCase{
            "BasicDataWithWindows", "Content (IOContent): Microsoft Basic Data Windows", kWindows, {kContentBasicData}},
        TextCase{"BasicDataWithNTFSOfParagon",
                 "Content (IOContent): Microsoft Basic Data NTFS Paragon",
                 kWindows,
                 {kContentBasicData}},
        TextCase{"RecoveryBeforeBasicData",
                 "Content (IOContent): Microsoft Basic Data Windows Recovery",
                 kWindows,
                 {kContentSystem}},
        TextCase{"ExFAT", "   Content (IOContent):   exFAT", kExFAT, {}},
        TextCase{"EachTestOnItsOwn",
                 "Content (IOContent): Apple_APFS exFAT Linux NTFS",
                 kMacOS | kWindows | kLinux | kExFAT,
                 {kContentNTFS, "   ✅ Linux detected in Content field: linux"}},
        TextCase{"LabelInOtherCase", "CONTENT (iocontent): ntfs", kWindows, {kContentNTFS}},
        TextCase{"LabelWithinALine", "see Content (IOContent): NTFS", kWindows, {kContentNTFS}},
        TextCase{"ValueOnTheNextLine", "Content (IOContent):\nNTFS", kNoSystem, {}},
        TextCase{"SecondLabel", "Content (IOContent): None\nContent (IOContent): NTFS", kNoSystem, {}},
        TextCase{"NoLabel", "NTFS Apple_APFS Linux exFAT", kNoSystem, {}}, TextCase{"Empty", "", kNoSystem, {}}),
    nameOf);

// --- the personality of a whole disk

constexpr const char *kPersonalityMacOS = "   ✅ macOS detected in Personality field";
constexpr const char *kPersonalityNTFS = "   ✅ Windows detected in Personality: NTFS";
constexpr const char *kPersonalityExFAT = "   ✅ ExFAT detected in Personality field";

class PersonalityValue : public testing::TestWithParam<TextCase> {};

TEST_P(PersonalityValue, IsWeighed)
{
    expectAnalysis(kMainDiskInfo, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    FilesystemDetector, PersonalityValue,
    testing::Values(
        TextCase{"APFS", "   File System Personality:   APFS", kMacOS, {kPersonalityMacOS}},
        TextCase{"HFS", "   File System Personality:   Journaled HFS", kMacOS, {kPersonalityMacOS}},
        TextCase{"MacOSBeforeTheOthers", "File System Personality: NTFS exFAT APFS", kMacOS, {kPersonalityMacOS}},
        TextCase{"NTFS", "   File System Personality:   NTFS", kWindows, {kPersonalityNTFS}},
        TextCase{"NTFSOfTuxera", "   File System Personality:   Tuxera NTFS", kNoSystem, {}},
        TextCase{"NTFSOfParagon", "   File System Personality:   NTFS Paragon", kNoSystem, {}},
        TextCase{"NTFSBeforeExFAT", "File System Personality: exFAT NTFS", kWindows, {kPersonalityNTFS}},
        TextCase{"ExFATBehindNTFSOfTuxera", "File System Personality: Tuxera NTFS exFAT", kExFAT, {kPersonalityExFAT}},
        TextCase{"ExFAT", "   File System Personality:   ExFAT", kExFAT, {kPersonalityExFAT}},
        TextCase{"FAT32", "   File System Personality:   MS-DOS FAT32", kNoSystem, {}},
        TextCase{"LinuxBesideMacOS",
                 "File System Personality: HFS ext4",
                 kMacOS | kLinux,
                 {kPersonalityMacOS, "   ✅ Linux detected in Personality: ext"}},
        TextCase{"LinuxBesideNTFS",
                 "File System Personality: NTFS xfs",
                 kWindows | kLinux,
                 {kPersonalityNTFS, "   ✅ Linux detected in Personality: xfs"}},
        TextCase{"LinuxBesideExFAT",
                 "File System Personality: exFAT btrfs",
                 kLinux | kExFAT,
                 {kPersonalityExFAT, "   ✅ Linux detected in Personality: btrfs"}},
        TextCase{"ExtWithinAWord",
                 "File System Personality: Extended Journal",
                 kLinux,
                 {"   ✅ Linux detected in Personality: ext"}},
        TextCase{"LinuxAsABareWord", "   File System Personality:   Linux", kNoSystem, {}},
        TextCase{"OnlyItsLine", "File System Personality: None\nAPFS NTFS exFAT ext4", kNoSystem, {}},
        TextCase{"BehindTheContentWhereverItStands",
                 "File System Personality: NTFS\nContent (IOContent): Linux\n",
                 kWindows | kLinux,
                 {"   ✅ Linux detected in Content field: linux", kPersonalityNTFS}}),
    nameOf);

TEST(FilesystemDetectorTexts, GiveNoWindowsForNTFSOfTuxeraInContentAndPersonality)
{
    const Analysis analysis = analysisOf(kMainDiskInfo, "   Content (IOContent):       Windows_NTFS (Tuxera)\n"
                                                        "   File System Personality:   Tuxera NTFS\n");

    EXPECT_EQ(analysis.flags, kNoSystem);
    EXPECT_THAT(analysis.findings, IsEmpty());
}

// --- a section of the list

constexpr const char *kListSystem = "   ✅ Windows detected in disk list: Windows system partition";
constexpr const char *kListBasicData = "   ✅ Windows detected in disk list: Microsoft Basic Data with Windows context";
constexpr const char *kListNTFS = "   ✅ Windows detected in disk list: NTFS";
constexpr const char *kListFAT = "   ✅ Windows detected in disk list: FAT32/FAT16";

class SectionText : public testing::TestWithParam<TextCase> {};

TEST_P(SectionText, IsWeighed)
{
    expectAnalysis(kDiskList, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    FilesystemDetector, SectionText,
    testing::Values(
        TextCase{"APFSEvenWithoutASystem", "   2: Apple_APFS Container disk1 600.0 GB disk0s2", kMacOS, {}},
        TextCase{"APFSAlone", "APFS", kMacOS, {}}, TextCase{"HFS", "   2: Apple_HFS Tools 1 GB disk0s2", kMacOS, {}},
        TextCase{"HFSPlus", "HFS+", kMacOS, {}}, TextCase{"BareHFS", "HFS", kNoSystem, {}},
        TextCase{"Reserved", "   3: Microsoft Reserved 16.8 MB disk0s3", kWindows, {kListSystem}},
        TextCase{"Recovery", "   5: Windows Recovery 551.6 MB disk0s5", kWindows, {kListSystem}},
        TextCase{"BasicDataAlone", "   1: Microsoft Basic Data DATA 1 GB disk0s1", kNoSystem, {}},
        TextCase{"BasicDataWithWindows", "   1: Microsoft Basic Data WINDOWS 1 GB disk0s1", kWindows, {kListBasicData}},
        TextCase{"BasicDataWithWindowsOnAnotherLine",
                 "1: Microsoft Basic Data A 1 GB disk0s1\n2: X Windows 1 GB disk0s2",
                 kWindows,
                 {kListBasicData}},
        TextCase{"WindowsAlone", "   1: Apple Windows 1 GB disk0s1", kNoSystem, {}},
        TextCase{"NTFS", "   1: Windows_NTFS A 1 GB disk0s1", kWindows, {kListNTFS}},
        TextCase{"NTFSOfTuxeraAnywhere", "1: NTFS A 1 GB disk0s1\n2: X Tuxera 1 GB disk0s2", kNoSystem, {}},
        TextCase{"NTFSOfParagonAnywhere", "1: NTFS A 1 GB disk0s1\n2: X Paragon 1 GB disk0s2", kNoSystem, {}},
        TextCase{"BasicDataWithNTFSOfTuxera", "Microsoft Basic Data NTFS Tuxera", kWindows, {kListBasicData}},
        TextCase{"SystemBeforeBasicData", "Microsoft Basic Data Windows Recovery", kWindows, {kListSystem}},
        TextCase{"BasicDataBeforeNTFS", "Windows_NTFS Microsoft Basic Data", kWindows, {kListBasicData}},
        TextCase{"NTFSBeforeFAT", "DOS_FAT_32 Windows_NTFS", kWindows, {kListNTFS}},
        TextCase{"FATBehindNTFSOfTuxera", "DOS_FAT_32 NTFS Tuxera", kWindows, {kListFAT}},
        TextCase{"FAT32WithoutItsType", "   1: EFI FAT32 1 GB disk0s1", kNoSystem, {}},
        TextCase{"LinuxFilesystem",
                 "   3: Linux Filesystem 1 GB disk0s3",
                 kLinux,
                 {"   ✅ Linux detected in disk list: linux filesystem"}},
        TextCase{"LinuxAsABareWord", "   3: Linux Swap Linux 1 GB disk0s3", kNoSystem, {}},
        TextCase{"ExFAT", "   1: exFAT A 1 GB disk0s1", kExFAT, {}},
        TextCase{"MicrosoftExFAT", "   1: Microsoft ExFAT A 1 GB disk0s1", kExFAT, {}},
        TextCase{"AllInOrder",
                 "exfat linux lvm dos_fat_16 apfs",
                 kMacOS | kWindows | kLinux | kExFAT,
                 {kListFAT, "   ✅ Linux detected in disk list: linux lvm"}},
        TextCase{"Empty", "", kNoSystem, {}}),
    nameOf);

// --- a partition

constexpr const char *kPartitionContext = "   ✅ Windows detected: Microsoft Basic Data with Windows context";
constexpr const char *kPartitionBasicExFAT = "   ✅ ExFAT detected: Microsoft Basic Data (ExFAT)";

class PartitionText : public testing::TestWithParam<TextCase> {};

TEST_P(PartitionText, IsWeighed)
{
    expectAnalysis(kPartitionInfo, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    FilesystemDetector, PartitionText,
    testing::Values(
        TextCase{"BasicDataAndExFAT",
                 "   Partition Type:   Microsoft Basic Data\n   File System Personality:   ExFAT\n",
                 kExFAT,
                 {kPartitionBasicExFAT, "   ✅ ExFAT detected: exfat"}},
        TextCase{"BasicDataAndExFATWithAHyphen",
                 "Microsoft Basic Data Ex-FAT",
                 kExFAT,
                 {kPartitionBasicExFAT, "   ✅ ExFAT detected: ex-fat"}},
        TextCase{"BasicDataAndWindowsInTheName",
                 "   Partition Type:   Microsoft Basic Data\n   Volume Name:   Windows\n",
                 kWindows,
                 {kPartitionContext}},
        TextCase{"BasicDataAndFAT32",
                 "   Partition Type:   Microsoft Basic Data\n   File System Personality:   MS-DOS FAT32\n",
                 kWindows,
                 {"   ✅ Windows detected: ms-dos fat32"}},
        TextCase{"BasicDataAlone", "   Partition Type:   Microsoft Basic Data\n", kNoSystem, {}},
        TextCase{"BasicDataAndReserved", "Microsoft Reserved Microsoft Basic Data", kWindows, {kPartitionContext}},
        TextCase{"BasicDataAndTheBareWordRecovery",
                 "Microsoft Basic Data\nVolume Name: Recovery",
                 kWindows,
                 {kPartitionContext}},
        TextCase{"BasicDataAndNTFS", "Microsoft Basic Data NTFS", kWindows, {"   ✅ Windows detected: ntfs"}},
        TextCase{"BasicDataBeforeWindowsRETools", "Microsoft Basic Data winre_dlp", kNoSystem, {}},
        TextCase{"ExFATBeforeTheWindowsContext",
                 "Microsoft Basic Data Windows exFAT",
                 kExFAT,
                 {kPartitionBasicExFAT, "   ✅ ExFAT detected: exfat"}},
        TextCase{"FATBeforeNTFS", "NTFS msdos", kWindows, {"   ✅ Windows detected: msdos"}},
        TextCase{"FATBeforeBasicDataOfExFAT",
                 "Microsoft Basic Data exFAT fat32",
                 kWindows | kExFAT,
                 {"   ✅ Windows detected: fat32", "   ✅ ExFAT detected: exfat"}},
        TextCase{"NTFSOfTuxera", "Tuxera NTFS", kWindows, {"   ✅ Windows detected: ntfs"}},
        TextCase{"NTFSOfParagon", "Paragon NTFS", kWindows, {"   ✅ Windows detected: ntfs"}},
        TextCase{"WindowsAlone", "   Volume Name:   Windows\n", kNoSystem, {}},
        TextCase{"RecoveryAlone", "   Volume Name:   Recovery\n", kNoSystem, {}},
        TextCase{"LinuxAsABareWord", "   Volume Name:   Linux\n", kNoSystem, {}},
        TextCase{"BareHFS", "   Type (Bundle):   hfs\n", kNoSystem, {}},
        TextCase{"AllInOrder",
                 "minix exfat ext4 ntfs apfs",
                 kMacOS | kWindows | kLinux | kExFAT,
                 {"   ✅ macOS detected: apfs", "   ✅ Windows detected: ntfs", "   ✅ Linux detected: ext4",
                  "   ✅ ExFAT detected: exfat", "   ✅ Unix/Linux detected: minix"}},
        TextCase{"Empty", "", kNoSystem, {}}),
    nameOf);

// --- the partitions of a section

TEST(PartitionIdentifiers, AreSortedAsPlainTextAndEachOnce)
{
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers("1: EFI 1 MB disk0s2\n2: X 1 GB disk0s10\n"
                                                         "3: Y 1 GB disk0s1\n4: Z 1 GB disk0s2\n",
                                                         "disk0"),
                ElementsAre("disk0s1", "disk0s10", "disk0s2"));
}

TEST(PartitionIdentifiers, AreTheFirstOnesOfTheirLines)
{
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers("1: Apple_HFS Copy of disk0s9 1 GB disk0s1\n", "disk0"),
                ElementsAre("disk0s9"));
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers("5: APFS Snapshot a 1 GB disk1s4s1\n", "disk1"),
                ElementsAre("disk1s4"));
}

TEST(PartitionIdentifiers, AreThoseOfTheDiskAlone)
{
    const std::string list = fixture("diskutil/list-two-systems.txt");

    EXPECT_THAT(FilesystemDetector::partitionIdentifiers(list, "disk0"),
                ElementsAre("disk0s1", "disk0s2", "disk0s3", "disk0s4", "disk0s5"));
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers(list, "disk2"), ElementsAre("disk2s1"));
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers("1: A 1 GB disk10s1\n0: B 1 GB disk1\n", "disk1"), IsEmpty());
}

TEST(PartitionIdentifiers, OfAnEmptySectionAreNone)
{
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers("", "disk0"), IsEmpty());
}

TEST(PartitionIdentifiers, AreReadBeforeCarriageReturns)
{
    EXPECT_THAT(FilesystemDetector::partitionIdentifiers(withCarriageReturns(fixture("diskutil/list-two-systems.txt")),
                                                         "disk1"),
                ElementsAre("disk1s1", "disk1s2", "disk1s3", "disk1s4", "disk1s6"));
}

struct EFILineCase {
    const char *name;
    std::string_view section;
    bool isEFI;
};

class EFIPartitionLine : public testing::TestWithParam<EFILineCase> {};

TEST_P(EFIPartitionLine, IsTheFirstThatHoldsThePartition)
{
    EXPECT_EQ(FilesystemDetector::isEFIPartitionLine("disk0s1", GetParam().section), GetParam().isEFI);
}

INSTANTIATE_TEST_SUITE_P(
    FilesystemDetector, EFIPartitionLine,
    testing::Values(EFILineCase{"EFI", "   1:   EFI EFI   209.7 MB   disk0s1", true},
                    EFILineCase{"LowerCase", "1: efi NO NAME 209.7 MB disk0s1", true},
                    EFILineCase{"ESP", "1: Microsoft Basic Data ESP 1 GB disk0s1", true},
                    EFILineCase{"ESPWithinAWord", "1: Linux Filesystem Respect 1 GB disk0s1", true},
                    EFILineCase{"NTFSNamedEFI", "1: Windows_NTFS EFI 1 GB disk0s1", false},
                    EFILineCase{"HFSNamedEFI", "1: Apple_HFS EFI 1 GB disk0s1", false},
                    EFILineCase{"APFSNamedEFI", "1: Apple_APFS EFI 1 GB disk0s1", false},
                    EFILineCase{"ExFATNamedEFI", "1: ExFAT EFI 1 GB disk0s1", false},
                    EFILineCase{"Other", "1: Microsoft Basic Data A 1 GB disk0s1", false},
                    EFILineCase{"FirstLineDecides", "1: X A 1 GB disk0s1\n2: EFI EFI 1 MB disk0s1", false},
                    EFILineCase{"LineOfALongerIdentifier", "1: EFI EFI 1 MB disk0s10\n2: X A 1 GB disk0s1", true},
                    EFILineCase{"LineThatNamesItInPassing", "1: X EFI of disk0s1 1 MB disk0s2\n2: X 1 GB disk0s1",
                                true},
                    EFILineCase{"IdentifierInCapitals", "1: EFI EFI 1 MB DISK0S1", false},
                    EFILineCase{"NoSuchLine", "1: EFI EFI 1 MB disk0s2", false}, EFILineCase{"Empty", "", false}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
