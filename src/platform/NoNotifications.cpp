#include "platform/NoNotifications.h"

#include <QMetaObject>

#include <utility>

namespace brindle {

void NoNotifications::requestAuthorization(Options /*options*/, Authorized authorized)
{
    QMetaObject::invokeMethod(
        &m_context, [authorized = std::move(authorized)] { authorized(false, std::nullopt); }, Qt::QueuedConnection);
}

void NoNotifications::add(UserNotification /*notification*/, Added added)
{
    QMetaObject::invokeMethod(
        &m_context, [added = std::move(added)] { added(std::nullopt); }, Qt::QueuedConnection);
}

} // namespace brindle
