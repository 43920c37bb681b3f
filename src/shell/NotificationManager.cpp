#include "shell/NotificationManager.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"
#include "base/Text.h"
#include "detectors/ToolText.h"
#include "records/Preferences.h"

#include <QUuid>

#include <optional>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

constexpr const char *kOpenFinder = "OPEN_FINDER";
constexpr const char *kEFIIdentifier = "efiIdentifier";

/// What one event is told by.
struct Announcement {
    const char *title;
    const char *body; ///< The disk's name follows.
    const char *category;
};

constexpr Announcement kMountWorked{"EFI Mounted", "Successfully mounted EFI partition for ", "MOUNT_SUCCESS"};
constexpr Announcement kMountFailed{"Mount Failed", "Failed to mount EFI partition for ", "MOUNT_FAILED"};
constexpr Announcement kUnmountWorked{"EFI Unmounted", "Successfully unmounted EFI partition for ", "UNMOUNT_SUCCESS"};
constexpr Announcement kUnmountFailed{"Unmount Failed", "Failed to unmount EFI partition for ", "UNMOUNT_FAILED"};

UserNotification notificationOf(const Announcement &announcement, const std::string &diskName, const char *operation,
                                bool success)
{
    return {
        .identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString(),
        .title = announcement.title,
        .body = announcement.body + diskName,
        .category = announcement.category,
        .userInfo = {{"diskName", diskName}, {"operation", operation}, {"success", success}},
    };
}

std::vector<NotificationCategory> categories()
{
    return {
        {kMountWorked.category, {{.identifier = kOpenFinder, .title = "Open in Finder", .bringsToFront = true}}},
        {kMountFailed.category, {}},
        {kUnmountWorked.category, {}},
        {kUnmountFailed.category, {}},
    };
}

/// What follows the first label of a mount point in the whole text, up to the end of that line.
std::optional<std::string> mountPointIn(std::string_view info)
{
    const std::size_t label = info.find(ToolText::kMountPointLabel);
    if (label == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = info.substr(label + ToolText::kMountPointLabel.size());
    const std::string_view value = trimmed(rest.substr(0, rest.find('\n')));
    return ToolText::isGiven(value) ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace

NotificationManager::NotificationManager(UserNotifications &notifications, const UserDefaults &defaults,
                                         ChildProcessLauncher &childProcesses, const ToolPaths &toolPaths,
                                         Workspace &workspace)
    : m_notifications(notifications),
      m_defaults(defaults),
      m_childProcesses(childProcesses),
      m_diskutilPath(toolPaths.diskutil()),
      m_workspace(workspace)
{
    m_notifications.setDelegate(this);
    m_notifications.requestAuthorization(
        UserNotifications::kAlert | UserNotifications::kSound | UserNotifications::kBadge,
        [](bool /*isGranted*/, const std::optional<Error> &error) {
            if (error)
                Log::line("Notification permission error: {}", error->localizedDescription());
        });
    m_notifications.setCategories(categories());
}

NotificationManager::~NotificationManager()
{
    m_notifications.setDelegate(nullptr);
}

void NotificationManager::mountResult(const std::string &diskName, bool success,
                                      const std::optional<std::string> &efiIdentifier)
{
    UserNotification notification = notificationOf(success ? kMountWorked : kMountFailed, diskName, "mount", success);
    if (efiIdentifier)
        notification.userInfo.insert_or_assign(kEFIIdentifier, *efiIdentifier);
    send(std::move(notification));
}

void NotificationManager::unmountResult(const std::string &diskName, bool success)
{
    send(notificationOf(success ? kUnmountWorked : kUnmountFailed, diskName, "unmount", success));
}

void NotificationManager::send(UserNotification notification)
{
    if (!isOn(m_defaults, DefaultsKeys::kShowNotifications))
        return;
    if (m_underWay++ == 0)
        m_allSent = Completion<bool>();
    m_notifications.add(std::move(notification), [this](const std::optional<Error> &error) { sent(error); });
}

void NotificationManager::sent(const std::optional<Error> &error)
{
    if (error)
        Log::line("Failed to show notification: {}", error->localizedDescription());
    if (--m_underWay == 0)
        m_allSent.complete(true);
}

QCoro::Task<> NotificationManager::allSent()
{
    if (m_underWay == 0)
        co_return;
    const Completion<bool> allSent = m_allSent;
    co_await allSent;
}

UserNotifications::Options NotificationManager::willPresent(const UserNotification & /*notification*/)
{
    return UserNotifications::kBanner | UserNotifications::kSound;
}

void NotificationManager::didReceive(const NotificationResponse &response,
                                     const std::function<void()> &completionHandler)
{
    const bool opensOnClick = isOn(m_defaults, DefaultsKeys::kOpenEFIOnNotificationClick);
    const std::string &action = response.actionIdentifier;
    if (action == kOpenFinder || (action == UserNotifications::kDefaultAction && opensOnClick)) {
        const auto found = response.userInfo.find(kEFIIdentifier);
        const auto *efiIdentifier = found == response.userInfo.end() ? nullptr : found->second.as<std::string>();
        if (efiIdentifier)
            openMountPoint(*efiIdentifier);
        else
            m_workspace.openFile(Workspace::kVolumesFolder);
    }
    completionHandler();
}

void NotificationManager::openMountPoint(const std::string &efiIdentifier)
{
    const auto opened = [&workspace = m_workspace](const ChildProcessEnd &end) {
        if (end.failure)
            Log::line("Failed to get mount point for notification click");
        else if (const std::optional<std::string> mountPoint = mountPointIn(end.standardOutput))
            workspace.openFile(*mountPoint);
    };
    m_childProcesses.launch({.path = m_diskutilPath, .arguments = {"info", efiIdentifier}}, opened);
}

} // namespace brindle
