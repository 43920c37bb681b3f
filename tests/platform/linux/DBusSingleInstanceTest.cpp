#include "platform/linux/DBusSingleInstance.h"

#include "base/BlockOn.h"
#include "support/Patience.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

const std::string kIdentifier = "com.orlane.Brindle";
constexpr const char *kActivationToken = "XDG_ACTIVATION_TOKEN";

/// A process that has the application's name and never answers.
class FrozenApplication : public QDBusVirtualObject {
public:
    explicit FrozenApplication(const std::string &identifier)
        : m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("frozen")))
    {
        m_connection.registerVirtualObject(QStringLiteral("/com/orlane/Brindle"), this);
        m_connection.registerService(QString::fromStdString(identifier));
    }
    ~FrozenApplication() override { QDBusConnection::disconnectFromBus(QStringLiteral("frozen")); }

    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection & /*connection*/) override
    {
        wasAsked = true;
        platformData = qdbus_cast<QVariantMap>(message.arguments().value(0));
        return true;
    }

    bool wasAsked = false;
    QVariantMap platformData; ///< What it was asked with.

private:
    QDBusConnection m_connection;
};

/// Starts of the application, each with a connection of its own to the test's bus.
class DBusSingleInstanceTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
    }

    ~DBusSingleInstanceTest() override { qunsetenv(kActivationToken); }

    static bool claim(DBusSingleInstance &instance) { return blockOn(instance.claim(), kPatience); }

    /// Counts how often \a instance was started again.
    void watch(DBusSingleInstance &instance)
    {
        QObject::connect(&instance, &DBusSingleInstance::reopened, &instance, [this] { ++reopened; });
    }

    /// Any program asks the application to come to the front.
    static void activate(const QString &platformData)
    {
        QProcess asking;
        asking.start(QStringLiteral("gdbus"),
                     {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest=com.orlane.Brindle"),
                      QStringLiteral("--object-path=/com/orlane/Brindle"),
                      QStringLiteral("--method=org.freedesktop.Application.Activate"), platformData});
        waitUntil([&] { return asking.state() == QProcess::NotRunning; });
        EXPECT_EQ(asking.exitCode(), 0) << asking.readAllStandardError().toStdString();
    }

    std::optional<PrivateBus> bus;
    int reopened = 0;
};

TEST_F(DBusSingleInstanceTest, GoesOnAsTheFirst)
{
    DBusSingleInstance first(kIdentifier);
    watch(first);

    EXPECT_TRUE(claim(first));

    EXPECT_EQ(reopened, 0);
}

TEST_F(DBusSingleInstanceTest, TellsTheFirstOfTheSecondWhichEnds)
{
    DBusSingleInstance first(kIdentifier);
    watch(first);
    claim(first);
    DBusSingleInstance second(kIdentifier);

    EXPECT_FALSE(claim(second));

    EXPECT_EQ(reopened, 1);
}

TEST_F(DBusSingleInstanceTest, WaitsForNothing)
{
    DBusSingleInstance first(kIdentifier);

    auto claiming = first.claim();
    EXPECT_FALSE(claiming.isReady());

    EXPECT_TRUE(blockOn(std::move(claiming), kPatience));
}

TEST_F(DBusSingleInstanceTest, GivesTheNameBackAtItsEnd)
{
    auto first = std::make_unique<DBusSingleInstance>(kIdentifier);
    claim(*first);
    first.reset();
    DBusSingleInstance second(kIdentifier);

    EXPECT_TRUE(claim(second));
}

TEST_F(DBusSingleInstanceTest, GoesOnWithoutABus)
{
    bus->end();
    DBusSingleInstance first(kIdentifier);

    EXPECT_TRUE(claim(first));
}

TEST_F(DBusSingleInstanceTest, GoesOnWhereTheOtherCannotComeToTheFront)
{
    auto other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("other"));
    other.registerService(QString::fromStdString(kIdentifier)); // and nothing else
    DBusSingleInstance second(kIdentifier);

    EXPECT_TRUE(claim(second));

    QDBusConnection::disconnectFromBus(QStringLiteral("other"));
}

TEST_F(DBusSingleInstanceTest, GoesOnWhereTheOtherDoesNotAnswer)
{
    FrozenApplication other(kIdentifier);
    DBusSingleInstance second(kIdentifier, 50ms);

    EXPECT_TRUE(claim(second));

    waitUntil([&] { return other.wasAsked; });
}

TEST_F(DBusSingleInstanceTest, ComesToTheFrontForAnyProgramThatAsks)
{
    DBusSingleInstance first(kIdentifier);
    watch(first);
    claim(first);

    activate(QStringLiteral("{}"));

    EXPECT_EQ(reopened, 1);
    EXPECT_FALSE(qEnvironmentVariableIsSet(kActivationToken));
}

TEST_F(DBusSingleInstanceTest, HandsItsRightToComeToTheFrontToTheOther)
{
    FrozenApplication other(kIdentifier);
    qputenv(kActivationToken, "token of the launcher");
    DBusSingleInstance second(kIdentifier, 50ms);

    claim(second);

    waitUntil([&] { return other.wasAsked; });
    EXPECT_EQ(other.platformData, (QVariantMap{{QStringLiteral("activation-token"), u"token of the launcher"_s}}));
}

TEST_F(DBusSingleInstanceTest, TakesTheRightToComeToTheFrontBeforeItIsReopened)
{
    DBusSingleInstance first(kIdentifier);
    QByteArray token;
    QObject::connect(&first, &DBusSingleInstance::reopened, [&token] { token = qgetenv(kActivationToken); });
    claim(first);

    activate(QStringLiteral("{'activation-token': <'token of the launcher'>}"));

    EXPECT_EQ(token, "token of the launcher");
}

} // namespace
} // namespace brindle
