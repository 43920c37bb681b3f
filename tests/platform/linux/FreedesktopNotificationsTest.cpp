#include "platform/linux/FreedesktopNotifications.h"

#include "support/ManualClock.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// A daemon that answers at once, by the test's word.
class ScriptedDaemon : public NotificationDaemon {
public:
    Observer observer;
    std::vector<std::string> capabilities{"actions", "body-markup"};
    std::optional<std::string> capabilitiesError;
    std::optional<std::string> notifyError;
    Key next{":1.1", 1};
    std::vector<Message> messages;

    void setObserver(Observer all) override { observer = std::move(all); }
    void askCapabilities(Answer<std::vector<std::string>> answer) override
    {
        if (capabilitiesError)
            answer(Failure{*capabilitiesError});
        else
            answer(capabilities);
    }
    void notify(Message message, Answer<Key> answer) override
    {
        messages.push_back(std::move(message));
        if (notifyError)
            return answer(Failure{*notifyError});
        answer(next);
        ++next.id;
    }
};

class RecordingDelegate : public UserNotifications::Delegate {
public:
    UserNotifications::Options options = UserNotifications::kBanner | UserNotifications::kSound;
    std::vector<std::pair<std::string, std::string>> responses; ///< Action and disk's name.

    [[nodiscard]] UserNotifications::Options willPresent(const UserNotification & /*notification*/) override
    {
        return options;
    }
    void didReceive(const NotificationResponse &response, const std::function<void()> &completionHandler) override
    {
        responses.emplace_back(response.actionIdentifier, *response.userInfo.at("diskName").as<std::string>());
        completionHandler();
    }
};

class FreedesktopNotificationsTest : public testing::Test {
protected:
    FreedesktopNotificationsTest()
    {
        notifications.setDelegate(&delegate);
        notifications.setCategories(
            {{"MOUNT_SUCCESS", {{.identifier = "OPEN_FINDER", .title = "Open in Finder"}}}, {"MOUNT_FAILED", {}}});
    }

    void add(const std::string &diskName, const std::string &category = "MOUNT_SUCCESS")
    {
        notifications.add({.identifier = "id",
                           .title = "EFI Mounted",
                           .body = "Mounted " + diskName,
                           .category = category,
                           .userInfo = {{"diskName", diskName}}},
                          [this](const std::optional<Error> &error) {
                              outcomes.push_back(error ? error->localizedDescription() : "shown");
                          });
        drainEventLoop();
    }
    const NotificationDaemon::Message &message() { return daemon->messages.back(); }

    std::unique_ptr<ScriptedDaemon> owned = std::make_unique<ScriptedDaemon>();
    ScriptedDaemon *daemon = owned.get();
    int made = 0;
    RecordingDelegate delegate;
    std::vector<std::string> outcomes;
    FreedesktopNotifications notifications{[this] {
        ++made;
        return std::move(owned);
    }};
};

TEST_F(FreedesktopNotificationsTest, ReachesForTheDaemonAtTheFirstNotificationAndOnce)
{
    EXPECT_EQ(made, 0);

    add("Stick");
    add("Stick");

    EXPECT_EQ(made, 1);
    EXPECT_THAT(outcomes, ElementsAre("shown", "shown"));
}

TEST_F(FreedesktopNotificationsTest, GrantsWhatIsAskedForWithoutTheDaemon)
{
    std::optional<bool> isGranted;

    notifications.requestAuthorization(
        7, [&](bool granted, const std::optional<Error> &error) { isGranted = granted && !error; });
    drainEventLoop();

    EXPECT_EQ(isGranted, true);
    EXPECT_EQ(made, 0);
}

TEST_F(FreedesktopNotificationsTest, SendsTitleBodyAndTheActionsOfTheCategoryBehindTheClick)
{
    add("Stick");

    EXPECT_EQ(message().summary, "EFI Mounted");
    EXPECT_EQ(message().body, "Mounted Stick");
    EXPECT_THAT(message().actions, ElementsAre("default", "Open", "OPEN_FINDER", "Open in Finder"));
    EXPECT_FALSE(message().isSilent);
}

TEST_F(FreedesktopNotificationsTest, OffersTheClickAloneWhereTheCategoryHasNoActionsOrIsUnknown)
{
    add("Stick", "MOUNT_FAILED");
    EXPECT_THAT(message().actions, ElementsAre("default", "Open"));

    add("Stick", "UNKNOWN");
    EXPECT_THAT(message().actions, ElementsAre("default", "Open"));
}

TEST_F(FreedesktopNotificationsTest, OffersNothingToADaemonWithoutActions)
{
    daemon->capabilities = {"body-markup"};

    add("Stick");

    EXPECT_THAT(message().actions, IsEmpty());
}

TEST_F(FreedesktopNotificationsTest, OffersNothingWhereTheProcessEndsSoon)
{
    FreedesktopNotifications shortLived([this] { return std::move(owned); }, FreedesktopNotifications::Offer::nothing);

    shortLived.add({.identifier = "id", .title = "EFI Mounted", .category = "MOUNT_SUCCESS"}, [](const auto &) {});

    EXPECT_THAT(message().actions, IsEmpty());
}

TEST_F(FreedesktopNotificationsTest, LeavesTheSoundOutWhereTheDelegateWantsNone)
{
    delegate.options = UserNotifications::kBanner;

    add("Stick");

    EXPECT_TRUE(message().isSilent);
}

struct BodyCase {
    const char *name;
    const char *diskName;
    const char *asMarkup;
    const char *asPlainText;
};

class ShowsAStrangersName : public FreedesktopNotificationsTest, public testing::WithParamInterface<BodyCase> {};

TEST_P(ShowsAStrangersName, AsTextWhateverTheDaemonMakesOfIt)
{
    add(GetParam().diskName);
    EXPECT_EQ(message().body, std::string("Mounted ") + GetParam().asMarkup);

    daemon->capabilities = {"actions"};
    add(GetParam().diskName);
    EXPECT_EQ(message().body, std::string("Mounted ") + GetParam().asPlainText);
}

INSTANTIATE_TEST_SUITE_P(
    FreedesktopNotifications, ShowsAStrangersName,
    testing::Values(BodyCase{"Markup", "<b>A</b> & \"B\"", "&lt;b&gt;A&lt;/b&gt; &amp; \"B\"", "<b>A</b> & \"B\""},
                    BodyCase{"Image", "<img src='file:///etc/passwd'/>", "&lt;img src='file:///etc/passwd'/&gt;",
                             "<img src='file:///etc/passwd'/>"},
                    BodyCase{"Entity", "&lt;", "&amp;lt;", "&lt;"},
                    BodyCase{"MarkOfAShortcut", "&Mount", "&amp;Mount", "&Mount"},
                    BodyCase{"Newline", "A\nB", "A&lt;U+000A&gt;B", "A<U+000A>B"},
                    BodyCase{"Direction", "A\u202EB", "A&lt;U+202E&gt;B", "A<U+202E>B"},
                    BodyCase{"NoUtf8", "A\xff", "A\uFFFD", "A\uFFFD"}),
    [](const auto &row) { return std::string(row.param.name); });

// --- failures

TEST_F(FreedesktopNotificationsTest, TellsThatThereIsNoWayToADaemonAndTriesAgain)
{
    owned.reset();

    add("Stick");
    add("Stick");

    EXPECT_EQ(made, 2);
    EXPECT_EQ(outcomes, std::vector<std::string>(2, "The program's part for notifications is missing."));
}

TEST_F(FreedesktopNotificationsTest, TellsWhyTheDaemonDoesNotAnswerAndAsksItAgainLater)
{
    daemon->capabilitiesError = "nobody has the name";
    add("Stick");
    daemon->capabilitiesError.reset();
    daemon->notifyError = "too many";
    add("Stick");
    daemon->notifyError.reset();
    add("Stick");

    EXPECT_THAT(outcomes, ElementsAre("nobody has the name", "too many", "shown"));
}

// --- what the user does

TEST_F(FreedesktopNotificationsTest, TellsTheDelegateWhichActionOfWhichNotificationWasChosen)
{
    add("One");
    add("Two");

    daemon->observer.actionInvoked({":1.1", 2}, "OPEN_FINDER");
    daemon->observer.actionInvoked({":1.1", 1}, "default");

    EXPECT_THAT(delegate.responses, ElementsAre(Pair("OPEN_FINDER", "Two"), Pair("default", "One")));
}

TEST_F(FreedesktopNotificationsTest, IgnoresTheNotificationsOfOthers)
{
    add("One");

    daemon->observer.actionInvoked({":1.1", 2}, "default");
    daemon->observer.actionInvoked({":1.2", 1}, "default");

    EXPECT_THAT(delegate.responses, IsEmpty());
}

TEST_F(FreedesktopNotificationsTest, ForgetsANotificationThatIsClosed)
{
    add("One");

    daemon->observer.closed({":1.1", 1});
    daemon->observer.actionInvoked({":1.1", 1}, "default");

    EXPECT_THAT(delegate.responses, IsEmpty());
}

TEST_F(FreedesktopNotificationsTest, ForgetsWhatAFormerDaemonHadShown)
{
    add("One");
    daemon->next = {":1.9", 1};
    add("Two");

    daemon->observer.actionInvoked({":1.1", 1}, "default");
    daemon->observer.actionInvoked({":1.9", 1}, "default");

    EXPECT_THAT(delegate.responses, ElementsAre(Pair("default", "Two")));
}

TEST_F(FreedesktopNotificationsTest, TellsNobodyOnceTheDelegateIsGone)
{
    add("One");
    notifications.setDelegate(nullptr);

    daemon->observer.actionInvoked({":1.1", 1}, "default");

    EXPECT_THAT(delegate.responses, IsEmpty());
}

} // namespace
} // namespace brindle
