#include "platform/linux/DBusNotificationDaemon.h"

#include "platform/linux/SessionBus.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <chrono>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto kService = "org.freedesktop.Notifications"_L1;
constexpr auto kPath = "/org/freedesktop/Notifications"_L1;

// The bus may have to start the daemon first.
constexpr std::chrono::milliseconds kPatience = 10s;

// Names of freedesktop.org's icon and sound naming.
constexpr auto kIcon = "drive-harddisk"_L1;
constexpr auto kSound = "message-new-instant"_L1;

// Lets the daemon itself choose how long a notification stays.
constexpr int kUsualTime = -1;

QDBusMessage methodCall(QLatin1StringView method)
{
    return QDBusMessage::createMethodCall(kService, kPath, kService, method);
}

std::vector<std::string> textsIn(const QStringList &list)
{
    std::vector<std::string> texts;
    for (const QString &text : list)
        texts.push_back(text.toStdString());
    return texts;
}

QDBusMessage notifyCall(const NotificationDaemon::Message &message)
{
    QStringList actions;
    for (const std::string &text : message.actions)
        actions << QString::fromStdString(text);
    QVariantMap hints;
    if (message.isSilent)
        hints.insert(u"suppress-sound"_s, true);
    else
        hints.insert(u"sound-name"_s, QString(kSound));
    QDBusMessage call = methodCall("Notify"_L1);
    call << u"Brindle"_s << quint32{0} << QString(kIcon) << QString::fromStdString(message.summary)
         << QString::fromStdString(message.body) << actions << hints << kUsualTime;
    return call;
}

/// Whether \a message has arguments of the types of \a signature, as D-Bus writes them.
bool fits(const QDBusMessage &message, QLatin1StringView signature)
{
    return message.type() != QDBusMessage::ErrorMessage && message.signature() == signature;
}

NotificationDaemon::Failure failureOf(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage)
        return {reply.errorMessage().toStdString()};
    return {"The notification daemon answers in another way than it should."};
}

/// The notification that a signal of the daemon tells of in its first argument.
NotificationDaemon::Key keyIn(const QDBusMessage &signal)
{
    return {.daemon = signal.service().toStdString(), .id = signal.arguments().at(0).toUInt()};
}

} // namespace

DBusNotificationDaemon::~DBusNotificationDaemon()
{
    disconnectFromBus();
}

void DBusNotificationDaemon::setObserver(Observer observer)
{
    m_observer = std::move(observer);
}

void DBusNotificationDaemon::askCapabilities(Answer<std::vector<std::string>> answer)
{
    call({methodCall("GetCapabilities"_L1), [answer = std::move(answer)](const QDBusMessage &reply) {
              if (fits(reply, "as"_L1))
                  answer(textsIn(reply.arguments().at(0).toStringList()));
              else
                  answer(failureOf(reply));
          }});
}

void DBusNotificationDaemon::notify(Message message, Answer<Key> answer)
{
    call({notifyCall(message), [answer = std::move(answer)](const QDBusMessage &reply) {
              if (fits(reply, "u"_L1))
                  answer(keyIn(reply));
              else
                  answer(failureOf(reply));
          }});
}

void DBusNotificationDaemon::call(Call call)
{
    if (m_connection && m_connection->isConnected()) {
        send(call);
        return;
    }
    m_waitingCalls.push_back(std::move(call));
    if (!std::exchange(m_isConnecting, true))
        connectToBus(this);
}

void DBusNotificationDaemon::send(const Call &call)
{
    const auto pending = m_connection->asyncCall(call.message, static_cast<int>(kPatience.count()));
    if (pending.isFinished()) { // without a connection, and then no watcher is told
        QMetaObject::invokeMethod(
            this, [replied = call.replied, reply = pending.reply()] { replied(reply); }, Qt::QueuedConnection);
        return;
    }
    auto *const watcher = new QDBusPendingCallWatcher(pending, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, replied = call.replied] {
        watcher->deleteLater();
        replied(watcher->reply());
    });
}

QCoro::Task<> DBusNotificationDaemon::connectToBus(QPointer<DBusNotificationDaemon> self)
{
    auto connecting = connectToSessionBus();
    const QDBusConnection connected = co_await connecting;
    if (self)
        self->use(connected);
    else
        QDBusConnection::disconnectFromBus(connected.name());
}

void DBusNotificationDaemon::use(QDBusConnection connection)
{
    disconnectFromBus();
    m_connection = std::move(connection);
    m_isConnecting = false;
    // From any sender: Qt would ask the bus who owns the daemon's name, and wait for the answer.
    m_connection->connect({}, kPath, kService, u"ActionInvoked"_s, this, SLOT(actionInvoked(QDBusMessage)));
    m_connection->connect({}, kPath, kService, u"NotificationClosed"_s, this, SLOT(notificationClosed(QDBusMessage)));
    for (const Call &call : std::exchange(m_waitingCalls, {}))
        send(call);
}

void DBusNotificationDaemon::disconnectFromBus()
{
    if (m_connection)
        QDBusConnection::disconnectFromBus(m_connection->name());
    m_connection.reset();
}

void DBusNotificationDaemon::actionInvoked(const QDBusMessage &signal)
{
    if (fits(signal, "us"_L1) && m_observer.actionInvoked)
        m_observer.actionInvoked(keyIn(signal), signal.arguments().at(1).toString().toStdString());
}

void DBusNotificationDaemon::notificationClosed(const QDBusMessage &signal)
{
    if (fits(signal, "uu"_L1) && m_observer.closed)
        m_observer.closed(keyIn(signal));
}

} // namespace brindle
