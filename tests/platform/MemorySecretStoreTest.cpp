#include "platform/MemorySecretStore.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

const SecretKey kKey{"com.orlane.Brindle", "admin-password"};

TEST(MemorySecretStore, GivesWhatWasAddedLast)
{
    MemorySecretStore store;

    EXPECT_EQ(store.add(kKey, Secret("one")), SecretStore::kDone);
    EXPECT_EQ(store.add(kKey, Secret("two")), SecretStore::kDone);

    EXPECT_EQ(store.find(kKey), Secret("two"));
}

TEST(MemorySecretStore, TellsServicesAndAccountsApart)
{
    MemorySecretStore store;

    (void)store.add(kKey, Secret("one"));

    EXPECT_FALSE(store.find({"another", kKey.account}));
    EXPECT_FALSE(store.find({kKey.service, "another"}));
}

TEST(MemorySecretStore, RemovesAnItemOnce)
{
    MemorySecretStore store;
    (void)store.add(kKey, Secret("one"));

    EXPECT_EQ(store.remove(kKey), SecretStore::kDone);
    EXPECT_EQ(store.remove(kKey), SecretStore::kItemNotFound);
    EXPECT_FALSE(store.find(kKey));
}

} // namespace
} // namespace brindle
