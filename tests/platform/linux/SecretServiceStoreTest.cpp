#include "platform/linux/SecretServiceStore.h"

#include "platform/linux/PrivateSession.h"
#include "support/MaskedPassword.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const SecretKey kKey{"com.orlane.Brindle", "admin-password"};

/// The store on a real service, in a session of the test's own.
class SecretServiceStoreTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateSession::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        session.emplace();
    }

    /// What another program reads under the key.
    std::string lookup() { return session->secretTool({"lookup", "service", kKey.service, "account", kKey.account}); }

    std::optional<PrivateSession> session;
    SecretServiceStore store;
};

TEST_F(SecretServiceStoreTest, KeepsASecretWithTheAttributesServiceAndAccount)
{
    EXPECT_EQ(store.add(kKey, Secret("open sesame")), SecretStore::kDone);

    EXPECT_EQ(store.find(kKey), Secret("open sesame"));
    EXPECT_EQ(lookup(), "open sesame");
}

TEST_F(SecretServiceStoreTest, HoldsOneItemForEachKey)
{
    (void)store.add(kKey, Secret("one"));
    (void)store.add(kKey, Secret("two"));

    const std::string items = session->secretTool({"search", "--all", "service", kKey.service});
    EXPECT_EQ(store.find(kKey), Secret("two"));
    EXPECT_THAT(items, HasSubstr("secret = two"));
    EXPECT_THAT(items, Not(HasSubstr("secret = one")));
}

TEST_F(SecretServiceStoreTest, FindsNothingUnderAnotherServiceOrAccount)
{
    (void)store.add(kKey, Secret("open sesame"));

    EXPECT_FALSE(store.find({"com.orlane.Tansy", kKey.account}));
    EXPECT_FALSE(store.find({kKey.service, "another"}));
}

TEST_F(SecretServiceStoreTest, RemovesAnItemOnce)
{
    (void)store.add(kKey, Secret("open sesame"));

    EXPECT_EQ(store.remove(kKey), SecretStore::kDone);
    EXPECT_EQ(store.remove(kKey), SecretStore::kItemNotFound);
    EXPECT_FALSE(store.find(kKey));
    EXPECT_THAT(lookup(), IsEmpty());
}

TEST_F(SecretServiceStoreTest, KeepsBytesThatAreNoText)
{
    const Secret bytes(std::string_view("\0\xff\n", 3));

    EXPECT_EQ(store.add(kKey, bytes), SecretStore::kDone);
    EXPECT_EQ(store.find(kKey), bytes);
}

TEST_F(SecretServiceStoreTest, GivesAndTakesNothingWhileItIsLockedAndAsksNobody)
{
    (void)store.add(kKey, Secret("open sesame"));
    session->lockKeyring();

    EXPECT_FALSE(store.find(kKey));
    EXPECT_EQ(store.add(kKey, Secret("another")), SecretStore::kInteractionNotAllowed);
    EXPECT_EQ(store.remove(kKey), SecretStore::kInteractionNotAllowed);
    EXPECT_FALSE(session->hasAsked());
}

TEST_F(SecretServiceStoreTest, SurvivesTheEndOfTheServiceAndOfTheBus)
{
    (void)store.add(kKey, Secret("open sesame"));

    session->endKeyring();
    EXPECT_FALSE(store.find(kKey));
    EXPECT_EQ(store.add(kKey, Secret("another")), SecretStore::kNotAvailable);
    session->endBus();
    EXPECT_FALSE(store.find(kKey));
    EXPECT_EQ(store.remove(kKey), SecretStore::kNotAvailable);
}

TEST_F(SecretServiceStoreTest, TakesASearchThatFailsForNoSignThatNothingIsStored)
{
    (void)store.add(kKey, Secret("open sesame"));
    session->refuse("org.freedesktop.Secret.Service", "SearchItems");

    EXPECT_FALSE(store.find(kKey));
    EXPECT_EQ(store.remove(kKey), SecretStore::kNotAvailable);
}

TEST_F(SecretServiceStoreTest, LeavesNoCopyInMemory)
{
    (void)store.add(kKey, maskedPassword());
    const bool isKept = store.find(kKey) == maskedPassword();

    EXPECT_TRUE(isKept);
    EXPECT_FALSE(isMaskedPasswordInMemory());
}

} // namespace
} // namespace brindle
