#include "shell/NotificationManager.h"

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "support/FakeLauncher.h"
#include "support/FakeUserNotifications.h"
#include "support/FakeWorkspace.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "support/Patience.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

constexpr const char *kOpenFinder = "OPEN_FINDER";
constexpr const char *kInfoLine = "/usr/sbin/diskutil info disk2s1";

class NotificationManagerTest : public testing::Test {
protected:
    NotificationManagerTest() { defaults.set(DefaultsKeys::kShowNotifications, true); }

    /// Lets the manager send what \a send does, and waits for it.
    void send(const std::function<void(NotificationManager &)> &send)
    {
        send(manager);
        blockOn(manager.allSent(), kPatience);
    }
    void mountWorks()
    {
        send([](NotificationManager &sender) { sender.mountResult("Stick", true, "disk2s1"); });
    }
    void answerInfo(const std::string &text) { launcher.answer(kInfoLine, {.standardOutput = text}); }

    /// The user does \a action with the last notification; all that follows from it happens.
    void respond(const std::string &action)
    {
        notifications.respond(action);
        drainEventLoop();
    }

    LogCapture log;
    std::vector<std::string> opened;
    MemoryUserDefaults defaults;
    FakeLauncher launcher;
    FakeWorkspace workspace{opened};
    FakeUserNotifications notifications;
    ToolPaths paths = ToolPaths::system();
    NotificationManager manager{notifications, defaults, launcher, paths, workspace};
};

// --- start

TEST_F(NotificationManagerTest, BecomesTheDelegateAsksForAllThreeRightsAndRegistersItsCategoriesInThatOrder)
{
    EXPECT_EQ(notifications.delegate(), &manager);
    EXPECT_THAT(notifications.steps, ElementsAre("delegate", "authorization 7", "categories"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NotificationManagerTest, OffersOpenInFinderForWorkingMountsAlone)
{
    ASSERT_EQ(notifications.categories.size(), 4U);
    const NotificationCategory &mounted = notifications.categories[0];
    EXPECT_EQ(mounted.identifier, "MOUNT_SUCCESS");
    ASSERT_EQ(mounted.actions.size(), 1U);
    EXPECT_EQ(mounted.actions[0].identifier, kOpenFinder);
    EXPECT_EQ(mounted.actions[0].title, "Open in Finder");
    EXPECT_TRUE(mounted.actions[0].bringsToFront);
    for (const auto &[index, name] : {std::pair(1U, "MOUNT_FAILED"), {2U, "UNMOUNT_SUCCESS"}, {3U, "UNMOUNT_FAILED"}}) {
        EXPECT_EQ(notifications.categories[index].identifier, name);
        EXPECT_THAT(notifications.categories[index].actions, IsEmpty());
    }
}

TEST(NotificationManager, LogsThatTheQuestionForItsRightsFailed)
{
    LogCapture log;
    std::vector<std::string> opened;
    MemoryUserDefaults defaults;
    FakeLauncher launcher;
    FakeWorkspace workspace(opened);
    FakeUserNotifications notifications;
    notifications.authorizationError = Error("Desktop", 1, "nobody is there");

    const ToolPaths paths = ToolPaths::system();
    const NotificationManager manager(notifications, defaults, launcher, paths, workspace);

    EXPECT_THAT(log.lines(), ElementsAre("Notification permission error: nobody is there"));
    EXPECT_THAT(notifications.steps, Contains("categories"));
}

TEST(NotificationManager, IsNoDelegateAfterItsEnd)
{
    std::vector<std::string> opened;
    MemoryUserDefaults defaults;
    FakeLauncher launcher;
    FakeWorkspace workspace(opened);
    FakeUserNotifications notifications;
    const ToolPaths paths = ToolPaths::system();

    std::make_unique<NotificationManager>(notifications, defaults, launcher, paths, workspace).reset();

    EXPECT_EQ(notifications.delegate(), nullptr);
}

// --- send

struct EventCase {
    const char *name;
    bool isMount;
    bool success;
    const char *title;
    const char *body;
    const char *category;
};

class Announces : public NotificationManagerTest, public testing::WithParamInterface<EventCase> {};

TEST_P(Announces, TheEventInItsOwnWords)
{
    const EventCase &row = GetParam();

    send([&](NotificationManager &sender) {
        if (row.isMount)
            sender.mountResult("Stick & <Co>", row.success, "disk2s1");
        else
            sender.unmountResult("Stick & <Co>", row.success);
    });

    ASSERT_EQ(notifications.added.size(), 1U);
    const UserNotification &sent = notifications.added[0];
    EXPECT_EQ(sent.title, row.title);
    EXPECT_EQ(sent.body, row.body);
    EXPECT_EQ(sent.category, row.category);
    PropertyValue::Dictionary userInfo{
        {"diskName", "Stick & <Co>"}, {"operation", row.isMount ? "mount" : "unmount"}, {"success", row.success}};
    if (row.isMount)
        userInfo.emplace("efiIdentifier", "disk2s1");
    EXPECT_EQ(sent.userInfo, userInfo);
}

INSTANTIATE_TEST_SUITE_P(
    NotificationManager, Announces,
    testing::Values(EventCase{"MountWorked", true, true, "EFI Mounted",
                              "Successfully mounted EFI partition for Stick & <Co>", "MOUNT_SUCCESS"},
                    EventCase{"MountFailed", true, false, "Mount Failed",
                              "Failed to mount EFI partition for Stick & <Co>", "MOUNT_FAILED"},
                    EventCase{"UnmountWorked", false, true, "EFI Unmounted",
                              "Successfully unmounted EFI partition for Stick & <Co>", "UNMOUNT_SUCCESS"},
                    EventCase{"UnmountFailed", false, false, "Unmount Failed",
                              "Failed to unmount EFI partition for Stick & <Co>", "UNMOUNT_FAILED"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(NotificationManagerTest, GivesEachNotificationAFreshIdentifier)
{
    mountWorks();
    mountWorks();

    const std::string uuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";
    EXPECT_THAT(notifications.added[0].identifier, MatchesRegex(uuid));
    EXPECT_THAT(notifications.added[1].identifier, MatchesRegex(uuid));
    EXPECT_NE(notifications.added[0].identifier, notifications.added[1].identifier);
}

TEST_F(NotificationManagerTest, LeavesTheIdentifierOfThePartitionOutWhereNoneIsGiven)
{
    send([](NotificationManager &sender) { sender.mountResult("Stick", true, std::nullopt); });

    EXPECT_FALSE(notifications.added[0].userInfo.contains("efiIdentifier"));
}

TEST_F(NotificationManagerTest, SendsNothingWhileNotificationsAreSwitchedOff)
{
    defaults.set(DefaultsKeys::kShowNotifications, false);
    mountWorks();
    send([](NotificationManager &sender) { sender.unmountResult("Stick", false); });
    EXPECT_THAT(notifications.added, IsEmpty());

    defaults.remove(DefaultsKeys::kShowNotifications);
    mountWorks();
    EXPECT_THAT(notifications.added, IsEmpty());
}

TEST_F(NotificationManagerTest, LogsWhatCanNotBeShown)
{
    notifications.addError = Error("Desktop", 1, "no daemon");

    mountWorks();

    EXPECT_THAT(log.lines(), ElementsAre("Failed to show notification: no daemon"));
}

TEST_F(NotificationManagerTest, IsPresentedWithBannerAndSoundWhileTheProgramIsInFront)
{
    mountWorks();

    EXPECT_EQ(manager.willPresent(notifications.added[0]), 18U);
}

// --- click

TEST_F(NotificationManagerTest, OpensTheMountPointByItsActionWhateverTheSettingIs)
{
    answerInfo("   Device Node: /dev/disk2s1\n   Mount Point:  /run/media/me/EFI \t\n   Other: x\n");
    mountWorks();

    respond(kOpenFinder);

    EXPECT_THAT(launcher.commandLines(), ElementsAre(kInfoLine));
    EXPECT_THAT(opened, ElementsAre("open /run/media/me/EFI"));
    EXPECT_EQ(notifications.finishedResponses, 1);
}

TEST_F(NotificationManagerTest, DoesNothingOnAClickOfAFreshInstallation)
{
    answerInfo("   Mount Point:  /run/media/me/EFI\n");
    mountWorks();

    respond(UserNotifications::kDefaultAction);

    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_THAT(opened, IsEmpty());
    EXPECT_EQ(notifications.finishedResponses, 1);
}

TEST_F(NotificationManagerTest, OpensTheMountPointOnAClickWhereThatIsSwitchedOn)
{
    defaults.set(DefaultsKeys::kOpenEFIOnNotificationClick, true);
    answerInfo("   Mount Point:  /run/media/me/EFI\n");
    mountWorks();

    respond(UserNotifications::kDefaultAction);

    EXPECT_THAT(opened, ElementsAre("open /run/media/me/EFI"));
}

TEST_F(NotificationManagerTest, IgnoresAnyOtherAction)
{
    defaults.set(DefaultsKeys::kOpenEFIOnNotificationClick, true);
    mountWorks();

    respond("dismissed");

    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_THAT(opened, IsEmpty());
    EXPECT_EQ(notifications.finishedResponses, 1);
}

TEST_F(NotificationManagerTest, OpensTheFolderOfAllVolumesOnAClickOnAnUnmount)
{
    defaults.set(DefaultsKeys::kOpenEFIOnNotificationClick, true);
    send([](NotificationManager &sender) { sender.unmountResult("Stick", true); });

    respond(UserNotifications::kDefaultAction);

    EXPECT_THAT(opened, ElementsAre("open /Volumes"));
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
}

TEST_F(NotificationManagerTest, OpensTheFolderOfAllVolumesWhereTheIdentifierIsNoText)
{
    mountWorks();
    notifications.added.back().userInfo.insert_or_assign("efiIdentifier", 7);

    respond(kOpenFinder);

    EXPECT_THAT(opened, ElementsAre("open /Volumes"));
}

struct NothingMountedCase {
    const char *name;
    const char *info;
};

class OpensNothing : public NotificationManagerTest, public testing::WithParamInterface<NothingMountedCase> {};

TEST_P(OpensNothing, WhenThePartitionIsNotMountedAnyMore)
{
    answerInfo(GetParam().info);
    mountWorks();

    respond(kOpenFinder);

    EXPECT_THAT(launcher.commandLines(), ElementsAre(kInfoLine));
    EXPECT_THAT(opened, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(NotificationManager, OpensNothing,
                         testing::Values(NothingMountedCase{"NoLine", "   Mounted: No\n"},
                                         NothingMountedCase{"Empty", "   Mount Point:  \n"},
                                         NothingMountedCase{"EmptyAtTheEnd", "   Mount Point:"},
                                         NothingMountedCase{"NotApplicable", "   Mount Point:   Not applicable\n"},
                                         NothingMountedCase{"FirstLineCounts",
                                                            "   Mount Point:\n   Mount Point: /run/media/me/EFI\n"}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(NotificationManagerTest, TakesTheMountPointThatAFailingToolHasPrinted)
{
    launcher.answer(kInfoLine, {.terminationStatus = 1, .standardOutput = "Mount Point: /run/media/me/EFI"});
    mountWorks();

    respond(kOpenFinder);

    EXPECT_THAT(opened, ElementsAre("open /run/media/me/EFI"));
}

TEST_F(NotificationManagerTest, LogsThatTheToolCanNotBeStarted)
{
    launcher.answer(kInfoLine, {.failure = Error("POSIXError", 2, "missing")});
    mountWorks();

    respond(kOpenFinder);

    EXPECT_THAT(log.lines(), ElementsAre("Failed to get mount point for notification click"));
    EXPECT_THAT(opened, IsEmpty());
}

} // namespace
} // namespace brindle
