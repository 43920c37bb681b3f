#pragma once

#include "platform/linux/NotificationDaemon.h"

#include <filesystem>
#include <memory>

namespace brindle {

/// The desktop's daemon, by the module \a path, which is loaded here and stays; null where it can't be loaded.
///
/// It is a module because Qt's D-Bus library costs every start of a program that is linked to it more than a
/// millisecond, and few runs of brindlectl send a notification.
[[nodiscard]] std::unique_ptr<NotificationDaemon> loadNotificationDaemon(const std::filesystem::path &path);

} // namespace brindle
