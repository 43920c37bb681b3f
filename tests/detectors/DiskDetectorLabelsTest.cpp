#include "detectors/DiskDetector.h"

#include "detectors/DiskDetectorFixture.h"
#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using VolumeEntry = DiskDetector::VolumeEntry;
using VolumeRank = DiskDetector::VolumeRank;

// --- the name column

struct NameCase {
    const char *name;
    std::string_view line;
    std::string_view keyword;
    std::optional<std::string> partitionName;
};

class NameColumn : public testing::TestWithParam<NameCase> {};

TEST_P(NameColumn, StandsBetweenTheKeywordAndTheSize)
{
    EXPECT_EQ(DiskDetector::partitionNameInLine(GetParam().line, GetParam().keyword, "disk0"),
              GetParam().partitionName);
}

constexpr std::string_view kHFS = "apple_hfs";
constexpr std::string_view kBasicData = "microsoft basic data";

INSTANTIATE_TEST_SUITE_P(
    VolumeLabel, NameColumn,
    testing::Values(NameCase{"Plain", "2: Apple_HFS My Disk  99.1 GB  disk0s2", kHFS, "My Disk"},
                    NameCase{"KeywordInAnyCase", "2: APPLE_hfs My Disk  99.1 GB  disk0s2", kHFS, "My Disk"},
                    NameCase{"NoKeyword", "2: Apple_APFS My Disk  99.1 GB  disk0s2", kHFS, std::nullopt},
                    NameCase{"NoSize", "2: Apple_HFS My Disk  99.1 disk0s2", kHFS, std::nullopt},
                    NameCase{"SizeBeforeTheKeywordAlone", "99.1 GB Apple_HFS My Disk", kHFS, std::nullopt},
                    NameCase{"Nothing", "2: Apple_HFS   99.1 GB  disk0s2", kHFS, std::nullopt},
                    NameCase{"EFI", "2: Microsoft Basic Data EFI  99.1 MB  disk0s2", kBasicData, std::nullopt},
                    NameCase{"NO", "2: Apple_HFS NO  99.1 MB  disk0s2", kHFS, std::nullopt},
                    NameCase{"NAME", "2: Apple_HFS NAME  99.1 MB  disk0s2", kHFS, std::nullopt},
                    NameCase{"NoNameIsAName", "2: Apple_HFS NO NAME  99.1 MB  disk0s2", kHFS, "NO NAME"},
                    NameCase{"EFIInLowerCaseIsAName", "2: Apple_HFS efi  99.1 MB  disk0s2", kHFS, "efi"},
                    NameCase{"SizeInTheName", "2: Apple_HFS Stick 64 GB  61.0 GB  disk0s2", kHFS, "Stick"},
                    NameCase{"NumberInTheName", "2: Apple_HFS 10.14  99.1 GB  disk0s2", kHFS, "10.14"},
                    NameCase{"CutAtItsOwnIdentifier", "2: Apple_HFS A disk0s2 99.1 GB", kHFS, "A"},
                    NameCase{"NotCutAtAnotherDisk", "2: Apple_HFS A disk1s2 99.1 GB", kHFS, "A disk1s2"},
                    NameCase{"IdentifierAlone", "2: Apple_HFS disk0s2 99.1 GB", kHFS, std::nullopt},
                    NameCase{"CutBeforeTheRefusedWords", "2: Apple_HFS EFI disk0s2 99.1 GB", kHFS, std::nullopt},
                    NameCase{"KeywordWithATail", "2: Apple_HFSX A  99.1 GB  disk0s2", kHFS, "X A"},
                    NameCase{"SingleBlankBeforeTheSize", "2: Apple_HFS com.example.os.update-... 15.2 GB disk0s2", kHFS,
                             "com.example.os.update-..."},
                    NameCase{"Isolates", "2: Apple_HFS \u2068A\u2069  99.1 GB  disk0s2", kHFS, "\u2068A\u2069"},
                    NameCase{"EmptyIsolatesAreAName", "2: Apple_HFS \u2068\u2069  99.1 GB  disk0s2", kHFS,
                             "\u2068\u2069"},
                    NameCase{"Star", "0: Apple_HFS A  *99.1 GB  disk0", kHFS, "A  *"}),
    [](const auto &row) { return row.param.name; });

TEST(VolumeLabel, FindsTheFirstPartitionOfTheDiskInALine)
{
    EXPECT_EQ(DiskDetector::partitionIdentifierInLine("2: Windows_NTFS  99.1 GB  disk0s2", "disk0"), "disk0s2");
    EXPECT_EQ(DiskDetector::partitionIdentifierInLine("2: Windows_NTFS  99.1 GB  disk0s2", "disk1"), std::nullopt);
}

// --- the lines of a section

DiskDetector::SectionVolumes volumesOf(std::string_view section)
{
    return DiskDetector::readSectionVolumes(section, "disk0");
}

TEST(VolumeLabel, ReadsContainersWindowsAndHFSFromASection)
{
    const auto volumes = volumesOf("   1:                        EFI EFI                     209.7 MB   disk0s1\n"
                                   "   2:                 Apple_APFS Container disk3         600.0 GB   disk0s2\n"
                                   "   3:                 Apple_APFS Container disk1         600.0 GB   disk0s3\n"
                                   "   4:                 Apple_APFS Container disk3         600.0 GB   disk0s4\n"
                                   "   5:       Microsoft Basic Data WINDOWS                 399.5 GB   disk0s5\n"
                                   "   6:               Windows_NTFS DATA                    399.5 GB   disk0s6\n"
                                   "   7:                  Apple_HFS Tools                   399.5 GB   disk0s7\n"
                                   "   8:       Microsoft Basic Data                         399.5 GB   disk0s8\n"
                                   "   9:           Linux Filesystem Other                   399.5 GB   disk0s9\n");

    EXPECT_THAT(volumes.containers, ElementsAre("disk3", "disk1"));
    EXPECT_THAT(volumes.entries,
                ElementsAre(VolumeEntry{"WINDOWS", VolumeRank::Windows}, VolumeEntry{"DATA", VolumeRank::Windows},
                            VolumeEntry{"Tools", VolumeRank::HFS}));
    EXPECT_THAT(volumes.unnamedPartitions, ElementsAre("disk0s8"));
}

struct LineCase {
    const char *name;
    std::string_view line;
    std::vector<std::string> names;
    std::vector<std::string> unnamedPartitions;
};

class LineOfASection : public testing::TestWithParam<LineCase> {};

TEST_P(LineOfASection, IsReadByTheFirstRuleThatFits)
{
    const auto volumes = volumesOf(GetParam().line);

    std::vector<std::string> names;
    for (const VolumeEntry &entry : volumes.entries)
        names.push_back(entry.name);
    EXPECT_EQ(names, GetParam().names);
    EXPECT_EQ(volumes.unnamedPartitions, GetParam().unnamedPartitions);
}

INSTANTIATE_TEST_SUITE_P(
    VolumeLabel, LineOfASection,
    testing::Values(
        LineCase{"EFIType", "1: EFI Apple_HFS 99.1 MB disk0s1", {}, {}},
        LineCase{"EFIAtTheVeryStart", "  EFI 1: Apple_HFS A 99.1 MB disk0s1", {"A"}, {}},
        LineCase{"EFIInTheNameOfBasicData", "1: Microsoft Basic Data EFI  99.1 MB disk0s1", {}, {"disk0s1"}},
        LineCase{
            "EFIWithinTheNameOfBasicData", "1: Microsoft Basic Data MY EFI DISK  99.1 MB disk0s1", {"MY EFI DISK"}, {}},
        LineCase{"EFIInTheNameOfHFS", "1: Apple_HFS My EFI Disk  99.1 MB disk0s1", {}, {}},
        LineCase{"ContainerWithoutANumber", "1: Apple_HFS Container of A  99.1 GB disk0s1", {}, {}},
        LineCase{"NoColon", "1 Apple_HFS A 99.1 GB disk0s1", {}, {}},
        LineCase{"Kilobytes", "1: Apple_HFS A 99.1 KB disk0s1", {}, {}},
        LineCase{"KilobytesWithAUnitInTheName", "1: Apple_HFS GB A 99.1 KB disk0s1", {"GB A"}, {}},
        LineCase{"Terabytes", "1: Apple_HFS A 99.1 TB disk0s1", {"A"}, {}},
        LineCase{"HFSBeforeBasicData", "1: Microsoft Basic Data Apple_HFS  99.1 GB disk0s1", {}, {}},
        LineCase{"BasicDataBeforeNTFS", "1: Microsoft Basic Data Windows_NTFS  99.1 GB disk0s1", {"Windows_NTFS"}, {}},
        LineCase{"UnnamedHFSIsNotAskedAbout", "1: Apple_HFS   99.1 GB disk0s1", {}, {}},
        LineCase{"UnnamedNTFS", "1: Windows_NTFS   99.1 GB disk0s1", {}, {"disk0s1"}},
        LineCase{"UnnamedWithoutAnIdentifier", "1: Windows_NTFS   99.1 GB", {}, {}},
        LineCase{"AnyCase", "1: MICROSOFT basic DATA Games   99.1 GB disk0s1", {"Games"}, {}}),
    [](const auto &row) { return row.param.name; });

TEST(VolumeLabel, KeepsNamesInIsolatesAsTheyAre)
{
    const auto volumes = volumesOf(fixture("diskutil/list-names-in-isolates.txt"));

    EXPECT_THAT(volumes.containers, ElementsAre("disk3"));
    EXPECT_THAT(volumes.entries, ElementsAre(VolumeEntry{"\u2068Tools\u2069", VolumeRank::HFS},
                                             VolumeEntry{"\u2068\u2069", VolumeRank::Windows}));
}

TEST(VolumeLabel, TakesHostileNamesAsTheyStand)
{
    const auto volumes = DiskDetector::readSectionVolumes(fixture("diskutil/list-hostile-names.txt"), "disk7");

    EXPECT_THAT(volumes.entries,
                ElementsAre(VolumeEntry{"-rf", VolumeRank::HFS}, VolumeEntry{R"("a" 'b' $(c) `d`)", VolumeRank::HFS},
                            VolumeEntry{"Copy of", VolumeRank::HFS}, VolumeEntry{"../../etc", VolumeRank::Windows}));
    EXPECT_THAT(volumes.unnamedPartitions, ElementsAre("disk7s7"));
}

// --- containers

TEST(APFSVolumeNames, LeaveOutWhatTheSystemKeepsForItself)
{
    EXPECT_THAT(DiskDetector::readAPFSVolumeNames(fixture("diskutil/list-two-systems.txt"), "disk1"),
                ElementsAre("System - Data", "System"));
}

TEST(APFSVolumeNames, LeaveOutUserVolumesWithTheSystemsWordsInTheirNames)
{
    EXPECT_THAT(DiskDetector::readAPFSVolumeNames("1: APFS Volume My VMs  9.0 GB disk1s1\n"
                                                  "2: APFS Volume Updates 9.0 GB disk1s2\n"
                                                  "3: APFS Volume Preboots 9.0 GB disk1s3\n"
                                                  "4: APFS Volume recovery 9.0 GB disk1s4\n"
                                                  "5: apfs VOLUME Kept 9.0 KB disk1s5",
                                                  "disk1"),
                ElementsAre("Kept"));
}

TEST(APFSVolumeNames, RefuseNoWordButTheEmptyOne)
{
    EXPECT_THAT(DiskDetector::readAPFSVolumeNames("1: APFS Volume EFI 9.0 GB disk1s1\n"
                                                  "2: APFS Volume NAME 9.0 GB disk1s2\n"
                                                  "3: APFS Volume  9.0 GB disk1s3\n"
                                                  "4: APFS Volume A disk1s4 9.0 GB\n"
                                                  "5: APFS Volume B\n",
                                                  "disk1"),
                ElementsAre("EFI", "NAME", "A"));
}

// --- the name that the info tells

struct InfoNameCase {
    const char *name;
    const char *info;
    std::optional<std::string> volumeName;
};

class VolumeNameOfAnInfo : public testing::TestWithParam<InfoNameCase> {};

TEST_P(VolumeNameOfAnInfo, IsTheOneThatSomebodyGave)
{
    EXPECT_EQ(DiskDetector::readVolumeName(GetParam().info), GetParam().volumeName);
}

INSTANTIATE_TEST_SUITE_P(
    VolumeLabel, VolumeNameOfAnInfo,
    testing::Values(InfoNameCase{"Plain", "x\n   Volume Name:   My Disk  \n", "My Disk"},
                    InfoNameCase{"None", "   Mounted: Yes\n", std::nullopt},
                    InfoNameCase{"Empty", "Volume Name:\n", std::nullopt},
                    InfoNameCase{"NotApplicable", "Volume Name: Not applicable", std::nullopt},
                    InfoNameCase{"NotApplicableWithAReason", "Volume Name: Not applicable (no file system)",
                                 "Not applicable (no file system)"},
                    InfoNameCase{"Untitled", "Volume Name: Untitled", std::nullopt},
                    InfoNameCase{"UntitledWithATail", "Volume Name: Untitled 1", "Untitled 1"},
                    InfoNameCase{"Identifier", "Volume Name: disk0s1", std::nullopt},
                    InfoNameCase{"DiskInCapitals", "Volume Name: Disk of mine", "Disk of mine"},
                    InfoNameCase{"EndsAtTheFirstLine", "Volume Name:\nVolume Name: Later", std::nullopt}),
    [](const auto &row) { return row.param.name; });

// --- one name for two halves

TEST(DataVolumes, FoldIntoTheirSystemVolume)
{
    EXPECT_THAT(DiskDetector::mergeDataVolumes({"System", "System - Data"}), ElementsAre("System"));
    EXPECT_THAT(DiskDetector::mergeDataVolumes({"\u2068A\u2069", "\u2068A - Data\u2069"}),
                ElementsAre("\u2068A\u2069"));
}

TEST(DataVolumes, StandBehindThePlainNamesInTheOrderOfTheirFirstAppearance)
{
    EXPECT_THAT(DiskDetector::mergeDataVolumes({"B - Data", "A - Data", "Plain", "B - Data", "A"}),
                ElementsAre("Plain", "B", "A"));
}

TEST(DataVolumes, LoseTheWordsWhereverTheyStandAndAreNotTrimmedAgain)
{
    EXPECT_THAT(DiskDetector::mergeDataVolumes({" A - Data - Data ", "B  - Data"}), ElementsAre("A", "B "));
}

TEST(DataVolumes, ArePlainWithoutTheBlankBeforeTheDash)
{
    EXPECT_THAT(DiskDetector::mergeDataVolumes({" - Data", "A- Data", "A - data"}),
                ElementsAre("- Data", "A- Data", "A - data"));
}

TEST(DataVolumes, LeaveTwoPlainVolumesOfOneNameAlone)
{
    EXPECT_THAT(DiskDetector::mergeDataVolumes({"A", "A", " A "}), ElementsAre("A", "A", "A"));
    EXPECT_THAT(DiskDetector::mergeDataVolumes({}), IsEmpty());
}

// --- the label

TEST(VolumeLabel, NamesAPFSThenHFSThenWindowsVolumes)
{
    EXPECT_EQ(DiskDetector::labelOf({{"W", VolumeRank::Windows}, {"H", VolumeRank::HFS}, {"A", VolumeRank::APFS}}),
              "A • H • W");
}

TEST(VolumeLabel, KeepsTheOrderWithinARank)
{
    EXPECT_EQ(DiskDetector::labelOf({{"C", VolumeRank::HFS}, {"A", VolumeRank::HFS}, {"B", VolumeRank::HFS}}),
              "C • A • B");
}

TEST(VolumeLabel, IsTheNameItselfForOneAndAbsentForNone)
{
    EXPECT_EQ(DiskDetector::labelOf({{"A", VolumeRank::HFS}}), "A");
    EXPECT_EQ(DiskDetector::labelOf({}), std::nullopt);
}

TEST(VolumeLabel, DropsTheFourthName)
{
    EXPECT_EQ(DiskDetector::labelOf(
                  {{"A", VolumeRank::APFS}, {"B", VolumeRank::APFS}, {"C", VolumeRank::APFS}, {"D", VolumeRank::APFS}}),
              "A • B • C");
}

class VolumeLabelTest : public DiskDetectorTest {
protected:
    std::optional<std::string> label(std::string section)
    {
        return resultOf(detector.volumeLabel("disk0", std::move(section)));
    }
};

TEST_F(VolumeLabelTest, TellsTheSystemsOfADisk)
{
    const std::string list = fixture("diskutil/list-two-systems.txt");
    tools.answer("/usr/sbin/diskutil list disk1", list.substr(list.find("/dev/disk1")));

    EXPECT_EQ(label(list.substr(0, list.find("/dev/disk1"))), "WINDOWS • System");

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list disk1"));
}

TEST_F(VolumeLabelTest, OfFourAPFSVolumesNamesThree)
{
    tools.answer("/usr/sbin/diskutil list disk1", "1: APFS Volume A 9.0 GB disk1s1\n2: APFS Volume B 9.0 GB disk1s2\n"
                                                  "3: APFS Volume C 9.0 GB disk1s3\n4: APFS Volume D 9.0 GB disk1s4\n");

    EXPECT_EQ(label("1: Apple_APFS Container disk1 9.0 GB disk0s1"), "A • B • C");
}

TEST_F(VolumeLabelTest, OfASectionWithoutContainerAndWindowsIsAbsent)
{
    EXPECT_EQ(label("/dev/disk0 (internal, physical):\n"
                    "   0:      GUID_partition_scheme          *1.0 TB     disk0\n"
                    "   1:                        EFI EFI       209.7 MB   disk0s1\n"
                    "   2:           Linux Filesystem           900.0 GB   disk0s2\n"),
              std::nullopt);
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(VolumeLabelTest, OfAnEmptySectionIsAbsent)
{
    EXPECT_EQ(label(""), std::nullopt);
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(VolumeLabelTest, LosesOnlyTheVolumesOfAContainerThatFails)
{
    tools.fail("/usr/sbin/diskutil list disk1", Error("CommandError", 1, "gone"));
    tools.answer("/usr/sbin/diskutil list disk3", "1: APFS Volume A 9.0 GB disk3s1");

    EXPECT_EQ(label("1: Apple_APFS Container disk1 9.0 GB disk0s1\n2: Apple_APFS Container disk3 9.0 GB disk0s2\n"
                    "3: Apple_HFS B 9.0 GB disk0s3"),
              "A • B");
}

TEST_F(VolumeLabelTest, NamesNoPartitionWhoseNameColumnReadsEFI)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "   Volume Name:  Not applicable\n");

    EXPECT_EQ(label("1: Microsoft Basic Data EFI  99.1 MB  disk0s1"), std::nullopt);
}

TEST_F(VolumeLabelTest, NeverAsksAboutAnUnnamedWindowsPartitionBesideANamedOne)
{
    EXPECT_EQ(label("1: Microsoft Basic Data  9.0 GB disk0s1\n2: Microsoft Basic Data Games  9.0 GB disk0s2"), "Games");
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(VolumeLabelTest, AsksAboutUnnamedWindowsPartitionsUntilOneHasAName)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "   Volume Name:\n");
    tools.fail("/usr/sbin/diskutil info disk0s2", Error("CommandError", 1, "gone"));
    tools.answer("/usr/sbin/diskutil info disk0s3", "   Volume Name:  Games\n");

    EXPECT_EQ(label("1: Windows_NTFS  9.0 GB disk0s1\n2: Windows_NTFS  9.0 GB disk0s2\n"
                    "3: Windows_NTFS  9.0 GB disk0s3\n4: Windows_NTFS  9.0 GB disk0s4\n"
                    "5: Apple_HFS H 9.0 GB disk0s5"),
              "H • Games");

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s1", "/usr/sbin/diskutil info disk0s2",
                                           "/usr/sbin/diskutil info disk0s3"));
}

TEST_F(VolumeLabelTest, IsAbsentWhenTheOnlyWindowsVolumeIsUntitled)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "   Volume Name:  Untitled\n");

    EXPECT_EQ(label("1: Windows_NTFS  9.0 GB disk0s1"), std::nullopt);
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s1"));
}

TEST_F(VolumeLabelTest, HandsItsTokenToTheTools)
{
    tools.answer("/usr/sbin/diskutil list disk1", "1: APFS Volume A 9.0 GB disk1s1");
    tools.answer("/usr/sbin/diskutil info disk0s2", "Volume Name: Games");
    tools.hold("/usr/sbin/diskutil list disk1");
    tools.hold("/usr/sbin/diskutil info disk0s2");
    const std::string section = "1: Apple_APFS Container disk1 9.0 GB disk0s1\n2: Windows_NTFS  9.0 GB disk0s2";

    const auto firstToken = CancellationToken::cancellable();
    auto first = detector.volumeLabel("disk0", section, firstToken);
    tools.release("/usr/sbin/diskutil info disk0s2");
    firstToken.cancel();
    EXPECT_EQ(resultOf(std::move(first)), "Games");

    tools.hold("/usr/sbin/diskutil info disk0s2");
    tools.release("/usr/sbin/diskutil list disk1");
    const auto secondToken = CancellationToken::cancellable();
    auto second = detector.volumeLabel("disk0", "2: Windows_NTFS  9.0 GB disk0s2", secondToken);
    secondToken.cancel();
    EXPECT_EQ(resultOf(std::move(second)), std::nullopt);
}

} // namespace
} // namespace brindle
