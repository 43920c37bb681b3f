#include "sysinfo/SystemInfoDetector.h"

#include "base/Spawn.h"
#include "base/Text.h"
#include "detectors/DiskDetector.h"

#include <array>
#include <utility>

namespace brindle {

namespace {

// OpenCore's own vendor GUID stands before the name of each of its variables.
constexpr const char *kOpenCoreVersion = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version";
constexpr const char *kBootPath = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path";

// Clover's releases have used all of them; the order is the rule.
constexpr std::array kCloverVersions{"Clover.Version", "clover-version", "clover.revision", "Clover.Revision"};

// Boot loaders stand on the first partitions of a disk; no other is asked.
constexpr std::array kSearchedPartitions{"s1", "s2"};

} // namespace

/// What the disks that are searched side by side share.
struct SystemInfoDetector::Search {
    std::string lowerCasedUUID;
    CancellationToken token = CancellationToken::cancellable(); ///< Ends the tools of all others once a disk is found.
    std::optional<std::string> disk;
};

QCoro::Task<> SystemInfoDetector::detectBootDisk()
{
    const QPointer self(this);
    auto infoTask = m_diskutil.outputIfAny({"info", "/"}, {});
    const std::optional<std::string> info = co_await infoTask;
    if (!self)
        co_return;
    BootDisk disk = info ? readBootDisk(*info) : BootDisk{};
    setBootDiskIdentifier(std::move(disk.identifier));
    setBootVolumePath(std::move(disk.volumeName));
}

QCoro::Task<> SystemInfoDetector::detectBootloaderVersions()
{
    std::vector<QCoro::Task<>> readers;
    readers.push_back(detectOpenCoreVersion());
    readers.push_back(detectCloverVersion());
    auto all = joinAll(std::move(readers));
    co_await all;
}

QCoro::Task<> SystemInfoDetector::detectOpenCoreVersion()
{
    const QPointer self(this);
    auto outputTask = nvram(kOpenCoreVersion);
    const std::optional<std::string> output = co_await outputTask;
    if (!self)
        co_return;
    std::optional<std::string> version = output ? readOpenCoreVersion(*output) : std::nullopt;
    const bool isPresent = version.has_value();
    setOpenCoreVersion(std::move(version));
    if (!isPresent)
        co_return;
    auto diskTask = detectBootloaderDisk();
    co_await diskTask;
}

QCoro::Task<> SystemInfoDetector::detectBootloaderDisk()
{
    const QPointer self(this);
    auto outputTask = nvram(kBootPath);
    const std::optional<std::string> output = co_await outputTask;
    if (!self || !output)
        co_return;
    for (const std::string &uuid : readBootPathUUIDs(*output)) {
        auto diskTask = diskContainingUUID(uuid);
        std::optional<std::string> disk = co_await diskTask;
        if (!self)
            co_return;
        if (disk) {
            setBootloaderDiskIdentifier(std::move(disk));
            co_return;
        }
    }
}

QCoro::Task<std::optional<std::string>> SystemInfoDetector::diskContainingUUID(std::string uuid)
{
    const QPointer self(this);
    auto listTask = m_diskutil.outputIfAny({"list", "physical"}, {});
    const std::optional<std::string> list = co_await listTask;
    if (!self || !list)
        co_return std::nullopt;

    Search search{.lowerCasedUUID = lowerCased(uuid)};
    std::vector<QCoro::Task<>> children;
    for (const std::string &disk : DiskDetector::parseDiskIdentifiers(*list))
        children.push_back(searchDisk(disk, &search));
    auto all = joinAll(std::move(children));
    co_await all;
    co_return std::move(search.disk);
}

QCoro::Task<> SystemInfoDetector::searchDisk(std::string disk, Search *search)
{
    const QPointer self(this);
    for (const char *partition : kSearchedPartitions) {
        if (!self)
            co_return;
        auto infoTask = m_diskutil.outputIfAny({"info", disk + partition}, search->token);
        const std::optional<std::string> info = co_await infoTask;
        if (!info || findIgnoringCase(*info, search->lowerCasedUUID) == std::string::npos)
            continue;
        if (!search->disk)
            search->disk = disk;
        search->token.cancel();
        co_return;
    }
}

QCoro::Task<> SystemInfoDetector::detectCloverVersion()
{
    const QPointer self(this);
    std::optional<std::string> version;
    for (const char *variable : kCloverVersions) {
        auto outputTask = nvram(variable);
        const std::optional<std::string> output = co_await outputTask;
        if (!self)
            co_return;
        version = output ? parseNvramValue(*output) : std::nullopt;
        if (version)
            break;
    }
    setCloverVersion(std::move(version));
}

QCoro::Task<std::optional<std::string>> SystemInfoDetector::nvram(std::string variable)
{
    return m_tools.outputIfAny(m_paths.nvram(), {std::move(variable)});
}

} // namespace brindle
