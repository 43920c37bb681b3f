#include "detectors/DiskDetails.h"

#include "support/SampleDisks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace brindle {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

PhysicalDisk diskOfHealth(SMARTStatus status)
{
    PhysicalDisk disk = completeDisk();
    disk.smartStatus = status;
    return disk;
}

TEST(DiskDetails, AreTheLinesOfAllFacts)
{
    EXPECT_EQ(diskDetailsText(completeDisk()),
              "SMART Status: Failing — data loss risk\n"
              "Media Type: Solid State (SSD)\n"
              "TRIM Support: Yes\n"
              "Bus / Protocol: USB\n"
              "Size: 500.1 GB\n"
              "Content: GUID_partition_scheme\n"
              "Volume: System • Work\n"
              "Identifier: disk4\n"
              "\n"
              "⚠️ This disk is reporting SMART failures. Back up its data immediately and consider replacing it.");
}

TEST(DiskDetails, OfADiskWithoutTheNewerFactsSayWhatIsAssumed)
{
    const PhysicalDisk disk{.identifier = "disk2", .size = "8.0 GB", .fileSystem = "Unknown"};

    EXPECT_EQ(diskDetailsText(disk), "SMART Status: Unknown\n"
                                     "Media Type: Rotational (HDD)\n"
                                     "TRIM Support: No\n"
                                     "Bus / Protocol: Unknown\n"
                                     "Size: 8.0 GB\n"
                                     "Content: Unknown\n"
                                     "Identifier: disk2\n"
                                     "\n"
                                     "SMART status could not be determined for this disk.");
}

TEST(DiskDetails, SayUnknownForAnEmptyProtocol)
{
    PhysicalDisk disk = completeDisk();
    disk.busProtocol = "";

    EXPECT_THAT(diskDetailsText(disk), HasSubstr("\nBus / Protocol: Unknown\n"));
}

TEST(DiskDetails, LeaveOutAVolumeNameThatIsEmptyOrAbsent)
{
    PhysicalDisk disk = completeDisk();

    disk.volumeName = "";
    EXPECT_THAT(diskDetailsText(disk), Not(HasSubstr("Volume: ")));

    disk.volumeName.reset();
    EXPECT_THAT(diskDetailsText(disk), Not(HasSubstr("Volume: ")));
}

TEST(DiskDetails, OfAVerifiedDiskAreEightLinesWithoutAnEmptyOneAtTheEnd)
{
    const std::string text = diskDetailsText(diskOfHealth(SMARTStatus::verified));

    EXPECT_THAT(text, StartsWith("SMART Status: Verified (Healthy)\n"));
    EXPECT_THAT(text, EndsWith("\nIdentifier: disk4"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 7);
}

TEST(DiskDetails, OfADiskWithoutHealthDataEndWithANoteBehindOneEmptyLine)
{
    const std::string text = diskDetailsText(diskOfHealth(SMARTStatus::notSupported));

    EXPECT_THAT(text, StartsWith("SMART Status: Not Supported\n"));
    EXPECT_THAT(text, EndsWith("\nIdentifier: disk4\n"
                               "\n"
                               "This disk (or its enclosure/controller) does not report SMART health data to macOS. "
                               "This is common for many external USB enclosures."));
}

TEST(DiskDetails, OfADiskOfUnknownHealthEndWithANoteBehindOneEmptyLine)
{
    const std::string text = diskDetailsText(diskOfHealth(SMARTStatus::unknown));

    EXPECT_THAT(text, StartsWith("SMART Status: Unknown\n"));
    EXPECT_THAT(text, EndsWith("\nIdentifier: disk4\n\nSMART status could not be determined for this disk."));
}

} // namespace
} // namespace brindle
