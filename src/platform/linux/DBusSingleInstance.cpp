#include "platform/linux/DBusSingleInstance.h"

#include "platform/linux/SessionBus.h"

#include <QDBusMessage>

namespace brindle {

using namespace Qt::StringLiterals;

namespace {

// Of D-Bus: RequestName's flag, and its reply where another has the name.
constexpr uint kDoNotQueue = 4;
constexpr uint kExists = 3;

// Of freedesktop.org's desktop entries, and of its startup notification: what entitles a start to come to the front.
constexpr auto kActivationToken = "activation-token"_L1;
constexpr const char *kActivationTokenVariable = "XDG_ACTIVATION_TOKEN";

/// As freedesktop.org's desktop entries tell.
QString pathOf(QString name)
{
    return u'/' + name.replace(u'.', u'/').replace(u'-', u'_');
}

} // namespace

DBusSingleInstance::DBusSingleInstance(const std::string &identifier, std::chrono::milliseconds patience)
    : m_name(QString::fromStdString(identifier)),
      m_path(pathOf(m_name)),
      m_patience(patience)
{
}

DBusSingleInstance::~DBusSingleInstance()
{
    if (m_connection)
        QDBusConnection::disconnectFromBus(m_connection->name());
}

QCoro::Task<bool> DBusSingleInstance::claim()
{
    auto connecting = connectToSessionBus();
    m_connection = co_await connecting;
    if (!m_connection->isConnected())
        co_return true;
    m_connection->registerObject(m_path, this, QDBusConnection::ExportScriptableInvokables);
    auto request = requestName();
    if (co_await request)
        co_return true;
    auto activation = activateOther();
    if (co_await activation)
        co_return false;
    auto secondRequest = requestName(); // the other one may have gone meanwhile
    co_await secondRequest;
    co_return true;
}

QCoro::Task<bool> DBusSingleInstance::requestName()
{
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                       u"org.freedesktop.DBus"_s, u"RequestName"_s);
    call << m_name << kDoNotQueue;
    auto answer = replyTo(call, *m_connection, kPatience);
    const QDBusMessage reply = co_await answer;
    co_return reply.signature() != u"u"_s || reply.arguments().at(0).toUInt() != kExists;
}

QCoro::Task<bool> DBusSingleInstance::activateOther()
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_name, m_path, u"org.freedesktop.Application"_s, u"Activate"_s);
    QVariantMap platformData;
    if (qEnvironmentVariableIsSet(kActivationTokenVariable))
        platformData.insert(kActivationToken, qEnvironmentVariable(kActivationTokenVariable));
    call << platformData;
    call.setAutoStartService(false);
    auto answer = replyTo(call, *m_connection, m_patience);
    const QDBusMessage reply = co_await answer;
    co_return reply.type() == QDBusMessage::ReplyMessage;
}

void DBusSingleInstance::Activate(const QVariantMap &platformData)
{
    if (const QByteArray token = platformData.value(kActivationToken).toString().toUtf8(); !token.isEmpty())
        qputenv(kActivationTokenVariable, token); // where Qt takes it from, as at a start
    Q_EMIT reopened();
}

} // namespace brindle
