#pragma once

#include "platform/UserNotifications.h"

#include <QObject>

namespace brindle {

/// Shows nothing, and says that it did: for programs whose user sees how a mount ends.
class NoNotifications final : public UserNotifications {
public:
    void setDelegate(Delegate * /*delegate*/) override {}
    void requestAuthorization(Options options, Authorized authorized) override;
    void setCategories(std::vector<NotificationCategory> /*categories*/) override {}
    void add(UserNotification notification, Added added) override;

private:
    QObject m_context; ///< What is still to be told ends with it.
};

} // namespace brindle
