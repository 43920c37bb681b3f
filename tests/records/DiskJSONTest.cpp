#include "base/Error.h"
#include "records/PhysicalDisk.h"
#include "records/SerializablePhysicalDisk.h"
#include "support/SampleDisks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace brindle {
namespace {

using nlohmann::ordered_json;
using testing::ElementsAre;

std::vector<std::string> keysOf(const ordered_json &object)
{
    std::vector<std::string> keys;
    for (const auto &[key, value] : object.items())
        keys.push_back(key);
    return keys;
}

/// The JSON of a disk that has the required keys alone.
ordered_json leastDisk()
{
    return ordered_json::parse(encodeDisks({SerializablePhysicalDisk{.identifier = "disk0"}})).at(0);
}

std::string listOf(const ordered_json &disk)
{
    return ordered_json::array({disk}).dump();
}

/// The complaint about \a json, and its code; no complaint is a failure.
std::string complaintAbout(const std::string &json, DiskDecodingError code)
{
    try {
        (void)decodeDisks(json);
    } catch (const Error &error) {
        EXPECT_EQ(error.domain(), "DiskDecoding");
        EXPECT_EQ(error.code(), static_cast<int>(code));
        return error.localizedDescription();
    }
    ADD_FAILURE() << "decoded: " << json;
    return {};
}

TEST(DiskJSON, WritesTheKeysInTheOrderOfTheFields)
{
    const auto json = ordered_json::parse(encodeDisks(std::vector{completeDisk()}));

    EXPECT_THAT(keysOf(json.at(0)),
                ElementsAre("identifier", "mediaUUID", "name", "size", "fileSystem", "mountPoint", "volumeName",
                            "isRemovable", "isWritable", "efiPartitions", "diskType", "isBootDisk", "hasMacOS",
                            "hasOpenCore", "hasClover", "hasWindows", "hasLinux", "hasExFAT", "isDiskImage",
                            "totalSpaceBytes", "usedSpaceBytes", "smartStatus", "isSolidState", "trimSupported",
                            "busProtocol"));
    EXPECT_THAT(keysOf(json.at(0).at("efiPartitions").at(0)),
                ElementsAre("identifier", "mediaUUID", "isMounted", "mountPoint", "volumeName"));
}

TEST(DiskJSON, LeavesAbsentFieldsOut)
{
    const auto json = ordered_json::parse(encodeDisks({SerializablePhysicalDisk{.efiPartitions = {{}}}}));

    EXPECT_THAT(keysOf(json.at(0)), ElementsAre("identifier", "name", "size", "fileSystem", "isRemovable", "isWritable",
                                                "efiPartitions", "diskType", "isBootDisk", "hasMacOS", "hasOpenCore",
                                                "hasClover", "hasWindows", "hasLinux", "hasExFAT", "isDiskImage"));
    EXPECT_THAT(keysOf(json.at(0).at("efiPartitions").at(0)), ElementsAre("identifier", "isMounted"));
}

TEST(DiskJSON, WritesPlainIntegersAndBooleans)
{
    const std::string json = encodeDisks({SerializablePhysicalDisk{.isWritable = true, .totalSpaceBytes = 5}});

    EXPECT_THAT(json, testing::HasSubstr(R"("isWritable":true)"));
    EXPECT_THAT(json, testing::HasSubstr(R"("totalSpaceBytes":5)"));
}

TEST(DiskJSON, WritesAnEmptyListOnOneLineInBothLayouts)
{
    const std::vector<PhysicalDisk> none;

    EXPECT_EQ(encodeDisks(none), "[]");
    EXPECT_EQ(encodeDisks(none, JSONLayout::Indented), "[]");
}

TEST(DiskJSON, WritesDisksAsTheirPersistedForm)
{
    const PhysicalDisk disk = completeDisk();

    EXPECT_EQ(encodeDisks(std::vector{disk}), encodeDisks(std::vector{disk.toSerializable()}));
}

TEST(DiskJSON, IndentsByTwoBlanksWhenAsked)
{
    const std::string json = encodeDisks({SerializablePhysicalDisk{.identifier = "disk0"}}, JSONLayout::Indented);

    EXPECT_THAT(json, testing::StartsWith("[\n  {\n    \"identifier\": \"disk0\",\n"));
}

TEST(DiskJSON, ReplacesBytesThatAreNoText)
{
    const std::string json = encodeDisks({SerializablePhysicalDisk{.identifier = "disk0", .name = "Gen\xE9rico"}});

    EXPECT_EQ(decodeDisks(json).front().name, "Gen\xEF\xBF\xBDrico");
}

TEST(DiskJSON, KeepsACompleteRecordThereAndBack)
{
    const std::vector<SerializablePhysicalDisk> disks{completeDisk().toSerializable(), PhysicalDisk{}.toSerializable()};

    EXPECT_EQ(decodeDisks(encodeDisks(disks)), disks);
    EXPECT_EQ(decodeDisks(encodeDisks(disks, JSONLayout::Indented)), disks);
}

TEST(DiskJSON, KeepsQuotesNewlinesAndDirectionMarksOfANameAsTheyAre)
{
    const std::vector<SerializablePhysicalDisk> disks{
        {.name = "\u2068-rf \"quoted\" \\ \n\u2069", .volumeName = std::string("nul\0inside", 10)}};

    EXPECT_EQ(decodeDisks(encodeDisks(disks)), disks);
}

TEST(DiskJSON, WithoutTheLastFourKeysLoadsAsUnknownFalseFalseAndEmpty)
{
    ordered_json json = ordered_json::parse(encodeDisks(std::vector{completeDisk()})).at(0);
    for (const char *key : {"smartStatus", "isSolidState", "trimSupported", "busProtocol"})
        json.erase(key);

    const PhysicalDisk disk = PhysicalDisk::fromSerialized(decodeDisks(listOf(json)).at(0));

    EXPECT_EQ(disk.smartStatus, SMARTStatus::unknown);
    EXPECT_FALSE(disk.isSolidState);
    EXPECT_FALSE(disk.trimSupported);
    EXPECT_EQ(disk.busProtocol, "");
}

TEST(DiskJSON, OfAnUnexpectedTypeLoadsAsInternalAndStaysRemovableAsStored)
{
    ordered_json json = leastDisk();
    json["diskType"] = "floppy";
    json["isRemovable"] = true;

    const PhysicalDisk disk = PhysicalDisk::fromSerialized(decodeDisks(listOf(json)).at(0));

    EXPECT_EQ(disk.diskType, PhysicalDisk::DiskType::physicalInternal);
    EXPECT_TRUE(disk.isRemovable);
}

TEST(DiskJSON, PassesOverUnknownKeysAndTakesNullAsAbsent)
{
    ordered_json json = leastDisk();
    json["future"] = {{"nested", {1, 2, 3}}};
    json["mediaUUID"] = nullptr;

    EXPECT_EQ(decodeDisks(listOf(json)), (std::vector{SerializablePhysicalDisk{.identifier = "disk0"}}));
}

TEST(DiskJSON, CarriesTheWholeRangeOfSignedIntegers)
{
    using Limits = std::numeric_limits<std::int64_t>;
    const std::vector<SerializablePhysicalDisk> disks{
        {.totalSpaceBytes = Limits::max(), .usedSpaceBytes = Limits::min()}};

    EXPECT_EQ(decodeDisks(encodeDisks(disks)), disks);
}

class RequiredKey : public testing::TestWithParam<const char *> {};

TEST_P(RequiredKey, OfADiskIsNamedWhenItIsMissing)
{
    ordered_json json = leastDisk();
    json.erase(GetParam());
    const std::string list = ordered_json::array({leastDisk(), leastDisk(), leastDisk(), json}).dump();

    EXPECT_EQ(complaintAbout(list, DiskDecodingError::missingKey),
              std::string("disk 3: the key \"") + GetParam() + "\" is missing");
}

TEST_P(RequiredKey, OfADiskCountsAsMissingWhenItIsNull)
{
    ordered_json json = leastDisk();
    json[GetParam()] = nullptr;

    EXPECT_EQ(complaintAbout(listOf(json), DiskDecodingError::missingKey),
              std::string("disk 0: the key \"") + GetParam() + "\" is missing");
}

INSTANTIATE_TEST_SUITE_P(DiskJSON, RequiredKey,
                         testing::Values("identifier", "name", "size", "fileSystem", "isRemovable", "isWritable",
                                         "efiPartitions", "diskType", "isBootDisk", "hasMacOS", "hasOpenCore",
                                         "hasClover", "hasWindows", "hasLinux", "hasExFAT", "isDiskImage"),
                         [](const auto &row) { return std::string(row.param); });

TEST(DiskJSON, NamesTheDiskThePartitionAndTheMissingKey)
{
    ordered_json json = leastDisk();
    json["efiPartitions"] = {{{"identifier", "disk0s1"}, {"isMounted", true}}, {{"identifier", "disk0s2"}}};

    EXPECT_EQ(complaintAbout(listOf(json), DiskDecodingError::missingKey),
              "disk 0, EFI partition 1: the key \"isMounted\" is missing");

    json["efiPartitions"] = {{{"isMounted", true}}};

    EXPECT_EQ(complaintAbout(listOf(json), DiskDecodingError::missingKey),
              "disk 0, EFI partition 0: the key \"identifier\" is missing");
}

struct TypeCase {
    const char *name;
    const char *key;
    const char *value;
    const char *wanted;
};

class WrongType : public testing::TestWithParam<TypeCase> {};

TEST_P(WrongType, IsNamedWithItsKey)
{
    ordered_json json = leastDisk();
    json[GetParam().key] = "@";
    std::string list = listOf(json);
    list.replace(list.find("\"@\""), 3, GetParam().value);

    EXPECT_EQ(complaintAbout(list, DiskDecodingError::wrongType),
              std::string("disk 0: the key \"") + GetParam().key + "\" is not " + GetParam().wanted);
}

INSTANTIATE_TEST_SUITE_P(
    DiskJSON, WrongType,
    testing::Values(TypeCase{"NumberAsText", "name", "5", "a text"},
                    TypeCase{"TextAsBool", "isWritable", "\"true\"", "true or false"},
                    TypeCase{"NumberAsBool", "hasMacOS", "1", "true or false"},
                    TypeCase{"ObjectAsList", "efiPartitions", "{}", "a list"},
                    TypeCase{"OptionalText", "mediaUUID", "true", "a text"},
                    TypeCase{"OptionalBool", "isSolidState", "0", "true or false"},
                    TypeCase{"OptionalInteger", "totalSpaceBytes", "\"5\"", "an integer of 64 bits"},
                    TypeCase{"FractionAsInteger", "totalSpaceBytes", "1.5", "an integer of 64 bits"},
                    TypeCase{"RealAsInteger", "totalSpaceBytes", "1.0", "an integer of 64 bits"},
                    TypeCase{"OneAboveTheRange", "usedSpaceBytes", "9223372036854775808", "an integer of 64 bits"},
                    TypeCase{"OneBelowTheRange", "usedSpaceBytes", "-9223372036854775809", "an integer of 64 bits"},
                    TypeCase{"FarAboveTheRange", "usedSpaceBytes", "99999999999999999999999", "an integer of 64 bits"}),
    [](const auto &row) { return row.param.name; });

TEST(DiskJSON, NamesWhatIsNoObject)
{
    EXPECT_EQ(complaintAbout("[5]", DiskDecodingError::wrongType), "disk 0 is not an object");

    ordered_json json = leastDisk();
    json["efiPartitions"] = {nullptr};

    EXPECT_EQ(complaintAbout(listOf(json), DiskDecodingError::wrongType), "disk 0, EFI partition 0 is not an object");
}

TEST(DiskJSON, TellsWhatIsNoListFromWhatIsNoJSON)
{
    EXPECT_EQ(complaintAbout("{}", DiskDecodingError::wrongType), "the disks are not a list");
    EXPECT_EQ(complaintAbout("null", DiskDecodingError::wrongType), "the disks are not a list");

    const std::string whole = encodeDisks(std::vector{completeDisk()});
    for (const std::string &json :
         {std::string(), std::string("[{]"), whole.substr(0, whole.size() / 2), std::string("\0\xFF", 2),
          std::string("[\"Gen\xE9rico\"]"), std::string("[1e999]"), whole + "x"})
        EXPECT_EQ(complaintAbout(json, DiskDecodingError::notJSON), "the disks are not JSON");
}

TEST(DiskJSON, BearsAHundredThousandOpenBrackets)
{
    EXPECT_EQ(complaintAbout(std::string(100'000, '['), DiskDecodingError::notJSON), "the disks are not JSON");
}

} // namespace
} // namespace brindle
