#include "support/FakePortal.h"

#include <QDBusMessage>
#include <QUuid>

#include <gtest/gtest.h>

namespace brindle {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");

QDBusMessage signalOf(const QString &space, const QString &key, const QVariant &value)
{
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kInterface, QStringLiteral("SettingChanged"));
    signal << space << key << QVariant::fromValue(QDBusVariant(value));
    return signal;
}

} // namespace

FakePortal::FakePortal(const QVariant &scheme)
    : colorScheme(scheme),
      m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QUuid::createUuid().toString()))
{
    EXPECT_TRUE(m_connection.registerObject(kPath, this, QDBusConnection::ExportScriptableInvokables));
    EXPECT_TRUE(m_connection.registerService(kService));
}

FakePortal::~FakePortal()
{
    QDBusConnection::disconnectFromBus(m_connection.name());
}

void FakePortal::tell(const QString &space, const QString &key)
{
    m_connection.send(signalOf(space, key, colorScheme));
}

void FakePortal::pretendToTell(const QVariant &colorScheme)
{
    const QString name = QUuid::createUuid().toString();
    QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
        .send(signalOf(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), colorScheme));
    QDBusConnection::disconnectFromBus(name);
}

QDBusVariant FakePortal::Read(const QString &space, const QString &key)
{
    ++reads;
    if (space != QStringLiteral("org.freedesktop.appearance") || key != QStringLiteral("color-scheme"))
        sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"), QStringLiteral("no such setting"));
    return QDBusVariant(QVariant::fromValue(QDBusVariant(colorScheme)));
}

} // namespace brindle
