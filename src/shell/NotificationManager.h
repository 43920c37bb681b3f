#pragma once

#include "platform/ChildProcess.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"
#include "privileged/MountNotifier.h"
#include "records/ToolPaths.h"

#include "base/Completion.h"

#include <QCoroTask>

#include <cstddef>
#include <optional>
#include <string>

namespace brindle {

/// Tells the user by the desktop's notifications how a mount or an unmount ended, and opens what was mounted when such
/// a notification is clicked.
///
/// The system's refusal of notifications shows only as their absence. Main thread only.
class NotificationManager : public MountNotifier, public UserNotifications::Delegate {
public:
    /// Becomes the delegate of \a notifications and registers what it is going to send. All arguments outlive the
    /// manager.
    NotificationManager(UserNotifications &notifications, const UserDefaults &defaults,
                        ChildProcessLauncher &childProcesses, const ToolPaths &toolPaths, Workspace &workspace);
    ~NotificationManager() override;
    NotificationManager(const NotificationManager &) = delete;
    NotificationManager &operator=(const NotificationManager &) = delete;

    /// Sends nothing while "ShowNotifications" is off. Without \a efiIdentifier a click opens the folder of all
    /// volumes.
    void mountResult(const std::string &diskName, bool success,
                     const std::optional<std::string> &efiIdentifier) override;

    void unmountResult(const std::string &diskName, bool success) override;

    /// Returns once all that was sent is shown or refused, for a program that is about to end; called once at most.
    QCoro::Task<> allSent();

    [[nodiscard]] UserNotifications::Options willPresent(const UserNotification &notification) override;
    void didReceive(const NotificationResponse &response, const std::function<void()> &completionHandler) override;

private:
    void send(UserNotification notification);
    void sent(const std::optional<Error> &error);
    void openMountPoint(const std::string &efiIdentifier);

    UserNotifications &m_notifications;
    const UserDefaults &m_defaults;
    ChildProcessLauncher &m_childProcesses;
    std::string m_diskutilPath;
    Workspace &m_workspace;
    std::size_t m_underWay = 0;
    Completion<bool> m_allSent; ///< Of all that are under way; a new one once none was.
};

} // namespace brindle
