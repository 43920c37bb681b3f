#pragma once

#include "platform/UserNotifications.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// Shows nothing: it remembers what it was asked, can refuse it, and acts the user.
class FakeUserNotifications : public UserNotifications {
public:
    std::vector<std::string> steps; ///< "delegate", "authorization 7" and "categories", in order.
    std::vector<NotificationCategory> categories;
    std::vector<UserNotification> added;
    std::optional<Error> authorizationError;
    std::optional<Error> addError;
    int finishedResponses = 0;

    void setDelegate(Delegate *delegate) override
    {
        m_delegate = delegate;
        steps.emplace_back("delegate");
    }
    void requestAuthorization(Options options, Authorized authorized) override
    {
        steps.push_back("authorization " + std::to_string(options));
        authorized(!authorizationError, authorizationError);
    }
    void setCategories(std::vector<NotificationCategory> all) override
    {
        categories = std::move(all);
        steps.emplace_back("categories");
    }
    void add(UserNotification notification, Added done) override
    {
        added.push_back(std::move(notification));
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [done = std::move(done), error = addError] { done(error); },
            Qt::QueuedConnection);
    }

    [[nodiscard]] Delegate *delegate() const { return m_delegate; }

    /// The user does \a action with the last notification.
    void respond(const std::string &action)
    {
        m_delegate->didReceive({.actionIdentifier = action, .userInfo = added.back().userInfo},
                               [this] { ++finishedResponses; });
    }

private:
    Delegate *m_delegate = nullptr;
};

} // namespace brindle
