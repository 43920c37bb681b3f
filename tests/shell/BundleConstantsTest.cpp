#include "shell/BundleConstants.h"

#include "support/LogCapture.h"
#include "support/SampleBundle.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(BundleConstants, AreWhatTheBundleSays)
{
    const LogCapture log;

    const BundleConstants constants(completeBundle());

    EXPECT_EQ(constants.identifier, "com.orlane.Brindle");
    EXPECT_EQ(constants.version, "2.3.4");
    EXPECT_EQ(constants.build, "56");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(BundleConstants, HaveAValueWhereTheBundleSaysNothing)
{
    const BundleConstants constants(BundleInfo{});

    EXPECT_EQ(constants.identifier, "com.orlane.Brindle");
    EXPECT_EQ(constants.version, "1.0");
    EXPECT_EQ(constants.build, "1");
}

TEST(BundleConstants, KeepTheLegacyIdentifierAndWarnOfIt)
{
    const LogCapture log;

    const BundleConstants constants({.identifier = "com.orlane.Tansy"});

    EXPECT_EQ(constants.identifier, "com.orlane.Tansy");
    EXPECT_THAT(log.lines(), ElementsAre("⚠️ WARNING: Using legacy bundle ID 'com.orlane.Tansy'",
                                         "   Consider updating to 'com.orlane.Brindle' in Info.plist"));
}

} // namespace
} // namespace brindle
