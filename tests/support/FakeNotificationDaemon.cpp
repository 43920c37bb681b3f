#include "support/FakeNotificationDaemon.h"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QUuid>

namespace brindle {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");

constexpr uint kClosedByTheUser = 2;

QDBusConnection newConnection()
{
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QUuid::createUuid().toString());
}

QDBusMessage actionInvoked(uint id, const QString &action)
{
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kService, QStringLiteral("ActionInvoked"));
    return signal << id << action;
}

} // namespace

FakeNotificationDaemon::FakeNotificationDaemon() : m_connection(newConnection())
{
    EXPECT_TRUE(m_connection.registerObject(kPath, this, QDBusConnection::ExportScriptableInvokables));
    const auto registered = m_connection.interface()->registerService(
        kService, QDBusConnectionInterface::ReplaceExistingService, QDBusConnectionInterface::AllowReplacement);
    EXPECT_EQ(registered.value(), QDBusConnectionInterface::ServiceRegistered);
}

FakeNotificationDaemon::~FakeNotificationDaemon()
{
    m_connection.unregisterService(kService);
    QDBusConnection::disconnectFromBus(m_connection.name());
}

uint FakeNotificationDaemon::Notify(const QString &appName, uint replacesId, const QString &icon,
                                    const QString &summary, const QString &body, const QStringList &actions,
                                    const QVariantMap &hints, int expireTimeout)
{
    const auto id = static_cast<uint>(shown.size()) + 1;
    shown.push_back({id, appName, replacesId, icon, summary, body, actions, hints, expireTimeout});
    if (refuses)
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("too many notifications"));
    else if (isSilent)
        setDelayedReply(true);
    return id;
}

void FakeNotificationDaemon::invoke(uint id, const QString &action)
{
    m_connection.send(actionInvoked(id, action));
}

void FakeNotificationDaemon::close(uint id)
{
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kService, QStringLiteral("NotificationClosed"));
    m_connection.send(signal << id << kClosedByTheUser);
}

void FakeNotificationDaemon::pretendToInvoke(uint id, const QString &action)
{
    QDBusConnection stranger = newConnection();
    stranger.send(actionInvoked(id, action));
    // The bus has passed the signal on once it answers.
    stranger.interface()->isServiceRegistered(kService);
    QDBusConnection::disconnectFromBus(stranger.name());
}

} // namespace brindle
