#include "platform/linux/DBusNotificationDaemon.h"

/// What loadNotificationDaemon() looks for; the caller owns what it gives.
extern "C" [[gnu::visibility("default")]] brindle::NotificationDaemon *brindleNotificationDaemon()
{
    return new brindle::DBusNotificationDaemon;
}
