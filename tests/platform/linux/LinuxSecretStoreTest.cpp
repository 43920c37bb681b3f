#include "platform/linux/LinuxSecretStore.h"

#include "platform/linux/KernelKeyringStore.h"
#include "platform/linux/PrivateSession.h"
#include "platform/linux/SecretServiceStore.h"
#include "support/LogCapture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <optional>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char *kFallback = "⚠️ No Secret Service answers: the password is kept in the kernel's keyring, until "
                                  "the next restart at most";

class LinuxSecretStoreTest : public testing::Test {
protected:
    const SecretKey key{fmt::format("com.orlane.Brindle.test-{}", getpid()), "admin-password"};
    LogCapture log;
};

TEST_F(LinuxSecretStoreTest, IsTheSecretServiceWhereOneAnswers)
{
    if (const std::string obstacle = PrivateSession::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    const PrivateSession session;
    LinuxSecretStore store(SECRET_SERVICE_MODULE);

    EXPECT_EQ(store.add(key, Secret("open sesame")), SecretStore::kDone);

    EXPECT_EQ(SecretServiceStore().find(key), Secret("open sesame"));
    EXPECT_FALSE(KernelKeyringStore().find(key));
    EXPECT_EQ(store.find(key), Secret("open sesame"));
    EXPECT_EQ(store.remove(key), SecretStore::kDone);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LinuxSecretStoreTest, IsTheKernelsKeyringWhereNoServiceAnswersAndSaysSoOnce)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    LinuxSecretStore store(SECRET_SERVICE_MODULE);
    const std::size_t linesBeforeTheFirstCall = log.lines().size();
    if (store.add(key, Secret("open sesame")) != SecretStore::kDone)
        GTEST_SKIP() << "the kernel gives no key";

    EXPECT_EQ(KernelKeyringStore().find(key), Secret("open sesame"));
    EXPECT_EQ(store.find(key), Secret("open sesame"));
    EXPECT_EQ(store.remove(key), SecretStore::kDone);
    EXPECT_EQ(linesBeforeTheFirstCall, 0U);
    EXPECT_THAT(log.lines(), ElementsAre(kFallback));
}

struct ModuleCase {
    const char *name;
    std::filesystem::path module;
};

class LinuxSecretStoreWithoutModule : public LinuxSecretStoreTest, public testing::WithParamInterface<ModuleCase> {};

TEST_P(LinuxSecretStoreWithoutModule, IsTheKernelsKeyringAndSaysWhyOnceEvenWhereAServiceAnswers)
{
    std::optional<PrivateSession> session;
    if (PrivateSession::obstacle().empty())
        session.emplace();
    LinuxSecretStore store(GetParam().module);

    if (store.add(key, Secret("open sesame")) != SecretStore::kDone)
        GTEST_SKIP() << "the kernel gives no key";

    EXPECT_EQ(KernelKeyringStore().find(key), Secret("open sesame"));
    EXPECT_EQ(store.find(key), Secret("open sesame"));
    EXPECT_EQ(store.remove(key), SecretStore::kDone);
    EXPECT_THAT(log.lines(),
                ElementsAre(StartsWith("⚠️ The module for the Secret Service can't be loaded: "), kFallback));
}

const ModuleCase kModuleCases[] = {
    {"ThatIsMissing", "/nonexistent/brindle-secret-service.so"},
    {"ThatIsNoLibrary", "/proc/self/cmdline"},
    {"ThatLacksTheFunction", "libm.so.6"},
};

INSTANTIATE_TEST_SUITE_P(Cases, LinuxSecretStoreWithoutModule, testing::ValuesIn(kModuleCases),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
} // namespace brindle
