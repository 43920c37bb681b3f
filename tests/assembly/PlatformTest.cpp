#include "assembly/Platform.h"

#include "platform/MemorySecretStore.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/PrivateSession.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <string>

namespace brindle {
namespace {

class PlatformTest : public testing::Test {
protected:
    std::string root() { return m_folder.path().toStdString(); }

    PlatformChanges changes() { return {.toolRoot = std::nullopt, .userDefaultsFile = root() + "/settings.plist"}; }

private:
    QTemporaryDir m_folder;
};

TEST_F(PlatformTest, NeverOpensTheRealSecretStoreWhereAFolderStandsForTheMachine)
{
    PlatformChanges withToolRoot = changes();
    withToolRoot.toolRoot = root();

    const Platform platform = makePlatform(withToolRoot);

    EXPECT_TRUE(dynamic_cast<MemorySecretStore *>(platform.secretStore.get()));
    EXPECT_EQ(platform.toolPaths.sudo(), root() + "/usr/bin/sudo");
}

TEST_F(PlatformTest, KeepsSecretsInTheSystemsStoreOtherwise)
{
    const Platform platform = makePlatform(changes());

    EXPECT_TRUE(dynamic_cast<LinuxSecretStore *>(platform.secretStore.get()));
    EXPECT_EQ(platform.toolPaths.sudo(), "/usr/bin/sudo");
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
