// Notifications on a real daemon: dunst, on a screen and a bus of the test's own.

#include "platform/linux/DBusNotificationDaemon.h"
#include "platform/linux/FreedesktopNotifications.h"

#include "support/Patience.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;

const QString kSession = QStringLiteral("the test's own");

// dmenu is what dunst asks which of a notification's actions is meant: it prints one of the lines that it reads.
constexpr const char *kConfiguration = R"([global]
dmenu = /bin/grep --max-count=1 Finder
markup = %1
)";

class DunstTest : public testing::Test, public UserNotifications::Delegate {
protected:
    void SetUp() override
    {
        std::string obstacle = PrivateBus::obstacle();
        for (const char *program : {"Xvfb", "dunst"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                obstacle = std::string("there is no ") + program;
        }
        if (!obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
        startScreen();
        startDunst();
        notifications.setDelegate(this);
        notifications.setCategories({{"MOUNT_SUCCESS", {{.identifier = "OPEN_FINDER", .title = "Open in Finder"}}}});
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(kSession);
        for (QProcess *process : {&dunst, &screen}) {
            process->terminate();
            EXPECT_TRUE(process->state() == QProcess::NotRunning || process->waitForFinished(kPatienceMilliseconds));
        }
    }

    UserNotifications::Options willPresent(const UserNotification & /*notification*/) override
    {
        return UserNotifications::kBanner | UserNotifications::kSound;
    }
    void didReceive(const NotificationResponse &response, const std::function<void()> & /*completionHandler*/) override
    {
        responses.push_back(response.actionIdentifier + " " + *response.userInfo.at("diskName").as<std::string>());
    }

    void startScreen()
    {
        screen.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                              QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        ASSERT_TRUE(screen.waitForReadyRead(kPatienceMilliseconds)) << screen.readAllStandardError().toStdString();
        display = QStringLiteral(":") + QString::fromLatin1(screen.readLine().trimmed());
    }

    void startDunst(const char *markup = "full")
    {
        QFile configuration(folder.filePath(QStringLiteral("dunstrc")));
        ASSERT_TRUE(configuration.open(QIODevice::WriteOnly));
        configuration.write(QString::fromLatin1(kConfiguration).arg(QLatin1String(markup)).toUtf8());
        configuration.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), display);
        environment.insert(QStringLiteral("HOME"), folder.path());
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        dunst.setProcessEnvironment(environment);
        dunst.setProcessChannelMode(QProcess::MergedChannels);
        dunst.start(QStringLiteral("dunst"), {QStringLiteral("-config"), configuration.fileName()});
        waitUntil([] {
            return session().interface()->isServiceRegistered(QStringLiteral("org.freedesktop.Notifications")).value();
        });
    }

    static QDBusConnection session() { return QDBusConnection::connectToBus(QDBusConnection::SessionBus, kSession); }

    /// What dunst's own control program would ask of it.
    static QDBusMessage control(const QString &method, const QVariantList &arguments = {})
    {
        QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                                           QStringLiteral("/org/freedesktop/Notifications"),
                                                           QStringLiteral("org.dunstproject.cmd0"), method);
        call.setArguments(arguments);
        return session().call(call);
    }

    void send(const std::string &diskName)
    {
        std::optional<std::string> outcome;
        notifications.add(
            {.identifier = "id",
             .title = "EFI Mounted",
             .body = "Successfully mounted EFI partition for " + diskName,
             .category = "MOUNT_SUCCESS",
             .userInfo = {{"diskName", diskName}}},
            [&](const std::optional<Error> &error) { outcome = error ? error->localizedDescription() : "shown"; });
        waitUntil([&] { return outcome.has_value(); });
        EXPECT_EQ(outcome, "shown");
    }

    /// The texts that dunst keeps of the notifications that were closed.
    static std::string history(const QString &field)
    {
        const QDBusMessage reply = control(QStringLiteral("NotificationListHistory"));
        std::string texts;
        const auto argument = reply.arguments().value(0).value<QDBusArgument>();
        for (const QVariantMap &notification : qdbus_cast<QList<QVariantMap>>(argument))
            texts += notification.value(field).toString().toStdString() + "\n";
        return texts;
    }

    std::optional<PrivateBus> bus;
    QTemporaryDir folder;
    QProcess screen;
    QString display;
    QProcess dunst;
    std::vector<std::string> responses;
    FreedesktopNotifications notifications{[] { return std::make_unique<DBusNotificationDaemon>(); }};
};

TEST_F(DunstTest, TellsOfAClickAndOfTheAction)
{
    send("Stick");

    control(QStringLiteral("NotificationAction"), {0U});
    waitUntil([&] { return responses.size() == 1; });
    control(QStringLiteral("ContextMenuCall"));
    waitUntil([&] { return responses.size() == 2; });

    EXPECT_THAT(responses, ElementsAre("default Stick", "OPEN_FINDER Stick"));
}

TEST_F(DunstTest, GetsAStrangersNameEscapedWhereItKnowsMarkup)
{
    send("<b>A</b> & <i>B");

    control(QStringLiteral("NotificationCloseLast"));

    EXPECT_EQ(history(QStringLiteral("body")),
              "Successfully mounted EFI partition for &lt;b&gt;A&lt;/b&gt; &amp; &lt;i&gt;B\n");
}

TEST_F(DunstTest, GetsAStrangersNameAsItIsWhereItShowsMarkup)
{
    dunst.terminate();
    ASSERT_TRUE(dunst.waitForFinished(kPatienceMilliseconds));
    startDunst("no");
    send("<b>A</b> & <i>B");

    control(QStringLiteral("NotificationCloseLast"));

    EXPECT_EQ(history(QStringLiteral("body")), "Successfully mounted EFI partition for <b>A</b> & <i>B\n");
}

TEST_F(DunstTest, MayBeStartedAnewMeanwhile)
{
    send("One");
    dunst.terminate();
    ASSERT_TRUE(dunst.waitForFinished(kPatienceMilliseconds));
    startDunst();
    send("Two");

    control(QStringLiteral("NotificationAction"), {0U});

    waitUntil([&] { return !responses.empty(); });
    EXPECT_THAT(responses, ElementsAre("default Two"));
}

} // namespace
} // namespace brindle
