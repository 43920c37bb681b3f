#include "assembly/Platform.h"

#include "platform/MemorySecretStore.h"
#include "platform/linux/LinuxChildProcess.h"
#include "platform/linux/LinuxDiskEvents.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/PlistUserDefaults.h"
#include "platform/qt/MachineFileEvents.h"
#include "platform/qt/QtScheduler.h"

#include <QCoreApplication>

namespace brindle {

namespace {

/// What comes with the program lies beside its folder: bin/brindlectl, libexec/brindle/usr/sbin/diskutil.
std::string suppliedFolder()
{
    return QCoreApplication::applicationDirPath().toStdString() + "/../libexec/brindle";
}

std::unique_ptr<SecretStore> secretStoreFor(const PlatformChanges &changes)
{
    if (changes.toolRoot)
        return std::make_unique<MemorySecretStore>();
    return std::make_unique<LinuxSecretStore>(suppliedFolder() + "/lib/brindle-secret-service.so");
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
        .toolPaths =
            changes.toolRoot ? ToolPaths::underRoot(*changes.toolRoot) : ToolPaths::withSuppliedTools(suppliedFolder()),
    };
}

} // namespace brindle
