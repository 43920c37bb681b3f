#include "platform/linux/NotificationModule.h"

#include "support/FakeNotificationDaemon.h"
#include "support/LogCapture.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>

#include <string>
#include <variant>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

TEST(NotificationModule, GivesTheDaemonOfTheSession)
{
    if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    const PrivateBus bus;
    const FakeNotificationDaemon daemon;

    const auto loaded = loadNotificationDaemon(NOTIFICATIONS_MODULE);
    ASSERT_TRUE(loaded);
    bool isShown = false;
    loaded->notify({.summary = "EFI Mounted"}, [&](const auto &answer) { isShown = answer.index() == 0; });

    waitUntil([&] { return isShown; });
    EXPECT_EQ(daemon.shown.size(), 1U);
}

TEST(NotificationModule, IsNothingWhereItCanNotBeLoadedAndTheLogSaysWhy)
{
    const LogCapture log;

    EXPECT_FALSE(loadNotificationDaemon("/nonexistent/module.so"));
    EXPECT_FALSE(loadNotificationDaemon("libm.so.6"));

    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("⚠️ The module for notifications can't be loaded: /nonexistent"),
                                         StartsWith("⚠️ The module for notifications can't be loaded: ")));
}

} // namespace
} // namespace brindle
