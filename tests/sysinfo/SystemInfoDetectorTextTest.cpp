#include "sysinfo/SystemInfoDetector.h"

#include "support/Fixtures.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// --- normalizeDiskIdentifier

struct IdentifierCase {
    const char *name;
    const char *device;
    const char *identifier;
};

class NormalizesDiskIdentifier : public testing::TestWithParam<IdentifierCase> {};

TEST_P(NormalizesDiskIdentifier, ToTheWholeDisk)
{
    EXPECT_EQ(SystemInfoDetector::normalizeDiskIdentifier(GetParam().device), GetParam().identifier);
}

INSTANTIATE_TEST_SUITE_P(SystemInfoDetector, NormalizesDiskIdentifier,
                         testing::Values(IdentifierCase{"Partition", "disk0s2", "disk0"},
                                         IdentifierCase{"WholeDisk", "disk12", "disk12"},
                                         IdentifierCase{"DevicePathOfASliceOfASlice", "/dev/disk3s1s1", "disk3"},
                                         IdentifierCase{"DevicePathOfAWholeDisk", "/dev/disk7", "disk7"},
                                         IdentifierCase{"FolderTwice", "/dev//dev/disk1", "/dev/disk1"},
                                         IdentifierCase{"FolderWithin", "a/dev/disk1", "a/dev/disk1"},
                                         IdentifierCase{"RawDevice", "rdisk2s1", "rdisk2s1"},
                                         IdentifierCase{"CapitalLetter", "Disk2s1", "Disk2s1"},
                                         IdentifierCase{"NoNumber", "disks1", "disks1"},
                                         IdentifierCase{"LongerWord", "diskette2", "diskette2"},
                                         IdentifierCase{"OtherDevice", "/dev/sda1", "sda1"},
                                         IdentifierCase{"FolderAlone", "/dev/", ""}, IdentifierCase{"Empty", "", ""}),
                         [](const auto &row) { return row.param.name; });

// --- parseNvramValue

struct ValueCase {
    const char *name;
    const char *text;
    std::optional<std::string> value;
};

class ParsesNvramValue : public testing::TestWithParam<ValueCase> {};

TEST_P(ParsesNvramValue, BehindTheSeparator)
{
    EXPECT_EQ(SystemInfoDetector::parseNvramValue(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    SystemInfoDetector, ParsesNvramValue,
    testing::Values(ValueCase{"Tab", "boot-args\t-v", "-v"},
                    ValueCase{"TabBeforeTheColonsOfTheValue", "prev-lang\ten:252:x", "en:252:x"},
                    ValueCase{"ColonOfTheNameBeforeTheTab", "4D1FDA02:opencore-version\tREL-099", "REL-099"},
                    ValueCase{"FirstTabOfSeveral", "name\tone\ttwo", "one\ttwo"},
                    ValueCase{"NameColonValue", "Clover.Version: 5152", "5152"},
                    ValueCase{"NameWithItsColonAndNoTab", "4D1FDA02:opencore-version: REL-099",
                              "opencore-version: REL-099"},
                    ValueCase{"BlanksAround", "name\t  \t value \r", "value"},
                    ValueCase{"NewlinesAtBothEnds", "name\t\n value\n\n", "value"},
                    ValueCase{"BlankAfterTheNewline", "name\tvalue\n ", "value"},
                    ValueCase{"NewlineWithin", "name\tone\ntwo\n", "one\ntwo"},
                    ValueCase{"NothingBehindTheTabAndNoColon", "name\t \n", std::nullopt},
                    ValueCase{"NothingBehindTheTabFallsThroughToTheColon", "4D1FDA02:name\t", "name"},
                    ValueCase{"NotFoundFallsThroughToTheColon", "a:name\tNot found\n", "name\tNot found"},
                    ValueCase{"NotFound", "name\tNot found\n", std::nullopt},
                    ValueCase{"NotFoundBehindAColon", "name: Not found", std::nullopt},
                    ValueCase{"VariableNotFound", "nvram: variable not found\n", std::nullopt},
                    ValueCase{"NotFoundInCapitals", "name\tNot Found", "Not Found"},
                    ValueCase{"NotFoundWithMore", "name\tNot found here", "Not found here"},
                    ValueCase{"NothingBehindTheColon", "name:", std::nullopt},
                    ValueCase{"NoSeparator", "value", std::nullopt}, ValueCase{"Empty", "", std::nullopt}),
    [](const auto &row) { return row.param.name; });

// --- readBootDisk

struct BootDiskCase {
    const char *name;
    const char *info;
    std::optional<std::string> identifier;
    std::optional<std::string> volumeName;
};

class ReadsBootDisk : public testing::TestWithParam<BootDiskCase> {};

TEST_P(ReadsBootDisk, FromTheInfoOfTheRoot)
{
    const auto disk = SystemInfoDetector::readBootDisk(GetParam().info);

    EXPECT_EQ(disk.identifier, GetParam().identifier);
    EXPECT_EQ(disk.volumeName, GetParam().volumeName);
}

TEST_P(ReadsBootDisk, AlikeWithCarriageReturns)
{
    EXPECT_EQ(SystemInfoDetector::readBootDisk(withCarriageReturns(GetParam().info)),
              SystemInfoDetector::readBootDisk(GetParam().info));
}

INSTANTIATE_TEST_SUITE_P(
    SystemInfoDetector, ReadsBootDisk,
    testing::Values(
        BootDiskCase{"WholeAlone", "   Part of Whole:   disk2\n   Volume Name:   System HD\n", "disk2", "System HD"},
        BootDiskCase{"StoreBeforeTheWhole", "APFS Physical Store: disk0s2\nPart of Whole: disk1\n", "disk0", {}},
        BootDiskCase{"StoreAfterTheWhole", "Part of Whole: disk1\nAPFS Physical Store: disk0s2\n", "disk0", {}},
        BootDiskCase{"LastOfTwoStores", "APFS Physical Store: disk0s2\nAPFS Physical Store: disk1s2\n", "disk1", {}},
        BootDiskCase{"StoreWithoutAValue", "Part of Whole: disk1\nAPFS Physical Store:\n", "", {}},
        BootDiskCase{"WholeNotApplicableAndNoStore", "Part of Whole: Not applicable\n", {}, {}},
        BootDiskCase{"WholeWithoutAValue", "Part of Whole:\n", {}, {}},
        BootDiskCase{
            "WholeNotApplicableAfterAnother", "Part of Whole: disk1\nPart of Whole: Not applicable\n", "disk1", {}},
        BootDiskCase{"WholeAsADevicePath", "Part of Whole: /dev/disk4s1\n", "disk4", {}},
        BootDiskCase{"VolumeNameNotApplicable",
                     "Volume Name: Not applicable (no file system)\n",
                     {},
                     "Not applicable (no file system)"},
        BootDiskCase{"VolumeNameWithoutAValue", "Volume Name:\n", {}, ""},
        BootDiskCase{"LabelRepeatedInItsValue", "Volume Name: Volume Name: Mac\n", {}, "Mac"},
        BootDiskCase{"LabelNotInFront", "My Part of Whole: disk1\nA Volume Name: x\n", {}, {}},
        BootDiskCase{"LabelInOtherCase", "part of whole: disk1\n", {}, {}}, BootDiskCase{"Empty", "", {}, {}}),
    [](const auto &row) { return row.param.name; });

// --- readOpenCoreVersion

TEST(ReadOpenCoreVersion, TakesTheFirstValueOfTheLinesThatNameOpenCore)
{
    EXPECT_EQ(SystemInfoDetector::readOpenCoreVersion("other\tX\na:opencore-version\tREL-1\nb:opencore-x\tREL-2\n"),
              "REL-1");
}

TEST(ReadOpenCoreVersion, GoesOnWhereALineHasNoValue)
{
    EXPECT_EQ(SystemInfoDetector::readOpenCoreVersion("opencore-version\tNot found\nopencore-version\tREL-2\n"),
              "REL-2");
}

TEST(ReadOpenCoreVersion, FindsTheWordInAnyCaseAndAnyPlaceOfTheLine)
{
    EXPECT_EQ(SystemInfoDetector::readOpenCoreVersion("version\tmy OpenCORE 1\n"), "my OpenCORE 1");
}

TEST(ReadOpenCoreVersion, TakesNothingOfOtherLines)
{
    EXPECT_EQ(SystemInfoDetector::readOpenCoreVersion("version\tREL-1\nopen-core\tREL-2\n"), std::nullopt);
}

TEST(ReadOpenCoreVersion, TakesTheNameWhereTheValueStandsOnTheNextLine)
{
    EXPECT_EQ(SystemInfoDetector::readOpenCoreVersion("4D1FDA02:opencore-version\t\nREL-052-2019-10-30\n"),
              "opencore-version");
}

// --- readBootPathUUIDs

constexpr const char *kFirst = "E04C1A41-F007-43FC-84F8-8B92FF102291";
constexpr const char *kSecond = "0E239BC6-F960-3107-89CF-1C97F78BB46B";

std::string bootPath(std::string_view path)
{
    return std::string("a:boot-path\t").append(path).append("\n");
}

TEST(ReadBootPathUUIDs, GivesTheFirstOfEachLine)
{
    const std::string output = bootPath(std::string(kFirst) + "/" + kSecond) + bootPath(kSecond);

    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(output), ElementsAre(kFirst, kSecond));
}

TEST(ReadBootPathUUIDs, PassesOverLinesThatNameNoBootPathAsItIsWritten)
{
    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs("Boot-Path\t" + std::string(kFirst) + "\n" + kFirst), IsEmpty());
}

TEST(ReadBootPathUUIDs, LooksBehindTheSeparatorOnly)
{
    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(std::string(kFirst) + ":boot-path\tPciRoot(0x0)\n"), IsEmpty());
    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(std::string(kFirst) + " boot-path"), IsEmpty());
}

TEST(ReadBootPathUUIDs, FindsLowerCaseAndKeepsIt)
{
    const std::string uuid = "e04c1a41-f007-43fc-84f8-8b92ff102291";

    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(bootPath("HD(1,GPT," + uuid + ",0x28)")), ElementsAre(uuid));
}

TEST(ReadBootPathUUIDs, FindsItAmongMoreDigits)
{
    EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(bootPath("ABC" + std::string(kFirst) + "DEF")),
                ElementsAre(kFirst));
}

TEST(ReadBootPathUUIDs, TakesNoOtherFormOfDigitsAndDashes)
{
    for (const char *path : {"E04C1A4-F007-43FC-84F8-8B92FF102291", "E04C1A41-F007-43FC-84F8-8B92FF10229",
                             "E04C1A41-F007-43FC-84F88-B92FF102291", "E04C1A41F00743FC84F88B92FF102291",
                             "G04C1A41-F007-43FC-84F8-8B92FF102291", ""})
        EXPECT_THAT(SystemInfoDetector::readBootPathUUIDs(bootPath(path)), IsEmpty()) << path;
}

} // namespace
} // namespace brindle
