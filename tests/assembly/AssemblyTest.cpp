#include "assembly/Assembly.h"

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "platform/MemorySecretStore.h"
#include "support/FakeUserNotifications.h"
#include "support/FakeWorkspace.h"
#include "support/Patience.h"
#include "support/SimulatedMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

TEST(Assembly, StoresThePasswordUnderTheIdentifierOfItsBundle)
{
    SimulatedMachine machine;
    Platform platform = machine.platform();
    auto owned = std::make_unique<MemorySecretStore>();
    MemorySecretStore &store = *owned;
    platform.secretStore = std::move(owned);
    platform.bundle.identifier = "org.example.Other";
    Assembly assembly(std::move(platform));

    ASSERT_TRUE(assembly.keychainHelper().storePassword(Secret("pass")));

    EXPECT_TRUE(store.find({"org.example.Other", KeychainHelper::kAccount}));
    EXPECT_FALSE(store.find({KeychainHelper::kService, KeychainHelper::kAccount}));
}

TEST(Assembly, TellsOfAMountByTheDesktopsNotifications)
{
    SimulatedMachine machine;
    machine.addDisk("disk2").withEFI("EFI", "/nonexistent/EFI");
    Platform platform = machine.platform();
    auto owned = std::make_unique<FakeUserNotifications>();
    const FakeUserNotifications &notifications = *owned;
    platform.userNotifications = std::move(owned);
    Assembly assembly(std::move(platform));

    blockOn(assembly.diskManager().mountEFI("disk2s1", "Stick"), kPatience);

    ASSERT_EQ(notifications.added.size(), 1U);
    EXPECT_EQ(notifications.added[0].body, "Successfully mounted EFI partition for Stick");
    EXPECT_EQ(notifications.added[0].userInfo.at("efiIdentifier"), PropertyValue("disk2s1"));
}

TEST(Assembly, MountsAndShowsTheFolderWhereNotificationsAreSwitchedOff)
{
    SimulatedMachine machine;
    const std::string folder = (machine.root() / "Volumes/EFI").string();
    std::filesystem::create_directories(folder);
    machine.addDisk("disk2").withEFI("EFI", folder);
    Platform platform = machine.platform();
    auto owned = std::make_unique<FakeUserNotifications>();
    const FakeUserNotifications &notifications = *owned;
    platform.userNotifications = std::move(owned);
    std::vector<std::string> journal;
    platform.workspace = std::make_unique<FakeWorkspace>(journal);
    Assembly assembly(std::move(platform));
    assembly.userDefaults().set(DefaultsKeys::kShowNotifications, false);

    blockOn(assembly.diskManager().mountEFI("disk2s1", "Stick"), kPatience);

    EXPECT_THAT(notifications.added, testing::IsEmpty());
    EXPECT_THAT(journal, testing::ElementsAre("open " + folder));
}

} // namespace
} // namespace brindle
