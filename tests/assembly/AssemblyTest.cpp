#include "assembly/Assembly.h"

#include "base/BlockOn.h"
#include "support/FakeUserNotifications.h"
#include "support/SimulatedMachine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <utility>

namespace brindle {
namespace {

using namespace std::chrono_literals;

TEST(Assembly, TellsOfAMountByTheDesktopsNotifications)
{
    SimulatedMachine machine;
    machine.addDisk("disk2").withEFI("EFI", "/nonexistent/EFI");
    Platform platform = machine.platform();
    auto owned = std::make_unique<FakeUserNotifications>();
    const FakeUserNotifications &notifications = *owned;
    platform.userNotifications = std::move(owned);
    Assembly assembly(std::move(platform));

    blockOn(assembly.diskManager().mountEFI("disk2s1", "Stick"), 10s);

    ASSERT_EQ(notifications.added.size(), 1U);
    EXPECT_EQ(notifications.added[0].body, "Successfully mounted EFI partition for Stick");
    EXPECT_EQ(notifications.added[0].userInfo.at("efiIdentifier"), PropertyValue("disk2s1"));
}

} // namespace
} // namespace brindle
