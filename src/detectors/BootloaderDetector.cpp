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

void logLoaders(const BootloaderFlags &flags, const std::string &mountPoint)
{
    if (flags.hasOpenCore)
        Log::line("   ✅ OpenCore confirmed at {}", openCoreFolder(mountPoint));
    if (flags.hasClover)
        Log::line("   ✅ Clover confirmed at {}", cloverFolder(mountPoint));
}

} // namespace

void BootloaderDetector::forgetScans()
{
    scanCache.clear();
    ++m_round;
}

QCoro::Task<BootloaderFlags> BootloaderDetector::detectBootloaders(std::string identifier, bool isBootDisk,
                                                                   bool isBootloaderDisk, bool efiMounted,
                                                                   std::optional<std::string> efiMountPoint)
{
    const std::optional<std::string> mountPoint = efiMounted ? std::move(efiMountPoint) : std::nullopt;
    std::optional<BootloaderFlags> read;
    if (mountPoint && !knownScan(identifier, *mountPoint)) {
        auto reading = readAndKeep(identifier, *mountPoint);
        read = co_await reading;
    }
    // From here on without a pause, so that the lines about a disk stand together.
    Log::line("🔍 Bootloader detection for {}: isBootDisk={} isBootloaderDisk={} efiMounted={}", identifier, isBootDisk,
              isBootloaderDisk, efiMounted);
    if (read) {
        logLoaders(*read, *mountPoint);
        Log::line("   📂 File scan — OC: {}, Clover: {}", read->hasOpenCore, read->hasClover);
        co_return *read;
    }
    if (mountPoint) {
        Log::line("   💾 Bootloader scan cache hit for {}", identifier);
        co_return *knownScan(identifier, *mountPoint);
    }
    // Once it is known where the boot loader came from, the disk with the system is no longer credited with it.
    if (isBootloaderDisk || (!bootloaderDiskIdentifier && isBootDisk))
        co_return flagsOfRunningSystem();
    Log::line("   ➖ No bootloader info available for {}", identifier);
    co_return BootloaderFlags();
}

std::optional<BootloaderFlags> BootloaderDetector::knownScan(const std::string &identifier,
                                                             const std::string &mountPoint) const
{
    const auto known = scanCache.find(identifier);
    if (known == scanCache.end() || known->second.mountPoint != mountPoint)
        return std::nullopt;
    return BootloaderFlags{known->second.hasOpenCore, known->second.hasClover};
}

QCoro::Task<BootloaderFlags> BootloaderDetector::readAndKeep(std::string identifier, std::string mountPoint)
{
    const int round = m_round;
    auto scan = scanEFIFiles(mountPoint);
    const BootloaderFlags flags = co_await scan;
    if (round == m_round) // else it may be older than what the next scan wants to know
        scanCache.insert_or_assign(identifier, ScanEntry{mountPoint, flags.hasOpenCore, flags.hasClover});
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
    co_return co_await reading;
}

} // namespace brindle
