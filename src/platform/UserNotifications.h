#pragma once

#include "base/Error.h"
#include "platform/UserDefaults.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// A button of a notification.
struct NotificationAction {
    std::string identifier;
    std::string title;
    bool bringsToFront = false; ///< The program comes to the front when it is pressed.
};

/// A kind of notification, and what its notifications offer.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;
};

/// One notification, which is shown at once. Texts are UTF-8 and plain: they may hold a stranger's names.
struct UserNotification {
    std::string identifier; ///< Fresh for each.
    std::string title;
    std::string body;
    std::string category;               ///< A registered one's identifier; any other has no actions.
    PropertyValue::Dictionary userInfo; ///< Comes back with what the user does.
};

/// What the user did with a notification.
struct NotificationResponse {
    std::string actionIdentifier;
    PropertyValue::Dictionary userInfo;
};

/// The notifications of the desktop. Main thread only.
class UserNotifications {
public:
    // What a notification may do, as flags with the numbers that macOS gives them.
    using Options = unsigned;
    static constexpr Options kBadge = 1;
    static constexpr Options kSound = 2;
    static constexpr Options kAlert = 4;
    static constexpr Options kBanner = 16;

    /// The action of a click on the notification itself.
    static constexpr const char *kDefaultAction = "default";

    /// Is asked and told by the centre; it may be called only while both live.
    class Delegate {
    public:
        virtual ~Delegate() = default;

        /// How a notification is presented that arrives while the program is in front.
        [[nodiscard]] virtual Options willPresent(const UserNotification &notification) = 0;

        /// The user did something with a notification; \a completionHandler is called when that is dealt with.
        virtual void didReceive(const NotificationResponse &response,
                                const std::function<void()> &completionHandler) = 0;
    };

    using Authorized = std::function<void(bool isGranted, const std::optional<Error> &error)>;
    using Added = std::function<void(const std::optional<Error> &error)>;

    virtual ~UserNotifications() = default;

    virtual void setDelegate(Delegate *delegate) = 0; ///< Null for none.

    /// Asks the user, once, whether the program may do what \a options tell.
    virtual void requestAuthorization(Options options, Authorized authorized) = 0;

    /// Replaces the registered categories.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Shows \a notification with the desktop's default sound. \a added is called once, from the event loop, with why
    /// that failed; never after this object's end.
    virtual void add(UserNotification notification, Added added) = 0;
};

} // namespace brindle
