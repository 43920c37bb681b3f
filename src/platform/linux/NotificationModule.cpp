#include "platform/linux/NotificationModule.h"

#include "base/Log.h"

#include <dlfcn.h>

namespace brindle {

std::unique_ptr<NotificationDaemon> loadNotificationDaemon(const std::filesystem::path &path)
{
    void *const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void *const function = module ? dlsym(module, "brindleNotificationDaemon") : nullptr;
    if (!function) {
        Log::line("⚠️ The module for notifications can't be loaded: {}", dlerror());
        return nullptr;
    }
    using Make = NotificationDaemon *();
    return std::unique_ptr<NotificationDaemon>(reinterpret_cast<Make *>(function)());
}

} // namespace brindle
