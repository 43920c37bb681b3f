#include "detectors/BootloaderDetector.h"

#include "base/Log.h"

#include <filesystem>
#include <initializer_list>
#include <system_error>

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

} // namespace

BootloaderFlags BootloaderDetector::detectBootloaders(const std::string &identifier, bool isBootDisk,
                                                      bool isBootloaderDisk, bool efiMounted,
                                                      const std::optional<std::string> &efiMountPoint)
{
    Log::line("🔍 Bootloader detection for {}: isBootDisk={} isBootloaderDisk={} efiMounted={}", identifier, isBootDisk,
              isBootloaderDisk, efiMounted);
    if (efiMounted && efiMountPoint)
        return flagsOfFiles(identifier, *efiMountPoint);
    // Once it is known where the boot loader came from, the disk with the system is no longer credited with it.
    if (isBootloaderDisk || (!bootloaderDiskIdentifier && isBootDisk))
        return flagsOfRunningSystem();
    Log::line("   ➖ No bootloader info available for {}", identifier);
    return {};
}

BootloaderFlags BootloaderDetector::flagsOfFiles(const std::string &identifier, const std::string &mountPoint)
{
    const auto known = scanCache.find(identifier);
    if (known != scanCache.end() && known->second.mountPoint == mountPoint) {
        Log::line("   💾 Bootloader scan cache hit for {}", identifier);
        return {known->second.hasOpenCore, known->second.hasClover};
    }
    const BootloaderFlags flags = scanEFIFiles(mountPoint);
    scanCache.insert_or_assign(identifier, ScanEntry{mountPoint, flags.hasOpenCore, flags.hasClover});
    Log::line("   📂 File scan — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover);
    return flags;
}

BootloaderFlags BootloaderDetector::flagsOfRunningSystem() const
{
    const BootloaderFlags flags{openCoreVersion.has_value(), cloverVersion.has_value()};
    Log::line("   ℹ️ Using cached system info — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover);
    return flags;
}

BootloaderFlags BootloaderDetector::scanEFIFiles(const std::string &mountPoint)
{
    const std::string openCore = mountPoint + "/EFI/OC";
    const std::string clover = mountPoint + "/EFI/CLOVER";
    const BootloaderFlags flags{holdsOneOf(openCore, {"OpenCore.efi", "config.plist"}),
                                holdsOneOf(clover, {"CLOVERX64.efi", "config.plist"})};
    if (flags.hasOpenCore)
        Log::line("   ✅ OpenCore confirmed at {}", openCore);
    if (flags.hasClover)
        Log::line("   ✅ Clover confirmed at {}", clover);
    return flags;
}

} // namespace brindle
