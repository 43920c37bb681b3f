#include "platform/NoNotifications.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <utility>

namespace brindle {

void NoNotifications::requestAuthorization(Options /*options*/, Authorized authorized)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [authorized = std::move(authorized)] { authorized(false, std::nullopt); },
        Qt::QueuedConnection);
}

void NoNotifications::add(UserNotification /*notification*/, Added added)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [added = std::move(added)] { added(std::nullopt); }, Qt::QueuedConnection);
}

} // namespace brindle
