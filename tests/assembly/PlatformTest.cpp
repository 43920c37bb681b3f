#include "assembly/Platform.h"

#include "platform/MemorySecretStore.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/PrivateSession.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <unistd.h>

#include <string>

namespace brindle {
namespace {

class PlatformTest : public testing::Test {
protected:
    std::string root() { return m_folder.path().toStdString(); }

    PlatformChanges changes() { return {.userDefaultsFile = root() + "/settings.plist"}; }

private:
    QTemporaryDir m_folder;
};

TEST_F(PlatformTest, NeverOpensTheRealSecretStoreWhereAFolderStandsForTheMachine)
{
    PlatformChanges withToolRoot = changes();
    withToolRoot.toolRoot = root();

    const Platform platform = makePlatform(withToolRoot);

    EXPECT_TRUE(dynamic_cast<MemorySecretStore *>(platform.secretStore.get()));
    EXPECT_TRUE(platform.isSecretStoreTemporary);
    EXPECT_EQ(platform.toolPaths.sudo(), root() + "/usr/bin/sudo");
}

TEST_F(PlatformTest, HoldsAGivenPasswordInMemoryAlone)
{
    PlatformChanges withPassword = changes();
    withPassword.password = Secret("open sesame");

    const Platform platform = makePlatform(withPassword);

    ASSERT_TRUE(dynamic_cast<MemorySecretStore *>(platform.secretStore.get()));
    EXPECT_TRUE(platform.isSecretStoreTemporary);
    EXPECT_EQ(platform.secretStore->find({"com.orlane.Brindle", "admin-password"}), Secret("open sesame"));
}

TEST_F(PlatformTest, NeedsNoPasswordOnlyForRootOnTheRealMachine)
{
    PlatformChanges withToolRoot = changes();
    withToolRoot.toolRoot = root();

    EXPECT_EQ(makePlatform(changes()).isRoot, geteuid() == 0);
    EXPECT_FALSE(makePlatform(withToolRoot).isRoot);
}

TEST_F(PlatformTest, KeepsSecretsInTheSystemsStoreOtherwise)
{
    const Platform platform = makePlatform(changes());

    EXPECT_TRUE(dynamic_cast<LinuxSecretStore *>(platform.secretStore.get()));
    EXPECT_FALSE(platform.isSecretStoreTemporary);
    EXPECT_EQ(platform.toolPaths.sudo(), "/usr/bin/sudo");
}

TEST_F(PlatformTest, TakesTheColourSchemeThatTheEnvironmentNames)
{
    const auto schemeFor = [](const char *value) {
        qputenv("BRINDLE_SCHEME", value);
        const auto scheme = colorSchemeOfEnvironment();
        qunsetenv("BRINDLE_SCHEME");
        return scheme;
    };

    EXPECT_EQ(schemeFor("dark"), ColorScheme::dark);
    EXPECT_EQ(schemeFor("light"), ColorScheme::light);
    EXPECT_EQ(schemeFor("Dark"), std::nullopt);
    EXPECT_EQ(schemeFor(""), std::nullopt);
    EXPECT_EQ(colorSchemeOfEnvironment(), std::nullopt);
}

TEST_F(PlatformTest, FindsTheModuleOfTheSecretServiceBesideTheProgram)
{
    if (const std::string obstacle = PrivateSession::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    PrivateSession session;
    const Platform platform = makePlatform(changes());

    EXPECT_EQ(platform.secretStore->add({"com.orlane.Brindle", "test"}, Secret("open sesame")), SecretStore::kDone);

    EXPECT_EQ(session.secretTool({"lookup", "service", "com.orlane.Brindle", "account", "test"}), "open sesame");
}

} // namespace
} // namespace brindle
