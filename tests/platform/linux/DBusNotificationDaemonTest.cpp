#include "platform/linux/DBusNotificationDaemon.h"

#include "support/FakeNotificationDaemon.h"
#include "support/ManualClock.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

using Capabilities = std::variant<std::vector<std::string>, NotificationDaemon::Failure>;
using Shown = std::variant<NotificationDaemon::Key, NotificationDaemon::Failure>;

/// The real client on a bus of the test's own.
class DBusNotificationDaemonTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
        client.setObserver({
            .actionInvoked = [this](const NotificationDaemon::Key &key,
                                    const std::string &action) { actions.emplace_back(key.id, action); },
            .closed = [this](const NotificationDaemon::Key &key) { closed.push_back(key.id); },
        });
    }

    void TearDown() override { drainEventLoop(); } // one may still connect

    Capabilities capabilities()
    {
        std::optional<Capabilities> result;
        client.askCapabilities([&](const Capabilities &answer) { result = answer; });
        waitUntil([&] { return result.has_value(); });
        return result.value_or(NotificationDaemon::Failure{"no answer"});
    }
    Shown notify(const NotificationDaemon::Message &message)
    {
        std::optional<Shown> result;
        client.notify(message, [&](const Shown &answer) { result = answer; });
        waitUntil([&] { return result.has_value(); });
        return result.value_or(NotificationDaemon::Failure{"no answer"});
    }
    NotificationDaemon::Key shownKey()
    {
        const Shown shown = notify({.summary = "EFI Mounted"});
        EXPECT_TRUE(std::holds_alternative<NotificationDaemon::Key>(shown)) << failureOf(shown);
        return std::holds_alternative<NotificationDaemon::Key>(shown) ? std::get<NotificationDaemon::Key>(shown)
                                                                      : NotificationDaemon::Key();
    }

    template <typename Answer>
    static std::string failureOf(const Answer &answer)
    {
        const auto *failure = std::get_if<NotificationDaemon::Failure>(&answer);
        return failure ? failure->description : "";
    }

    std::optional<PrivateBus> bus;
    DBusNotificationDaemon client;
    std::vector<std::pair<unsigned, std::string>> actions;
    std::vector<unsigned> closed;
};

TEST_F(DBusNotificationDaemonTest, TellsWhatTheDaemonCanDo)
{
    const FakeNotificationDaemon daemon;

    EXPECT_EQ(std::get<0>(capabilities()), (std::vector<std::string>{"body", "body-markup", "actions"}));
}

TEST_F(DBusNotificationDaemonTest, HandsTheMessageToTheDaemonAsItIs)
{
    const FakeNotificationDaemon daemon;

    const Shown shown = notify({.summary = "EFI <Mounted>", .body = "Käse & Brot", .actions = {"default", "Open"}});

    ASSERT_EQ(daemon.shown.size(), 1U);
    const FakeNotificationDaemon::Shown &received = daemon.shown[0];
    EXPECT_EQ(std::get<0>(shown).id, 1U);
    EXPECT_THAT(std::get<0>(shown).daemon, testing::StartsWith(":"));
    EXPECT_EQ(received.appName, QStringLiteral("Brindle"));
    EXPECT_EQ(received.replacesId, 0U);
    EXPECT_EQ(received.icon, QStringLiteral("drive-harddisk"));
    EXPECT_EQ(received.summary, QStringLiteral("EFI <Mounted>"));
    EXPECT_EQ(received.body, QStringLiteral("Käse & Brot"));
    EXPECT_EQ(received.actions, QStringList({QStringLiteral("default"), QStringLiteral("Open")}));
    EXPECT_EQ(received.hints, QVariantMap({{QStringLiteral("sound-name"), QStringLiteral("message-new-instant")}}));
    EXPECT_EQ(received.expireTimeout, -1);
}

TEST_F(DBusNotificationDaemonTest, AsksForSilenceWhereThereShallBeNoSound)
{
    const FakeNotificationDaemon daemon;

    (void)notify({.summary = "EFI Mounted", .isSilent = true});

    EXPECT_EQ(daemon.shown.at(0).hints, QVariantMap({{QStringLiteral("suppress-sound"), true}}));
}

TEST_F(DBusNotificationDaemonTest, TellsOfActionsAndOfTheEnd)
{
    FakeNotificationDaemon daemon;
    const unsigned id = shownKey().id;

    daemon.invoke(id, QStringLiteral("OPEN_FINDER"));
    daemon.close(id);

    waitUntil([&] { return !closed.empty(); });
    EXPECT_THAT(actions, ElementsAre(Pair(id, "OPEN_FINDER")));
    EXPECT_THAT(closed, ElementsAre(id));
}

TEST_F(DBusNotificationDaemonTest, TellsWhichProgramOnTheBusASignalIsFrom)
{
    const FakeNotificationDaemon daemon;
    const NotificationDaemon::Key key = shownKey();
    std::optional<NotificationDaemon::Key> invoked;
    client.setObserver({.actionInvoked = [&](const NotificationDaemon::Key &which,
                                             const std::string & /*action*/) { invoked = which; },
                        .closed = {}});

    FakeNotificationDaemon::pretendToInvoke(key.id, QStringLiteral("OPEN_FINDER"));
    waitUntil([&] { return invoked.has_value(); });
    ASSERT_TRUE(invoked);

    EXPECT_EQ(invoked->id, key.id);
    EXPECT_NE(invoked->daemon, key.daemon);
}

// --- a daemon that isn't there

TEST_F(DBusNotificationDaemonTest, SaysThatNoDaemonIsThere)
{
    EXPECT_THAT(failureOf(capabilities()), HasSubstr("org.freedesktop.Notifications"));
    EXPECT_THAT(failureOf(notify({})), HasSubstr("org.freedesktop.Notifications"));
}

TEST_F(DBusNotificationDaemonTest, FindsADaemonThatComesLaterAndOneThatTakesItsPlace)
{
    EXPECT_THAT(failureOf(notify({})), Not(IsEmpty()));
    auto daemon = std::make_unique<FakeNotificationDaemon>();
    const NotificationDaemon::Key first = shownKey();

    daemon.reset();
    EXPECT_THAT(failureOf(notify({})), Not(IsEmpty()));
    daemon = std::make_unique<FakeNotificationDaemon>();
    const NotificationDaemon::Key second = shownKey();
    daemon->invoke(second.id, QStringLiteral("default"));

    waitUntil([&] { return !actions.empty(); });
    EXPECT_EQ(first.id, second.id);
    EXPECT_NE(first.daemon, second.daemon);
}

TEST_F(DBusNotificationDaemonTest, HandsOnWhyTheDaemonRefuses)
{
    FakeNotificationDaemon daemon;
    daemon.refuses = true;

    EXPECT_EQ(failureOf(notify({})), "too many notifications");
}

TEST_F(DBusNotificationDaemonTest, SaysThatThereIsNoBusAndFindsOneLater)
{
    bus->end();
    EXPECT_THAT(failureOf(capabilities()), Not(IsEmpty()));
    EXPECT_THAT(failureOf(capabilities()), Not(IsEmpty()));

    bus->start();
    const FakeNotificationDaemon daemon;

    EXPECT_EQ(shownKey().id, 1U);
}

TEST_F(DBusNotificationDaemonTest, ConnectsAnewWhenTheBusWasLost)
{
    std::optional<FakeNotificationDaemon> daemon(std::in_place);
    (void)shownKey();
    daemon.reset();
    bus->end();
    waitUntil([this] { return !failureOf(capabilities()).empty(); });

    bus->start();
    daemon.emplace();
    const unsigned id = shownKey().id;
    daemon->invoke(id, QStringLiteral("default"));

    waitUntil([&] { return !actions.empty(); });
}

// --- never in the way

TEST_F(DBusNotificationDaemonTest, NeverAnswersWithinTheQuestionNorAfterItsEnd)
{
    FakeNotificationDaemon daemon;
    daemon.isSilent = true;
    bool isAnswered = false;
    {
        DBusNotificationDaemon shortLived;
        shortLived.notify({}, [&](const Shown & /*answer*/) { isAnswered = true; });
        waitUntil([&] { return !daemon.shown.empty(); });
    }
    {
        DBusNotificationDaemon shortLived; // ends while it connects
        shortLived.notify({}, [&](const Shown & /*answer*/) { isAnswered = true; });
    }
    daemon.isSilent = false;

    (void)shownKey(); // goes through the bus behind all of the above

    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace brindle
