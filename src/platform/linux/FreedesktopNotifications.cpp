#include "platform/linux/FreedesktopNotifications.h"

#include "base/VisibleText.h"

#include <QMetaObject>

#include <algorithm>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

constexpr const char *kDomain = "UserNotifications";

// The label of an action that has no button. Some daemons list it all the same.
constexpr const char *kDefaultActionTitle = "Open";

Error errorOf(const NotificationDaemon::Failure &failure)
{
    return {kDomain, 1, failure.description};
}

/// Text in which the daemon's markup, a small part of HTML, sees no tags and no entities.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

} // namespace

FreedesktopNotifications::FreedesktopNotifications(MakeDaemon makeDaemon, Offer offer)
    : m_makeDaemon(std::move(makeDaemon)),
      m_offer(offer)
{
}

void FreedesktopNotifications::requestAuthorization(Options /*options*/, Authorized authorized)
{
    QMetaObject::invokeMethod(
        &m_context, [authorized = std::move(authorized)] { authorized(true, std::nullopt); }, Qt::QueuedConnection);
}

void FreedesktopNotifications::setCategories(std::vector<NotificationCategory> categories)
{
    m_categories = std::move(categories);
}

void FreedesktopNotifications::add(UserNotification notification, Added added)
{
    if (!daemon()) {
        QMetaObject::invokeMethod(
            &m_context,
            [added = std::move(added)] {
                added(Error(kDomain, 1, "The program's part for notifications is missing."));
            },
            Qt::QueuedConnection);
        return;
    }
    using Answer = std::variant<std::vector<std::string>, NotificationDaemon::Failure>;
    m_daemon->askCapabilities(
        [this, notification = std::move(notification), added = std::move(added)](const Answer &answer) {
            if (const auto *failure = std::get_if<NotificationDaemon::Failure>(&answer))
                added(errorOf(*failure));
            else
                show(notification, std::get<std::vector<std::string>>(answer), added);
        });
}

NotificationDaemon *FreedesktopNotifications::daemon()
{
    if (m_daemon)
        return m_daemon.get();
    m_daemon = m_makeDaemon();
    if (m_daemon)
        m_daemon->setObserver({
            .actionInvoked = [this](const NotificationDaemon::Key &key,
                                    const std::string &action) { actionInvoked(key, action); },
            .closed = [this](const NotificationDaemon::Key &key) { m_shown.erase(key); },
        });
    return m_daemon.get();
}

void FreedesktopNotifications::show(const UserNotification &notification, const std::vector<std::string> &capabilities,
                                    const Added &added)
{
    using Answer = std::variant<NotificationDaemon::Key, NotificationDaemon::Failure>;
    m_daemon->notify(messageOf(notification, capabilities),
                     [this, userInfo = notification.userInfo, added](const Answer &answer) {
                         if (const auto *failure = std::get_if<NotificationDaemon::Failure>(&answer)) {
                             added(errorOf(*failure));
                             return;
                         }
                         keep(std::get<NotificationDaemon::Key>(answer), userInfo);
                         added(std::nullopt);
                     });
}

NotificationDaemon::Message FreedesktopNotifications::messageOf(const UserNotification &notification,
                                                                const std::vector<std::string> &capabilities) const
{
    const auto can = [&](const char *capability) { return std::ranges::count(capabilities, capability) > 0; };
    const std::string body = visibleText(notification.body);
    const bool offersActions = m_offer == Offer::actions && can("actions");
    const Options options = m_delegate ? m_delegate->willPresent(notification) : kBanner;
    return {
        .summary = visibleText(notification.title),
        .body = can("body-markup") ? escaped(body) : body,
        .actions = offersActions ? actionsOf(notification.category) : std::vector<std::string>(),
        .isSilent = (options & kSound) == 0,
    };
}

std::vector<std::string> FreedesktopNotifications::actionsOf(const std::string &category) const
{
    std::vector<std::string> actions{kDefaultAction, kDefaultActionTitle};
    const auto found = std::ranges::find(m_categories, category, &NotificationCategory::identifier);
    if (found == m_categories.end())
        return actions;
    for (const NotificationAction &action : found->actions) {
        actions.push_back(action.identifier);
        actions.push_back(action.title);
    }
    return actions;
}

/// What another daemon had shown is gone with it.
void FreedesktopNotifications::keep(NotificationDaemon::Key key, PropertyValue::Dictionary userInfo)
{
    std::erase_if(m_shown, [&](const auto &shown) { return shown.first.daemon != key.daemon; });
    m_shown.insert_or_assign(std::move(key), std::move(userInfo));
}

void FreedesktopNotifications::actionInvoked(const NotificationDaemon::Key &key, const std::string &action)
{
    const auto shown = m_shown.find(key);
    if (shown == m_shown.end() || !m_delegate)
        return;
    m_delegate->didReceive({.actionIdentifier = action, .userInfo = shown->second}, [] {});
}

} // namespace brindle
