#include "assembly/Platform.h"

#include "platform/MemorySecretStore.h"
#include "platform/NoDialogs.h"
#include "platform/linux/FreedesktopNotifications.h"
#include "platform/linux/LinuxChildProcess.h"
#include "platform/linux/LinuxDiskEvents.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/NotificationModule.h"
#include "platform/linux/PlistUserDefaults.h"
#include "platform/qt/MachineFileEvents.h"
#include "platform/qt/QtScheduler.h"
#include "privileged/KeychainHelper.h"

#include <QCoreApplication>
#include <fmt/format.h>

#include <unistd.h>

#include <utility>

namespace brindle {

namespace {

/// What comes with the program lies beside its folder: bin/brindlectl, libexec/brindle/usr/sbin/diskutil.
std::string suppliedFolder()
{
    return QCoreApplication::applicationDirPath().toStdString() + "/../libexec/brindle";
}

std::string suppliedModule(std::string_view name)
{
    return fmt::format("{}/lib/brindle-{}.so", suppliedFolder(), name);
}

bool hasTemporarySecretStore(const PlatformChanges &changes)
{
    return changes.toolRoot || changes.password;
}

std::unique_ptr<SecretStore> secretStoreFor(const PlatformChanges &changes)
{
    if (!hasTemporarySecretStore(changes))
        return std::make_unique<LinuxSecretStore>(suppliedModule("secret-service"));
    auto store = std::make_unique<MemorySecretStore>();
    if (changes.password)
        (void)store->add({KeychainHelper::kService, KeychainHelper::kAccount}, *changes.password);
    return store;
}

/// The kernel's events say nothing of a simulated machine.
std::unique_ptr<DiskEvents> makeDiskEvents(const PlatformChanges &changes)
{
    if (changes.toolRoot)
        return std::make_unique<MachineFileEvents>(*changes.toolRoot);
    return std::make_unique<LinuxDiskEvents>();
}

std::unique_ptr<UserNotifications> makeUserNotifications(const PlatformChanges &changes)
{
    const auto makeDaemon = [] { return loadNotificationDaemon(suppliedModule("notifications")); };
    const auto offer =
        changes.endsSoon ? FreedesktopNotifications::Offer::nothing : FreedesktopNotifications::Offer::actions;
    return std::make_unique<FreedesktopNotifications>(makeDaemon, offer);
}

} // namespace

Platform makePlatform(const PlatformChanges &changes)
{
    auto scheduler = std::make_unique<QtScheduler>();
    auto workspace = std::make_unique<LinuxWorkspace>(*scheduler);
    return {
        .scheduler = std::move(scheduler),
        .childProcesses = std::make_unique<LinuxChildProcessLauncher>(),
        .userDefaults =
            std::make_unique<PlistUserDefaults>(changes.userDefaultsFile.value_or(PlistUserDefaults::defaultPath())),
        .secretStore = secretStoreFor(changes),
        .diskEvents = makeDiskEvents(changes),
        .fileManager = std::make_unique<LinuxFileManager>(suppliedModule("tree-comparer")),
        .workspace = std::move(workspace),
        .userNotifications = makeUserNotifications(changes),
        .dialogs = std::make_unique<NoDialogs>(),
        .toolPaths =
            changes.toolRoot ? ToolPaths::underRoot(*changes.toolRoot) : ToolPaths::withSuppliedTools(suppliedFolder()),
        .isRoot = !changes.toolRoot && geteuid() == 0,
        .isSecretStoreTemporary = hasTemporarySecretStore(changes),
    };
}

} // namespace brindle
