#pragma once

#include "platform/linux/NotificationDaemon.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// The daemon behind org.freedesktop.Notifications on the user's session bus.
///
/// The bus is connected to at the first question, on another thread, since it may take its time, and anew once it was
/// lost.
class DBusNotificationDaemon final : public QObject, public NotificationDaemon {
    Q_OBJECT

public:
    DBusNotificationDaemon() = default;
    ~DBusNotificationDaemon() override;

    void setObserver(Observer observer) override;
    void askCapabilities(Answer<std::vector<std::string>> answer) override;
    void notify(Message message, Answer<Key> answer) override;

private:
    /// A method's call, and what is made of its reply, which may be an error.
    struct Call {
        QDBusMessage message;
        std::function<void(const QDBusMessage &reply)> replied;
    };

    void call(Call call);
    void send(const Call &call);
    static QCoro::Task<> connectToBus(QPointer<DBusNotificationDaemon> self);
    void use(QDBusConnection connection);
    void disconnectFromBus();

    Q_SLOT void actionInvoked(const QDBusMessage &signal);
    Q_SLOT void notificationClosed(const QDBusMessage &signal);

    std::optional<QDBusConnection> m_connection;
    bool m_isConnecting = false;
    std::vector<Call> m_waitingCalls; ///< For the connection.
    Observer m_observer;
};

} // namespace brindle
