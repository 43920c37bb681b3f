#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace brindle {

/// The desktop's notification daemon, in the words of freedesktop.org's Desktop Notifications 1.2.
///
/// Nothing waits: each question is answered once, from the event loop, and never after this object's end. A daemon that
/// is missing, or that doesn't answer in time, makes the question fail; the next one is asked of whichever daemon is
/// there by then. Main thread only.
class NotificationDaemon {
public:
    /// Names a notification that was shown. Each daemon counts by itself, so that the number alone says nothing once
    /// another has taken over.
    struct Key {
        std::string daemon;
        std::uint32_t id = 0;

        auto operator<=>(const Key &) const = default;
    };

    struct Message {
        std::string summary;
        std::string body;
        std::vector<std::string> actions; ///< Identifier and title by turns.
        bool isSilent = false;
    };

    /// Why a question has failed.
    struct Failure {
        std::string description;
    };

    template <typename T>
    using Answer = std::function<void(const std::variant<T, Failure> &answer)>;

    /// What the user does with a notification. Any program on the bus can send this: the key says who did.
    struct Observer {
        std::function<void(const Key &key, const std::string &action)> actionInvoked;
        std::function<void(const Key &key)> closed;
    };

    virtual ~NotificationDaemon() = default;

    virtual void setObserver(Observer observer) = 0;

    /// What the daemon can do: "actions", "body-markup" and so on.
    virtual void askCapabilities(Answer<std::vector<std::string>> answer) = 0;

    virtual void notify(Message message, Answer<Key> answer) = 0;
};

} // namespace brindle
