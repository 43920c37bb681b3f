#include "platform/linux/LinuxBundleInfo.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <fstream>

namespace brindle {
namespace {

TEST(LinuxBundleInfo, IsWhatThePackageIsDescribedAs)
{
    std::ifstream file(BRINDLE_TESTS "/../packaging/application.json");
    const auto description = nlohmann::json::parse(file);

    const BundleInfo bundle = linuxBundleInfo();

    EXPECT_EQ(bundle.identifier, description.at("identifier"));
    EXPECT_EQ(bundle.shortVersion, description.at("version"));
    EXPECT_EQ(bundle.version, description.at("build"));
    EXPECT_EQ(bundle.displayName, description.at("displayName"));
    EXPECT_EQ(bundle.name, description.at("name"));
    EXPECT_EQ(bundle.executable, description.at("executable"));
}

TEST(LinuxBundleInfo, HasTheIdentifierThatTheSettingsAreStoredUnder)
{
    EXPECT_EQ(linuxBundleInfo().identifier, "com.orlane.Brindle");
}

} // namespace
} // namespace brindle
