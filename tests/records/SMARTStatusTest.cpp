#include "records/SMARTStatus.h"

#include <gtest/gtest.h>

#include <string_view>

namespace brindle {
namespace {

struct StatusCase {
    const char *name;
    SMARTStatus status;
    std::string_view text;
};

class SMARTStatusCase : public testing::TestWithParam<StatusCase> {};

TEST_P(SMARTStatusCase, HasItsRawValue)
{
    EXPECT_EQ(rawValue(GetParam().status), GetParam().text);
}

TEST_P(SMARTStatusCase, IsBuiltFromItsRawValue)
{
    EXPECT_EQ(fromRawValue<SMARTStatus>(GetParam().text), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(SMARTStatus, SMARTStatusCase,
                         testing::Values(StatusCase{"Verified", SMARTStatus::verified, "Verified"},
                                         StatusCase{"Failing", SMARTStatus::failing, "Failing"},
                                         StatusCase{"NotSupported", SMARTStatus::notSupported, "Not Supported"},
                                         StatusCase{"Unknown", SMARTStatus::unknown, "Unknown"}),
                         [](const auto &row) { return row.param.name; });

TEST(SMARTStatus, IsNotBuiltFromAnyOtherText)
{
    for (const std::string_view text : {"", "verified", "Verified ", "NotSupported"})
        EXPECT_EQ(fromRawValue<SMARTStatus>(text), std::nullopt) << text;
}

} // namespace
} // namespace brindle
