#include "hardware/ProfilerRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::ElementsAre;

ProfilerRequest request(std::vector<const char *> arguments)
{
    return readProfilerRequest(arguments);
}

std::vector<std::string_view> names(const ProfilerRequest &request)
{
    std::vector<std::string_view> names;
    for (const DataType *const type : request.dataTypes)
        names.push_back(type->name);
    return names;
}

TEST(ProfilerRequest, AsksForOneDataTypeInFull)
{
    const ProfilerRequest asked = request({"SPHardwareDataType"});

    EXPECT_THAT(names(asked), ElementsAre("SPHardwareDataType"));
    EXPECT_EQ(asked.detail, DetailLevel::full);
}

TEST(ProfilerRequest, TakesTheDetailLevelBeforeAndBehindTheDataType)
{
    EXPECT_EQ(request({"SPMemoryDataType", "-detailLevel", "mini"}).detail, DetailLevel::mini);
    EXPECT_EQ(request({"-detailLevel", "basic", "SPMemoryDataType"}).detail, DetailLevel::basic);
}

TEST(ProfilerRequest, KeepsTheOrderOfSeveralDataTypes)
{
    EXPECT_THAT(names(request({"SPDisplaysDataType", "SPHardwareDataType"})),
                ElementsAre("SPDisplaysDataType", "SPHardwareDataType"));
}

TEST(ProfilerRequest, AsksForAllDataTypesWhereNoneIsNamed)
{
    EXPECT_THAT(names(request({"-detailLevel", "full"})),
                ElementsAre("SPHardwareDataType", "SPMemoryDataType", "SPDisplaysDataType"));
}

TEST(ProfilerRequest, AsksForHelpAndForNames)
{
    EXPECT_TRUE(request({"--help"}).wantsHelp);
    EXPECT_TRUE(request({"-h"}).wantsHelp);
    EXPECT_TRUE(request({"-listDataTypes"}).wantsNames);
}

struct FaultCase {
    const char *name;
    std::vector<const char *> arguments;
    const char *error;
};

class RefusesTheCommandLine : public testing::TestWithParam<FaultCase> {};

TEST_P(RefusesTheCommandLine, AndSaysWhy)
{
    std::string error = "none";

    try {
        (void)request(GetParam().arguments);
    } catch (const ProfilerUsageError &thrown) {
        error = thrown.what();
    }

    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    ProfilerRequest, RefusesTheCommandLine,
    testing::Values(
        FaultCase{"unknownDataType", {"SPUSBDataType"}, "unknown data type: SPUSBDataType"},
        FaultCase{"otherCase", {"sphardwaredatatype"}, "unknown data type: sphardwaredatatype"},
        FaultCase{"empty", {""}, "unknown data type: "}, FaultCase{"unknownOption", {"-xml"}, "unknown option: -xml"},
        FaultCase{"unknownLevel", {"-detailLevel", "maxi"}, "unknown detail level: maxi"},
        FaultCase{"noLevel", {"SPMemoryDataType", "-detailLevel"}, "-detailLevel needs a level: mini, basic or full"},
        FaultCase{"controlCharacters", {"\x1B[2J"}, "unknown data type: \uFFFD[2J"}),
    [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
