#include "platform/linux/SessionBus.h"

#include "base/Completion.h"
#include "base/OnWorker.h"

#include <QDBusPendingCallWatcher>
#include <QUuid>

namespace brindle {

QCoro::Task<QDBusConnection> connectToSessionBus()
{
    const auto connecting = [] {
        const QString name = QUuid::createUuid().toString();
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    };
    auto connection = onWorker(connecting);
    co_return co_await connection;
}

QCoro::Task<QDBusMessage> replyTo(QDBusMessage call, QDBusConnection connection, std::chrono::milliseconds patience)
{
    const QDBusPendingCall pending = connection.asyncCall(call, static_cast<int>(patience.count()));
    if (pending.isFinished()) // without a connection, and then no watcher is told
        co_return pending.reply();
    QDBusPendingCallWatcher watcher(pending);
    const Completion<bool> finished;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &watcher, [finished] { finished.complete(true); });
    co_await finished;
    co_return pending.reply();
}

} // namespace brindle
