#include "detectors/DiskDetector.h"

#include "detectors/DiskDetectorFixture.h"
#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <string>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kTwoPhysicalDisks = "/dev/disk0 (internal, physical):\n"
                                          "   0:      GUID_partition_scheme  *1.0 TB     disk0\n"
                                          "\n"
                                          "/dev/disk2 (external, physical):\n"
                                          "   0:     FDisk_partition_scheme  *8.0 GB     disk2\n";

constexpr const char *kImageList = "/dev/disk5 (disk image):\n   0: GUID_partition_scheme +8.0 GB disk5\n";

// --- header lines

TEST(DiskIdentifiers, AreTakenFromAllHeaderLines)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers(fixture("diskutil/list-two-systems.txt")),
                ElementsAre("disk0", "disk1", "disk2"));
}

TEST(DiskIdentifiers, AreTakenFromIndentedHeadersAndFromThoseWithoutAnAnnotation)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers(" \t/dev/disk0\n/dev/disk12:"), ElementsAre("disk0", "disk12"));
}

TEST(DiskIdentifiers, OfADiskWhoseHeaderStandsTwiceAreTwo)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("/dev/disk3 (x):\n/dev/disk3 (x):"), ElementsAre("disk3", "disk3"));
}

TEST(DiskIdentifiers, AreNotTakenFromOtherLines)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("see /dev/disk1\n   1: EFI disk0s1\n/dev/rdisk1\n/DEV/DISK1\n"),
                IsEmpty());
}

TEST(DiskIdentifiers, OfALineComeFromTheFirstDeviceWithANumber)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("/dev/diskette /dev/disk4 /dev/disk5"), ElementsAre("disk4"));
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("/dev/disk4s1"), ElementsAre("disk4"));
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("/dev/disk"), IsEmpty());
}

TEST(DiskIdentifiers, AreReadBeforeCarriageReturns)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers(withCarriageReturns(kTwoPhysicalDisks)),
                ElementsAre("disk0", "disk2"));
}

// --- the image test

TEST(ExposedDiskImage, IsATextWithDiskImageAndAScheme)
{
    EXPECT_TRUE(DiskDetector::isExposedDiskImage("/dev/disk5 (disk image):\n 0: GUID_partition_scheme"));
    EXPECT_TRUE(DiskDetector::isExposedDiskImage("/dev/disk5 (disk image):\n 0: Apple_partition_scheme"));
    EXPECT_TRUE(DiskDetector::isExposedDiskImage("/dev/disk5 (Disk Image):\n GPT"));
}

TEST(ExposedDiskImage, IsNoneWithSynthesizedInBrackets)
{
    EXPECT_FALSE(
        DiskDetector::isExposedDiskImage("/dev/disk5 (disk image):\n 0: GUID_partition_scheme\n(synthesized)"));
}

TEST(ExposedDiskImage, IsNoneWithAnAPFSContainerSchemeInAnyCase)
{
    const std::string text = "/dev/disk5 (disk image):\n 0: GUID_partition_scheme\n";

    EXPECT_FALSE(DiskDetector::isExposedDiskImage(text + "APFS Container Scheme"));
    EXPECT_FALSE(DiskDetector::isExposedDiskImage(text + "apfs container SCHEME"));
}

TEST(ExposedDiskImage, IsNoneWithoutAScheme)
{
    EXPECT_FALSE(DiskDetector::isExposedDiskImage("/dev/disk5 (disk image):\n 0: Apple_HFS"));
    EXPECT_FALSE(DiskDetector::isExposedDiskImage("/dev/disk5 (disk image):\n 0: FDisk_partition_scheme"));
}

TEST(ExposedDiskImage, IsNoneWithoutTheWordsDiskImageInBrackets)
{
    EXPECT_FALSE(DiskDetector::isExposedDiskImage("Protocol: Disk Image\n 0: GUID_partition_scheme"));
}

TEST(ExposedDiskImage, CountsGPTAsASchemeOnlyWithoutTheWordSynthesized)
{
    EXPECT_FALSE(DiskDetector::isExposedDiskImage("(disk image) gpt, not synthesized"));
    EXPECT_TRUE(DiskDetector::isExposedDiskImage("(disk image) guid_partition_scheme, not synthesized"));
}

// --- the list of disks

TEST_F(DiskDetectorTest, ListsWhatTheToolCallsPhysical)
{
    tools.answer("/usr/sbin/diskutil list physical", kTwoPhysicalDisks);

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2"));

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
    EXPECT_THAT(log.lines(), ElementsAre(R"(Found 2 physical disks: ["disk0", "disk2"])",
                                         R"(Found 2 disks to process: ["disk0", "disk2"])"));
}

TEST_F(DiskDetectorTest, ListsNothingWhenTheToolPrintsNothing)
{
    tools.answer("/usr/sbin/diskutil list physical", "");

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), IsEmpty());

    EXPECT_THAT(log.lines(), ElementsAre("Found 0 physical disks: []", "Found 0 disks to process: []"));
}

TEST_F(DiskDetectorTest, ListsNothingWhenTheToolFailsAndLogsItsDescription)
{
    tools.fail("/usr/sbin/diskutil list physical", Error("CommandError", 1, "no such luck"));

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), IsEmpty());

    EXPECT_THAT(log.lines(), ElementsAre("Failed to get disk list: no such luck"));
}

class DiskImagesTest : public DiskDetectorTest {
protected:
    DiskImagesTest()
    {
        tools.answer("/usr/sbin/diskutil list physical", kTwoPhysicalDisks);
        tools.answer("/usr/sbin/diskutil list", "/dev/disk0 (internal, physical):\n"
                                                "/dev/disk1 (synthesized):\n"
                                                "/dev/disk5 (disk image):\n"
                                                "/dev/disk2 (external, physical):\n"
                                                "/dev/disk4 (disk image):\n"
                                                "/dev/disk5 (disk image):\n");
        for (const char *identifier : {"disk1", "disk4", "disk5"}) {
            tools.answer(std::string("/usr/sbin/diskutil info ") + identifier, "   Protocol:   Disk Image\n");
            tools.answer(std::string("/usr/sbin/diskutil list ") + identifier, kImageList);
        }
        tools.answer("/usr/sbin/diskutil list disk1", "/dev/disk1 (synthesized):\n   0: APFS Container Scheme\n");
    }
};

TEST_F(DiskImagesTest, AreNotListedWhenTheUserNeverAskedForThem)
{
    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2"));
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

TEST_F(DiskImagesTest, AreNotListedWhenTheUserSaidNo)
{
    defaults.set(DefaultsKeys::kShowDiskImages, false);

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2"));
}

TEST_F(DiskImagesTest, AreNotListedWhenTheSettingIsTheNumberOneAndNoBoolean)
{
    defaults.set(DefaultsKeys::kShowDiskImages, 1);

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2"));
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical"));
}

TEST_F(DiskImagesTest, AreListedBehindThePhysicalDisksInTheOrderOfTheWholeList)
{
    defaults.set(DefaultsKeys::kShowDiskImages, true);

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2", "disk5", "disk4"));

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical", "/usr/sbin/diskutil list",
                                           "/usr/sbin/diskutil info disk1", "/usr/sbin/diskutil list disk1",
                                           "/usr/sbin/diskutil info disk5", "/usr/sbin/diskutil list disk5",
                                           "/usr/sbin/diskutil info disk4", "/usr/sbin/diskutil list disk4"));
    EXPECT_THAT(log.lines(), ElementsAre(R"(Found 2 physical disks: ["disk0", "disk2"])",
                                         R"(Found 4 disks to process: ["disk0", "disk2", "disk5", "disk4"])"));
}

TEST_F(DiskImagesTest, EmptyTheWholeResultWhenTheListOfAllDisksFails)
{
    defaults.set(DefaultsKeys::kShowDiskImages, true);
    tools.fail("/usr/sbin/diskutil list", Error("CommandError", 1, "busy"));

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), IsEmpty());

    EXPECT_THAT(log.lines(),
                ElementsAre(R"(Found 2 physical disks: ["disk0", "disk2"])", "Failed to get disk list: busy"));
}

TEST_F(DiskImagesTest, AreLeftOutWhenTheirInfoFails)
{
    defaults.set(DefaultsKeys::kShowDiskImages, true);
    tools.fail("/usr/sbin/diskutil info disk5", Error("CommandError", 1, "gone"));

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2", "disk4"));
    EXPECT_THAT(tools.calls(), testing::Not(testing::Contains("/usr/sbin/diskutil list disk5")));
}

TEST_F(DiskImagesTest, AreLeftOutWhenTheirListFails)
{
    defaults.set(DefaultsKeys::kShowDiskImages, true);
    tools.fail("/usr/sbin/diskutil list disk5", Error("CommandError", 1, "gone"));

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2", "disk4"));
}

TEST_F(DiskImagesTest, AreToldByInfoAndListTogether)
{
    defaults.set(DefaultsKeys::kShowDiskImages, true);
    tools.answer("/usr/sbin/diskutil info disk5", "   Something: (synthesized)");

    EXPECT_THAT(resultOf(detector.listPhysicalDisks()), ElementsAre("disk0", "disk2", "disk4"));
}

TEST_F(DiskDetectorTest, HandsItsTokenToTheTool)
{
    tools.answer("/usr/sbin/diskutil list physical", kTwoPhysicalDisks);
    tools.hold("/usr/sbin/diskutil list physical");
    const auto token = CancellationToken::cancellable();

    auto listing = detector.listPhysicalDisks(token);
    token.cancel();

    EXPECT_THAT(resultOf(std::move(listing)), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("Failed to get disk list: The tool was terminated."));
}

} // namespace
} // namespace brindle
