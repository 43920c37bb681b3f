#pragma once

#include "platform/UserNotifications.h"
#include "platform/linux/NotificationDaemon.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace brindle {

/// The notifications of a freedesktop.org desktop.
///
/// Such a desktop asks nobody for a permission and doesn't tell whether the program is in front: all may be shown, and
/// each is presented as one that arrives while it is. What a daemon can't do is left out: buttons where it knows none,
/// and the escaping of its markup where it would show that.
class FreedesktopNotifications final : public UserNotifications {
public:
    /// Makes the daemon at the first notification; null where it can't be reached in any way.
    using MakeDaemon = std::function<std::unique_ptr<NotificationDaemon>()>;

    /// What can be done with a notification; nothing where the process has ended by the time that anybody does it.
    enum class Offer { actions, nothing };

    explicit FreedesktopNotifications(MakeDaemon makeDaemon, Offer offer = Offer::actions);

    void setDelegate(Delegate *delegate) override { m_delegate = delegate; }
    void requestAuthorization(Options options, Authorized authorized) override;
    void setCategories(std::vector<NotificationCategory> categories) override;
    void add(UserNotification notification, Added added) override;

private:
    [[nodiscard]] NotificationDaemon *daemon();
    void show(const UserNotification &notification, const std::vector<std::string> &capabilities, const Added &added);
    [[nodiscard]] NotificationDaemon::Message messageOf(const UserNotification &notification,
                                                        const std::vector<std::string> &capabilities) const;
    [[nodiscard]] std::vector<std::string> actionsOf(const std::string &category) const;
    void keep(NotificationDaemon::Key key, PropertyValue::Dictionary userInfo);
    void actionInvoked(const NotificationDaemon::Key &key, const std::string &action);

    QObject m_context; ///< What is still to be told ends with it.
    MakeDaemon m_makeDaemon;
    Offer m_offer;
    std::unique_ptr<NotificationDaemon> m_daemon;
    Delegate *m_delegate = nullptr;
    std::vector<NotificationCategory> m_categories;
    std::map<NotificationDaemon::Key, PropertyValue::Dictionary> m_shown; ///< Of one daemon, until they are closed.
};

} // namespace brindle
