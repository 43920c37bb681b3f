// The window as a screen reader meets it: over AT-SPI, on a screen and a bus of the test's own.

#include "support/Patience.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace brindle {

/// An object of the accessibility bus: who has it, and where.
struct Accessible {
    QString service;
    QDBusObjectPath path;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Accessible &object)
{
    argument.beginStructure();
    argument << object.service << object.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Accessible &object)
{
    argument.beginStructure();
    argument >> object.service >> object.path;
    argument.endStructure();
    return argument;
}

} // namespace brindle

Q_DECLARE_METATYPE(brindle::Accessible)

namespace brindle {
namespace {

const QString kSession = QStringLiteral("the test's own session");
const QString kReader = QStringLiteral("the screen reader's own");

/// Where distributions put it.
QString busLauncher()
{
    for (const char *path : {"/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher"}) {
        if (QFile::exists(QLatin1String(path)))
            return QLatin1String(path);
    }
    return {};
}

class AccessibilityTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string obstacle = PrivateBus::obstacle();
        if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
            obstacle = "there is no Xvfb";
        if (busLauncher().isEmpty())
            obstacle = "there is no at-spi-bus-launcher";
        if (!obstacle.empty())
            GTEST_SKIP() << obstacle;
        qDBusRegisterMetaType<Accessible>();
        qDBusRegisterMetaType<QList<Accessible>>();
        environment.insert(QStringLiteral("HOME"), folder.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
        environment.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory"));
        startScreen();
        startAccessibilityBus();
        start(application, QStringLiteral(BRINDLE), {QStringLiteral("--demo")});
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(kReader);
        QDBusConnection::disconnectFromBus(kSession);
        for (QProcess *process : {&application, &launcher, &screen}) {
            process->terminate();
            EXPECT_TRUE(process->state() == QProcess::NotRunning || process->waitForFinished(kPatienceMilliseconds));
        }
    }

    void start(QProcess &process, const QString &program, const QStringList &arguments)
    {
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForStarted(kPatienceMilliseconds)) << process.errorString().toStdString();
    }

    void startScreen()
    {
        start(screen, QStringLiteral("Xvfb"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        ASSERT_TRUE(screen.waitForReadyRead(kPatienceMilliseconds)) << screen.readAllStandardError().toStdString();
        environment.insert(QStringLiteral("DISPLAY"),
                           QLatin1Char(':') + QString::fromLatin1(screen.readLine().trimmed()));
    }

    void startAccessibilityBus()
    {
        bus.emplace();
        start(launcher, busLauncher(), {QStringLiteral("--launch-immediately")});
        const QDBusConnection session = QDBusConnection::connectToBus(QDBusConnection::SessionBus, kSession);
        waitUntil([&] { return session.interface()->isServiceRegistered(QStringLiteral("org.a11y.Bus")).value(); });
        const QDBusMessage address =
            session.call(QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                                        QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
        ASSERT_EQ(address.type(), QDBusMessage::ReplyMessage) << address.errorMessage().toStdString();
        ASSERT_TRUE(QDBusConnection::connectToBus(address.arguments().constFirst().toString(), kReader).isConnected());
        // An application tells the registry of itself once, when it starts.
        waitUntil([] { return roleOf(desktop()) == QLatin1String("desktop frame"); });
    }

    /// What the registry tells applications below.
    static Accessible desktop()
    {
        return {QStringLiteral("org.a11y.atspi.Registry"),
                QDBusObjectPath(QStringLiteral("/org/a11y/atspi/accessible/root"))};
    }

    static QDBusMessage call(const Accessible &object, const QString &interface, const QString &method,
                             const QVariantList &arguments = {})
    {
        QDBusMessage call = QDBusMessage::createMethodCall(object.service, object.path.path(), interface, method);
        call.setArguments(arguments);
        return QDBusConnection(kReader).call(call);
    }

    static QVariant answerOf(const QDBusMessage &reply)
    {
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
    }

    static QString nameOf(const Accessible &object)
    {
        const QVariant name =
            answerOf(call(object, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                          {QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("Name")}));
        return name.value<QDBusVariant>().variant().toString();
    }

    static QString roleOf(const Accessible &object)
    {
        return answerOf(call(object, QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("GetRoleName")))
            .toString();
    }

    static QList<Accessible> childrenOf(const Accessible &object)
    {
        return qdbus_cast<QList<Accessible>>(
            answerOf(call(object, QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("GetChildren"))));
    }

    /// The first at or below \a root; a name is known by its beginning.
    static std::optional<Accessible> find(const Accessible &root, const QString &role, const QString &name)
    {
        if (nameOf(root).startsWith(name) && roleOf(root) == role)
            return root;
        for (const Accessible &child : childrenOf(root)) {
            if (const std::optional<Accessible> found = find(child, role, name))
                return found;
        }
        return std::nullopt;
    }

    static std::optional<Accessible> find(const std::optional<Accessible> &root, const QString &role,
                                          const QString &name)
    {
        return root ? find(*root, role, name) : std::nullopt;
    }

    /// The row of the disk, once it is there.
    static Accessible row(const QString &diskName)
    {
        std::optional<Accessible> found;
        waitUntil([&] {
            found = find(desktop(), QStringLiteral("list item"), diskName);
            return found.has_value();
        });
        return found.value_or(Accessible());
    }

    static void performFirstAction(const Accessible &object)
    {
        const QVariant done =
            answerOf(call(object, QStringLiteral("org.a11y.atspi.Action"), QStringLiteral("DoAction"), {0}));
        EXPECT_TRUE(done.toBool());
    }

    QTemporaryDir folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::optional<PrivateBus> bus;
    QProcess screen;
    QProcess launcher;
    QProcess application;
};

TEST_F(AccessibilityTest, MountsAnEFIPartitionByTheActionOfItsButton)
{
    const Accessible disk = row(QStringLiteral("CT500MX500SSD1"));
    const auto mount = find(disk, QStringLiteral("push button"), QStringLiteral("Mount EFI partition"));
    ASSERT_TRUE(mount);

    performFirstAction(*mount);

    waitUntil(
        [&] { return find(disk, QStringLiteral("push button"), QStringLiteral("Unmount EFI partition")).has_value(); });
}

} // namespace
} // namespace brindle
