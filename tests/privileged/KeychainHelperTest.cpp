#include "privileged/KeychainFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class KeychainHelperTest : public KeychainFixture {};

// --- storing

TEST_F(KeychainHelperTest, StoresAPasswordUnderItsServiceAndAccount)
{
    keychain();
    store.calls.clear();

    const bool isStored = keychain().storePassword(Secret("open sesame"));

    EXPECT_TRUE(isStored);
    EXPECT_EQ(store.find(kPasswordKey), Secret("open sesame"));
    EXPECT_EQ(log.lines().back(), "✅ Admin password stored in keychain");
}

TEST_F(KeychainHelperTest, TakesAnotherBundlesIdentifierAsItsService)
{
    KeychainHelper::Surroundings other = surroundings();
    other.service = "org.example.Other";
    KeychainHelper helper(std::move(other));

    helper.storePassword(Secret("open sesame"));

    EXPECT_EQ(store.find({"org.example.Other", "admin-password"}), Secret("open sesame"));
    EXPECT_FALSE(store.find(kPasswordKey));
}

TEST_F(KeychainHelperTest, RefusesAnEmptyPasswordAndLeavesTheStoredOne)
{
    keychain().storePassword(Secret("open sesame"));
    store.calls.clear();

    const bool isStored = keychain().storePassword(Secret());

    EXPECT_FALSE(isStored);
    EXPECT_THAT(store.calls, IsEmpty());
    EXPECT_EQ(keychain().retrievePassword(), Secret("open sesame"));
}

TEST_F(KeychainHelperTest, RefusesAPasswordThatIsNoUtf8)
{
    EXPECT_FALSE(keychain().storePassword(Secret("\xff")));
    EXPECT_THAT(store.calls, IsEmpty());
}

TEST_F(KeychainHelperTest, ReplacesTheStoredPasswordByDeletingAndAdding)
{
    keychain().storePassword(Secret("one"));
    store.calls.clear();

    keychain().storePassword(Secret("two"));

    EXPECT_THAT(store.calls,
                ElementsAre("remove com.orlane.Brindle admin-password", "add com.orlane.Brindle admin-password"));
    EXPECT_EQ(keychain().retrievePassword(), Secret("two"));
}

TEST_F(KeychainHelperTest, AddsEvenWhereTheDeletionFails)
{
    store.removeFailures = {SecretStore::kNotAvailable};

    EXPECT_TRUE(keychain().storePassword(Secret("one")));
}

TEST_F(KeychainHelperTest, TellsTheStatusOfAStoreThatRefuses)
{
    store.addFailures = {SecretStore::kInteractionNotAllowed};

    EXPECT_FALSE(keychain().storePassword(Secret("one")));
    EXPECT_EQ(log.lines().back(), "❌ Failed to store password: -25308");
}

// --- reading

TEST_F(KeychainHelperTest, GivesNoPasswordWhereNoneIsStored)
{
    EXPECT_FALSE(keychain().retrievePassword());
}

TEST_F(KeychainHelperTest, GivesNoPasswordThatIsNoUtf8AndSaysNothing)
{
    keychain();
    (void)store.add(kPasswordKey, Secret("\xff"));
    const std::size_t linesBefore = log.lines().size();

    EXPECT_FALSE(keychain().retrievePassword());
    EXPECT_EQ(log.lines().size(), linesBefore);
}

TEST_F(KeychainHelperTest, ReadsTheStoreEachTime)
{
    (void)store.add(kPasswordKey, Secret("one"));
    (void)keychain().retrievePassword();
    (void)store.add(kPasswordKey, Secret("two"));

    EXPECT_EQ(keychain().retrievePassword(), Secret("two"));
}

// --- deleting

TEST_F(KeychainHelperTest, DeletesTheStoredPassword)
{
    keychain().storePassword(Secret("one"));

    EXPECT_TRUE(keychain().deletePassword());
    EXPECT_FALSE(keychain().retrievePassword());
    EXPECT_EQ(log.lines().back(), "✅ Admin password deleted from keychain");
}

TEST_F(KeychainHelperTest, DeletesNothingWithTheSameWords)
{
    EXPECT_TRUE(keychain().deletePassword());
    EXPECT_EQ(log.lines().back(), "✅ Admin password deleted from keychain");
}

TEST_F(KeychainHelperTest, FailsToDeleteSilentlyWhereTheStoreRefuses)
{
    keychain();
    const std::size_t linesBefore = log.lines().size();
    store.removeFailures = {SecretStore::kInteractionNotAllowed};

    EXPECT_FALSE(keychain().deletePassword());
    EXPECT_EQ(log.lines().size(), linesBefore);
}

// --- asking

TEST_F(KeychainHelperTest, AsksForThePasswordInItsWords)
{
    resultOf(keychain().promptForPassword());

    ASSERT_EQ(dialogs.securePrompts.size(), 1U);
    const SecurePrompt &prompt = dialogs.securePrompts.front();
    EXPECT_EQ(prompt.alert.messageText, "Administrator Access Required");
    EXPECT_EQ(prompt.alert.informativeText, "Brindle needs administrator privileges to mount/unmount EFI partitions. "
                                            "Please enter your administrator password.");
    EXPECT_EQ(prompt.alert.style, AlertStyle::informational);
    EXPECT_THAT(prompt.alert.buttons, ElementsAre("OK", "Cancel"));
    EXPECT_EQ(prompt.placeholder, "Administrator Password");
}

TEST_F(KeychainHelperTest, StoresAPasswordThatSudoAccepts)
{
    sudoAccepts();
    dialogs.secureAnswers = {Secret("open sesame")};

    EXPECT_TRUE(resultOf(keychain().promptForPassword()));
    EXPECT_EQ(keychain().retrievePassword(), Secret("open sesame"));
    EXPECT_THAT(dialogs.alerts, IsEmpty());
}

TEST_F(KeychainHelperTest, EndsAPromptWithTheWordOfTheStore)
{
    sudoAccepts();
    store.addFailures = {SecretStore::kNotAvailable};
    dialogs.secureAnswers = {Secret("open sesame")};

    EXPECT_FALSE(resultOf(keychain().promptForPassword()));
    EXPECT_THAT(dialogs.alerts, IsEmpty());
}

TEST_F(KeychainHelperTest, ShowsARefusalOnceAndStoresNothing)
{
    sudoRefuses();
    dialogs.secureAnswers = {Secret("wrong"), Secret("right")};

    EXPECT_FALSE(resultOf(keychain().promptForPassword()));

    EXPECT_FALSE(keychain().retrievePassword());
    EXPECT_EQ(dialogs.securePrompts.size(), 1U);
    ASSERT_EQ(dialogs.alerts.size(), 1U);
    const Alert &refusal = dialogs.alerts.front();
    EXPECT_EQ(refusal.messageText, "Authentication Failed");
    EXPECT_EQ(refusal.informativeText,
              "The password you entered is incorrect or does not have administrator privileges.");
    EXPECT_EQ(refusal.style, AlertStyle::warning);
    EXPECT_THAT(refusal.buttons, ElementsAre("OK"));
}

TEST_F(KeychainHelperTest, EndsACancelledPromptWithoutTheAlertOfARefusal)
{
    (void)store.add(kPasswordKey, Secret("stored before"));
    dialogs.secureAnswers = {std::nullopt};

    EXPECT_FALSE(resultOf(keychain().promptForPassword()));

    EXPECT_THAT(dialogs.alerts, IsEmpty());
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_EQ(keychain().retrievePassword(), Secret("stored before"));
}

TEST_F(KeychainHelperTest, LetsSudoJudgeAnEmptyPasswordToo)
{
    sudoRefuses();
    dialogs.secureAnswers = {Secret()};

    EXPECT_FALSE(resultOf(keychain().promptForPassword()));
    EXPECT_THAT(launcher.commandLines(), ElementsAre("/usr/bin/sudo -S -v"));
    EXPECT_EQ(dialogs.alerts.size(), 1U);
}

// --- at the application's start

TEST_F(KeychainHelperTest, AsksNothingAtTheStartWhereAPasswordIsStored)
{
    (void)store.add(kPasswordKey, Secret("open sesame"));

    resultOf(keychain().promptForMissingPassword());

    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kHasLaunchedBefore));
}

TEST_F(KeychainHelperTest, AsksASecondAfterTheStartAndSaysWhereToGoAfterARefusal)
{
    auto prompt = keychain().promptForMissingPassword();

    clock.advance(std::chrono::milliseconds(999));
    const std::size_t promptsBefore = dialogs.securePrompts.size();
    clock.advance(std::chrono::milliseconds(1));
    resultOf(std::move(prompt));

    EXPECT_EQ(promptsBefore, 0U);
    EXPECT_EQ(dialogs.securePrompts.size(), 1U);
    ASSERT_EQ(dialogs.alerts.size(), 1U);
    const Alert &alert = dialogs.alerts.front();
    EXPECT_EQ(alert.messageText, "Administrator Password Required");
    EXPECT_EQ(alert.informativeText, "Brindle requires administrator privileges to mount/unmount EFI partitions. You "
                                     "can set this up later in Settings.");
    EXPECT_EQ(alert.style, AlertStyle::warning);
    EXPECT_THAT(alert.buttons, ElementsAre("OK"));
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kHasLaunchedBefore));
}

TEST_F(KeychainHelperTest, SaysNothingAtTheStartAfterARightPassword)
{
    sudoAccepts();
    dialogs.secureAnswers = {Secret("open sesame")};

    auto prompt = keychain().promptForMissingPassword();
    clock.advance(std::chrono::seconds(1));
    resultOf(std::move(prompt));

    EXPECT_THAT(dialogs.alerts, IsEmpty());
    EXPECT_EQ(keychain().retrievePassword(), Secret("open sesame"));
}

// --- the migration

class KeychainMigration : public KeychainFixture {
protected:
    KeychainMigration() { defaults.remove(DefaultsKeys::kHasRunBundleIDMigration); }
};

TEST_F(KeychainMigration, IsDoneOnce)
{
    (void)store.add(kFirstLegacyKey, Secret("old"));
    defaults.set(DefaultsKeys::kHasRunBundleIDMigration, true);

    keychain();

    EXPECT_FALSE(store.find(kPasswordKey));
    EXPECT_THAT(log.lines(), ElementsAre("✅ Keychain migration already completed"));
}

TEST_F(KeychainMigration, TakesTheFirstOfTwoLegacyPasswordsAlone)
{
    (void)store.add(kFirstLegacyKey, Secret("first"));
    (void)store.add(kSecondLegacyKey, Secret("second"));
    store.calls.clear();

    keychain();

    EXPECT_THAT(store.calls,
                ElementsAre("find com.orlane.Tansy admin-password", "remove com.orlane.Brindle admin-password",
                            "add com.orlane.Brindle admin-password"));
    EXPECT_EQ(store.find(kPasswordKey), Secret("first"));
    EXPECT_THAT(log.lines(), ElementsAre("🔄 Checking for legacy keychain passwords to migrate...",
                                         "   ✅ Found password in legacy service: com.orlane.Tansy",
                                         "✅ Admin password stored in keychain",
                                         "   ✅ Migrated password to new service: com.orlane.Brindle"));
}

TEST_F(KeychainMigration, TakesTheSecondWhereStoringTheFirstFails)
{
    (void)store.add(kFirstLegacyKey, Secret("first"));
    (void)store.add(kSecondLegacyKey, Secret("second"));
    store.addFailures = {7};

    keychain();

    EXPECT_EQ(store.find(kPasswordKey), Secret("second"));
    EXPECT_THAT(log.lines(), ElementsAre("🔄 Checking for legacy keychain passwords to migrate...",
                                         "   ✅ Found password in legacy service: com.orlane.Tansy",
                                         "❌ Failed to store password: 7",
                                         "   ✅ Found password in legacy service: com.brindle.adminauth",
                                         "✅ Admin password stored in keychain",
                                         "   ✅ Migrated password to new service: com.orlane.Brindle"));
}

TEST_F(KeychainMigration, TakesTheSecondWhereThereIsNoFirst)
{
    (void)store.add(kSecondLegacyKey, Secret("second"));

    keychain();

    EXPECT_EQ(store.find(kPasswordKey), Secret("second"));
}

TEST_F(KeychainMigration, IsDoneAlsoWhereThereIsNothingToTake)
{
    keychain();

    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kHasRunBundleIDMigration));
    EXPECT_THAT(log.lines(), ElementsAre("🔄 Checking for legacy keychain passwords to migrate...",
                                         "   ℹ️ No legacy passwords found to migrate"));
    const KeychainHelper next(surroundings());
    EXPECT_EQ(log.lines().back(), "✅ Keychain migration already completed");
}

TEST_F(KeychainMigration, WaitsForAStoreThatLastsAndForAnotherUserThanRoot)
{
    KeychainHelper::Surroundings temporary = surroundings();
    temporary.isSecretStoreTemporary = true;
    KeychainHelper::Surroundings root = surroundings();
    root.isRoot = true;

    const KeychainHelper onTemporaryStore(std::move(temporary));
    const KeychainHelper ofRoot(std::move(root));

    EXPECT_THAT(store.calls, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_FALSE(defaults.object(DefaultsKeys::kHasRunBundleIDMigration));
}

TEST_F(KeychainMigration, LeavesTheLegacyItemsAndReplacesTheCurrentOneUnproved)
{
    (void)store.add(kFirstLegacyKey, Secret("old"));
    (void)store.add(kPasswordKey, Secret("current"));

    keychain();

    EXPECT_EQ(store.find(kFirstLegacyKey), Secret("old"));
    EXPECT_EQ(store.find(kPasswordKey), Secret("old"));
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
}

} // namespace
} // namespace brindle
