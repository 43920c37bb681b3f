#include "assembly/Platform.h"

#include "platform/MemorySecretStore.h"
#include "platform/NoDialogs.h"
#include "platform/linux/LinuxChildProcess.h"
#include "platform/linux/LinuxDiskEvents.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/PlistUserDefaults.h"
#include "platform/qt/MachineFileEvents.h"
#include "platform/qt/QtScheduler.h"

#include <QCoreApplication>

namespace brindle {

namespace {

/// The tools that come with the program lie beside its folder: bin/brindlectl, libexec/brindle/usr/sbin/diskutil.
ToolPaths suppliedTools()
{
    return ToolPaths::withSuppliedTools(QCoreApplication::applicationDirPath().toStdString() + "/../libexec/brindle");
}

std::unique_ptr<SecretStore> secretStoreFor(const PlatformChanges &changes)
{
    if (changes.toolRoot)
        return std::make_unique<MemorySecretStore>();
    return std::make_unique<LinuxSecretStore>();
}

/// The kernel's events say nothing of a simulated machine.
std::unique_ptr<DiskEvents> makeDiskEvents(const PlatformChanges &changes)
{
    if (changes.toolRoot)
        return std::make_unique<MachineFileEvents>(*changes.toolRoot);
    return std::make_unique<LinuxDiskEvents>();
}

} // namespace

Platform makePlatform(const PlatformChanges &changes)
{
    return {
        .scheduler = std::make_unique<QtScheduler>(),
        .childProcesses = std::make_unique<LinuxChildProcessLauncher>(),
        .userDefaults =
            std::make_unique<PlistUserDefaults>(changes.userDefaultsFile.value_or(PlistUserDefaults::defaultPath())),
        .secretStore = secretStoreFor(changes),
        .diskEvents = makeDiskEvents(changes),
        .fileManager = std::make_unique<LinuxFileManager>(),
        .dialogs = std::make_unique<NoDialogs>(),
        .toolPaths = changes.toolRoot ? ToolPaths::underRoot(*changes.toolRoot) : suppliedTools(),
    };
}

} // namespace brindle
