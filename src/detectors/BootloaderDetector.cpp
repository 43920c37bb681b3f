#include "detectors/BootloaderDetector.h"

#include "base/Log.h"
#include "base/OnWorker.h"

#include <filesystem>
#include <initializer_list>
#include <system_error>
#include <utility>

namespace brindle {

namespace {

bool pathExists(const std::string &path)
{
    std::error_code ignored; // what can't be looked at isn't there
    return std::filesystem::exists(path, ignored);
}

/// A folder alone is no boot loader: people keep empty ones.
bool holdsOneOf(const std::string &folder, std::initializer_list<const char *> files)
{
    if (!pathExists(folder))
        return false;
    for (const char *file : files) {
        if (pathExists(folder + "/" + file))
            return true;
    }
    return false;
}

std::string openCoreFolder(const std::string &mountPoint)
{
    return mountPoint + "/EFI/OC";
}

std::string cloverFolder(const std::string &mountPoint)
{
    return mountPoint + "/EFI/CLOVER";
}

BootloaderFlags flagsAt(const std::string &mountPoint)
{
    return {holdsOneOf(openCoreFolder(mountPoint), {"OpenCore.efi", "config.plist"}),
            holdsOneOf(cloverFolder(mountPoint), {"CLOVERX64.efi", "config.plist"})};
}

} // namespace

QCoro::Task<BootloaderFlags> BootloaderDetector::detectBootloaders(std::string identifier, bool isBootDisk,
                                                                   bool isBootloaderDisk, bool efiMounted,
                                                                   std::optional<std::string> efiMountPoint)
{
    Log::line("🔍 Bootloader detection for {}: isBootDisk={} isBootloaderDisk={} efiMounted={}", identifier, isBootDisk,
              isBootloaderDisk, efiMounted);
    if (efiMounted && efiMountPoint) {
        auto reading = flagsOfFiles(std::move(identifier), *std::move(efiMountPoint));
        co_return co_await reading;
    }
    // Once it is known where the boot loader came from, the disk with the system is no longer credited with it.
    if (isBootloaderDisk || (!bootloaderDiskIdentifier && isBootDisk))
        co_return flagsOfRunningSystem();
    Log::line("   ➖ No bootloader info available for {}", identifier);
    co_return BootloaderFlags();
}

QCoro::Task<BootloaderFlags> BootloaderDetector::flagsOfFiles(std::string identifier, std::string mountPoint)
{
    const auto known = scanCache.find(identifier);
    if (known != scanCache.end() && known->second.mountPoint == mountPoint) {
        Log::line("   💾 Bootloader scan cache hit for {}", identifier);
        co_return BootloaderFlags{known->second.hasOpenCore, known->second.hasClover};
    }
    auto scan = scanEFIFiles(mountPoint);
    const BootloaderFlags flags = co_await scan;
    scanCache.insert_or_assign(identifier, ScanEntry{mountPoint, flags.hasOpenCore, flags.hasClover});
    Log::line("   📂 File scan — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover);
    co_return flags;
}

BootloaderFlags BootloaderDetector::flagsOfRunningSystem() const
{
    const BootloaderFlags flags{openCoreVersion.has_value(), cloverVersion.has_value()};
    Log::line("   ℹ️ Using cached system info — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover);
    return flags;
}

QCoro::Task<BootloaderFlags> BootloaderDetector::scanEFIFiles(std::string mountPoint)
{
    auto reading = onWorker([mountPoint] { return flagsAt(mountPoint); });
    const BootloaderFlags flags = co_await reading;
    if (flags.hasOpenCore)
        Log::line("   ✅ OpenCore confirmed at {}", openCoreFolder(mountPoint));
    if (flags.hasClover)
        Log::line("   ✅ Clover confirmed at {}", cloverFolder(mountPoint));
    co_return flags;
}

} // namespace brindle
