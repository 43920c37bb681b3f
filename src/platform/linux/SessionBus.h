#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>

namespace brindle {

/// A connection of its own to the user's session bus; not connected where there is none. It is made on another thread,
/// since that may take its time; whoever gets it disconnects it.
[[nodiscard]] QCoro::Task<QDBusConnection> connectToSessionBus();

/// The reply to \a call, or the error that came in its place, by itself after \a patience at the latest.
[[nodiscard]] QCoro::Task<QDBusMessage> replyTo(QDBusMessage call, QDBusConnection connection,
                                                std::chrono::milliseconds patience);

} // namespace brindle
