// Texts that no tool should print. Those of a million characters end in time only where a reader is linear.

#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "detectors/FilesystemDetector.h"
#include "detectors/ToolText.h"
#include "support/Fixtures.h"
#include "support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr std::size_t kMillion = 1'000'000;

std::string repeated(std::string_view piece, std::size_t length = kMillion)
{
    std::string text;
    while (text.size() < length)
        text += piece;
    return text;
}

// --- one line without an end

TEST(HostileText, OfDigitsIsSearchedForASizeOnce)
{
    EXPECT_EQ(ToolText::positionOfSize(std::string(kMillion, '1')), std::nullopt);
    EXPECT_EQ(ToolText::positionOfSize(std::string(kMillion, '1') + " GB"), 0U);
}

TEST(HostileText, OfNumbersIsSearchedForASizeOnce)
{
    EXPECT_EQ(ToolText::positionOfSize(repeated("1.")), std::nullopt);
    EXPECT_EQ(ToolText::positionOfSize(repeated("1.") + "1 GB"), kMillion - 2);
    EXPECT_EQ(ToolText::positionOfSize("1." + std::string(kMillion, '1') + "x"), std::nullopt);
}

TEST(HostileText, OfBlanksIsSearchedForASizeOnce)
{
    EXPECT_EQ(ToolText::positionOfSize("1" + std::string(kMillion, ' ')), std::nullopt);
    EXPECT_EQ(ToolText::positionOfSize(repeated("1 ") + "GB"), kMillion - 2);
    EXPECT_EQ(ToolText::positionOfSize("1" + std::string(kMillion, '\t') + "GB"), 0U);
}

TEST(HostileText, OfBeginningsIsSearchedForAnIdentifierOnce)
{
    const std::string digits(kMillion, '7');

    EXPECT_EQ(ToolText::partitionIn(repeated("disk1s") + "disk1s7", "disk1"), "disk1s7");
    EXPECT_EQ(ToolText::partitionIn(repeated("disk") + digits, "disk1"), std::nullopt);
    EXPECT_EQ(ToolText::partitionIn("disk" + digits + "s1", "disk" + digits), "disk" + digits + "s1");
    EXPECT_EQ(ToolText::containerIn(repeated("Container disk") + "4"), "disk4");
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers(repeated("/dev/disk") + "4"), ElementsAre("disk4"));
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("/dev/disk" + digits), ElementsAre("disk" + digits));
}

TEST(HostileText, OfKeywordsGivesItsName)
{
    const std::string keywords = repeated("Apple_HFS");

    EXPECT_EQ(DiskDetector::partitionNameInLine(keywords + " 1 GB", "apple_hfs", "disk0"),
              keywords.substr(std::string_view("Apple_HFS").size()));
}

TEST(HostileText, OfWordsIsSearchedForSystemsOnce)
{
    const LogCapture log;
    const std::string words = repeated("linux filesyste journaled file syste apple_partition_schem exfa");

    EXPECT_EQ(FilesystemDetector::analyzePartitionInfo(words, "disk0s1"), FilesystemFlags{});
    EXPECT_EQ(FilesystemDetector::analyzeDiskList(words, "disk0"), FilesystemFlags{});
    EXPECT_TRUE(FilesystemDetector::analyzePartitionInfo(words + "t", "disk0s1").hasExFAT);
    EXPECT_TRUE(FilesystemDetector::analyzeMainDiskInfo(repeated("Content (IOContent):") + "NTFS", "disk0").hasWindows);
}

TEST(HostileText, OfLabelsInOneLineHasNoValueLeft)
{
    const auto facts = DiskDetector::readDiskInfo("Whole: Yes\n" + repeated("Protocol:"), "disk0");

    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->protocol, "");
}

// --- lines without an end

std::string numberedLines(const char *format, int count)
{
    std::string text;
    for (int number = 0; number < count; ++number)
        text += fmt::format(fmt::runtime(format), number);
    return text;
}

constexpr int kManyLines = 200'000;

TEST(HostileText, OfManyDisksListsThemAll)
{
    EXPECT_THAT(DiskDetector::parseDiskIdentifiers(numberedLines("/dev/disk{}:\n", kManyLines)), SizeIs(kManyLines));
}

TEST(HostileText, OfManyEFIPartitionsGivesEachOnce)
{
    const std::string lines = numberedLines("EFI disk0s{}\n", kManyLines);

    EXPECT_THAT(EFIPartitionReader::efiCandidates("disk0", lines + lines), SizeIs(kManyLines));
}

TEST(HostileText, OfManyPartitionsGivesEachOnce)
{
    const std::string lines = numberedLines("disk0s{}\n", kManyLines);

    EXPECT_THAT(FilesystemDetector::partitionIdentifiers(lines + lines, "disk0"), SizeIs(kManyLines));
    EXPECT_FALSE(FilesystemDetector::isEFIPartitionLine("disk0s200000", lines));
}

TEST(HostileText, OfManyContainersGivesEachOnce)
{
    const std::string lines = numberedLines("Container disk{}\n", kManyLines);

    EXPECT_THAT(DiskDetector::readSectionVolumes(lines + lines, "disk0").containers, SizeIs(kManyLines));
}

TEST(HostileText, OfManyHalvesOfVolumesIsMerged)
{
    std::vector<std::string> names;
    for (int number = 0; number < kManyLines; ++number) {
        names.push_back(fmt::format("{}", number));
        names.push_back(fmt::format("{} - Data", number));
    }

    EXPECT_THAT(DiskDetector::mergeDataVolumes(names), SizeIs(kManyLines));
}

// --- broken texts

constexpr const char *kFixtures[] = {
    "diskutil/info-efi-mounted.txt", "diskutil/info-internal-ssd.txt",  "diskutil/info-stick-labels-repeated.txt",
    "diskutil/list-disk-image.txt",  "diskutil/list-hostile-names.txt", "diskutil/list-names-in-isolates.txt",
    "diskutil/list-two-systems.txt",
};

/// Everything that the readers find in a text, in one number.
std::size_t findingsIn(std::string_view text)
{
    const auto volumes = DiskDetector::readSectionVolumes(text, "disk0");
    return DiskDetector::parseDiskIdentifiers(text).size() + volumes.entries.size() + volumes.containers.size() +
           volumes.unnamedPartitions.size() + DiskDetector::readAPFSVolumeNames(text, "disk1").size() +
           EFIPartitionReader::efiCandidates("disk0", text).size() +
           FilesystemDetector::partitionIdentifiers(text, "disk0").size();
}

class TruncatedText : public testing::TestWithParam<const char *> {};

TEST_P(TruncatedText, NeverHoldsMoreThanTheWhole)
{
    const LogCapture log;
    const std::string whole = fixture(GetParam());

    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string_view start = std::string_view(whole).substr(0, length);

        EXPECT_LE(findingsIn(start), findingsIn(whole)) << length;
        if (const auto facts = DiskDetector::readDiskInfo(start, "disk0"))
            EXPECT_FALSE(facts->name.empty()) << length;
        (void)DiskDetector::readVolumeName(start);
        (void)EFIPartitionReader::readPartitionInfo(start, "disk0s1");
        (void)FilesystemDetector::analyzeMainDiskInfo(start, "disk0");
        (void)FilesystemDetector::analyzePartitionInfo(start, "disk0s1");
    }
}

INSTANTIATE_TEST_SUITE_P(HostileText, TruncatedText, testing::ValuesIn(kFixtures), [](const auto &row) {
    std::string name = row.param;
    std::ranges::replace_if(
        name, [](char character) { return !std::isalnum(static_cast<unsigned char>(character)); }, '_');
    return name;
});

TEST(HostileText, OfArbitraryBytesHoldsNothing)
{
    std::string bytes;
    for (unsigned value = 0; value < kMillion; ++value)
        bytes += static_cast<char>(value * 7919U >> 3U);

    const LogCapture log;
    EXPECT_EQ(findingsIn(bytes), 0U);
    EXPECT_EQ(FilesystemDetector::analyzePartitionInfo(bytes, "disk0s1"), FilesystemFlags{});
    EXPECT_FALSE(DiskDetector::readDiskInfo(bytes, "disk0"));
    EXPECT_FALSE(DiskDetector::isExposedDiskImage(bytes));
}

TEST(HostileText, WithNULBytesIsReadAroundThem)
{
    using namespace std::string_literals;

    EXPECT_THAT(DiskDetector::parseDiskIdentifiers("\0\n/dev/disk0\0:\n"s), ElementsAre("disk0"));
    EXPECT_EQ(DiskDetector::partitionNameInLine("1: Apple_HFS A\0B 1.0 GB disk0s1"s, "apple_hfs", "disk0"), "A\0B"s);
}

TEST(HostileText, ThatIsEmptyHoldsNothing)
{
    EXPECT_EQ(findingsIn(""), 0U);
    EXPECT_EQ(findingsIn("\n\r\n\n"), 0U);
}

} // namespace
} // namespace brindle
