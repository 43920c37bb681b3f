#include "platform/linux/KernelKeyringStore.h"

#include "support/ChildOfTest.h"
#include "support/MaskedPassword.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace brindle {
namespace {

/// The store on the machine's kernel, under a service that no other process uses. The kernel's own calls stand for
/// another program.
class KernelKeyringStoreTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const int status = store.add(key, Secret("probe")); status != SecretStore::kDone)
            GTEST_SKIP() << "the kernel gives no key: " << std::strerror(status);
        store.remove(key);
    }
    void TearDown() override { store.remove(key); }

    KernelKeyringStore store;
    const SecretKey key{fmt::format("com.orlane.Brindle.test-{}", getpid()), "admin-password"};
};

TEST_F(KernelKeyringStoreTest, KeepsASecret)
{
    EXPECT_EQ(store.add(key, Secret("open sesame")), SecretStore::kDone);

    EXPECT_EQ(store.find(key), Secret("open sesame"));
    EXPECT_EQ(KernelKeyringStore().find(key), Secret("open sesame"));
}

TEST_F(KernelKeyringStoreTest, HoldsOneItemForEachKey)
{
    (void)store.add(key, Secret("one"));
    (void)store.add(key, Secret("two"));

    EXPECT_EQ(store.find(key), Secret("two"));
    EXPECT_EQ(store.remove(key), SecretStore::kDone);
    EXPECT_FALSE(store.find(key));
}

TEST_F(KernelKeyringStoreTest, FindsNothingUnderAnotherServiceOrAccount)
{
    (void)store.add(key, Secret("open sesame"));

    EXPECT_FALSE(store.find({"com.orlane.Brindle.nobody", key.account}));
    EXPECT_FALSE(store.find({key.service, "another"}));
}

TEST_F(KernelKeyringStoreTest, RemovesAnItemOnce)
{
    (void)store.add(key, Secret("open sesame"));

    EXPECT_EQ(store.remove(key), SecretStore::kDone);
    EXPECT_EQ(store.remove(key), SecretStore::kItemNotFound);
}

TEST_F(KernelKeyringStoreTest, ReadsInASessionThatDoesNotHoldTheUsersKeyring)
{
    (void)store.add(key, Secret("open sesame"));

    const pid_t other = startChild([this] {
        ASSERT_GE(syscall(SYS_keyctl, 1 /* KEYCTL_JOIN_SESSION_KEYRING */, nullptr), 0);
        KernelKeyringStore inNewSession;

        EXPECT_EQ(inNewSession.find(key), Secret("open sesame"));
        EXPECT_EQ(inNewSession.add(key, Secret("another")), SecretStore::kDone);
    });

    EXPECT_EQ(endOf(other), 0);
    EXPECT_EQ(store.find(key), Secret("another"));
}

TEST_F(KernelKeyringStoreTest, TellsTheKernelsErrorForASecretThatIsTooLarge)
{
    EXPECT_EQ(store.add(key, Secret(std::string(100'000, 'x'))), EINVAL);
    EXPECT_FALSE(store.find(key));
}

TEST_F(KernelKeyringStoreTest, LeavesNoCopyInMemory)
{
    (void)store.add(key, maskedPassword());
    const bool isKept = store.find(key) == maskedPassword();

    EXPECT_TRUE(isKept);
    EXPECT_FALSE(isMaskedPasswordInMemory());
}

} // namespace
} // namespace brindle
