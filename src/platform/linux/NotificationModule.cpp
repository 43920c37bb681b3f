#include "platform/linux/NotificationModule.h"

#include "platform/linux/ModuleFunction.h"

namespace brindle {

std::unique_ptr<NotificationDaemon> loadNotificationDaemon(const std::filesystem::path &path)
{
    void *const function = moduleFunction(path, "brindleNotificationDaemon", "notifications");
    using Make = NotificationDaemon *();
    return std::unique_ptr<NotificationDaemon>(function ? reinterpret_cast<Make *>(function)() : nullptr);
}

} // namespace brindle
