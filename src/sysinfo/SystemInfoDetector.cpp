#include "sysinfo/SystemInfoDetector.h"

#include "base/Spawn.h"
#include "base/Text.h"
#include "detectors/DiskDetector.h"
#include "detectors/ToolText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brindle {

namespace {

constexpr const char *kOpenCoreVersionVariable = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version";
constexpr const char *kBootPathVariable = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path";

// Versions of Clover have used each of these.
constexpr std::array<const char *, 4> kCloverVersionVariables{"Clover.Version", "clover-version", "clover.revision",
                                                              "Clover.Revision"};

/// What `diskutil info` of the root file system tells.
struct BootVolume {
    std::optional<std::string> wholeDisk;
    std::optional<std::string> physicalStore;
    std::optional<std::string> volumeName;
};

BootVolume readBootVolume(std::string_view info)
{
    BootVolume volume;
    for (const std::string_view untrimmed : Lines(info)) {
        const std::string_view line = trimmed(untrimmed);
        if (auto whole = ToolText::valueOf(line, "Part of Whole:")) {
            if (ToolText::isGiven(*whole))
                volume.wholeDisk = std::move(whole);
        } else if (auto store = ToolText::valueOf(line, "APFS Physical Store:")) {
            volume.physicalStore = std::move(store);
        } else if (auto name = ToolText::valueOf(line, "Volume Name:")) {
            volume.volumeName = std::move(name);
        }
    }
    return volume;
}

/// Without blanks and newlines at both ends: a value may be cut from a whole output.
std::string_view stripped(std::string_view text)
{
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kSpace);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

bool isHexDigit(char character)
{
    const char lower = toLower(character);
    return isDigit(character) || (lower >= 'a' && lower <= 'f');
}

/// Whether \a text begins with a UUID: groups of 8, 4, 4, 4 and 12 hexadecimal digits, in any case.
bool beginsWithUUID(std::string_view text)
{
    constexpr std::string_view kShape = "hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh";
    return text.size() >= kShape.size() &&
           std::equal(kShape.begin(), kShape.end(), text.begin(), [](char shape, char character) {
               return shape == 'h' ? isHexDigit(character) : character == shape;
           });
}

constexpr std::size_t kUUIDLength = 36;

} // namespace

SystemInfoDetector::SystemInfoDetector(ToolRunner &tools, ToolPaths paths) : m_tools(tools), m_paths(std::move(paths))
{
}

QCoro::Task<> SystemInfoDetector::detectSystemInfo()
{
    std::vector<QCoro::Task<>> readers;
    readers.push_back(detectBootDisk());
    readers.push_back(detectBootloaderVersions());
    auto all = joinAll(std::move(readers));
    co_await all;
    setIsDetectionComplete(true);
}

QCoro::Task<> SystemInfoDetector::refreshBootInfo()
{
    m_detectionToken.cancel();
    const auto token = CancellationToken::cancellable();
    m_detectionToken = token;
    auto pass = spawn([this, token] { return readBootInfo(token); });
    co_await pass;
}

QCoro::Task<> SystemInfoDetector::readBootInfo(CancellationToken token)
{
    if (token.isCancelled())
        co_return;
    setIsDetectionComplete(false);
    std::vector<QCoro::Task<>> readers;
    readers.push_back(detectBootDisk());
    readers.push_back(detectOpenCoreVersion());
    readers.push_back(detectCloverVersion());
    auto all = joinAll(std::move(readers));
    co_await all;
    if (!token.isCancelled())
        setIsDetectionComplete(true);
}

QCoro::Task<> SystemInfoDetector::detectBootloaderVersions()
{
    std::vector<QCoro::Task<>> readers;
    readers.push_back(detectOpenCoreVersion());
    readers.push_back(detectCloverVersion());
    auto all = joinAll(std::move(readers));
    co_await all;
}

QCoro::Task<> SystemInfoDetector::detectBootDisk()
{
    auto run = m_tools.outputIfAny(m_paths.diskutil(), {"info", "/"});
    const std::optional<std::string> info = co_await run;
    const BootVolume volume = info ? readBootVolume(*info) : BootVolume();
    const auto &disk = volume.physicalStore ? volume.physicalStore : volume.wholeDisk;
    setText(m_bootDiskIdentifier, disk ? std::optional(normalizeDiskIdentifier(*disk)) : std::nullopt,
            &SystemInfoDetector::bootDiskIdentifierChanged);
    setText(m_bootVolumePath, volume.volumeName, &SystemInfoDetector::bootVolumePathChanged);
}

QCoro::Task<> SystemInfoDetector::detectOpenCoreVersion()
{
    auto run = m_tools.outputIfAny(m_paths.nvram(), {kOpenCoreVersionVariable});
    const std::optional<std::string> output = co_await run;
    std::optional<std::string> version;
    for (const std::string_view line : Lines(output ? *output : std::string_view())) {
        if (findIgnoringCase(line, "opencore") != std::string_view::npos)
            version = parseNvramValue(line);
        if (version)
            break;
    }
    setText(m_openCoreVersion, version, &SystemInfoDetector::openCoreVersionChanged);
    if (!version)
        co_return;
    auto detection = detectBootloaderDisk();
    co_await detection;
}

QCoro::Task<> SystemInfoDetector::detectBootloaderDisk()
{
    auto run = m_tools.outputIfAny(m_paths.nvram(), {kBootPathVariable});
    const std::optional<std::string> output = co_await run;
    if (!output)
        co_return;
    for (const std::string_view line : Lines(*output)) {
        if (!contains(line, "boot-path"))
            continue;
        const auto uuid = uuidIn(parseNvramValue(line).value_or(""));
        if (!uuid)
            continue;
        auto search = diskContainingUUID(*uuid);
        if (const std::optional<std::string> disk = co_await search) {
            setText(m_bootloaderDiskIdentifier, disk, &SystemInfoDetector::bootloaderDiskIdentifierChanged);
            co_return;
        }
    }
}

QCoro::Task<> SystemInfoDetector::detectCloverVersion()
{
    std::optional<std::string> version;
    for (const char *variable : kCloverVersionVariables) {
        auto run = m_tools.outputIfAny(m_paths.nvram(), {variable});
        if (const std::optional<std::string> output = co_await run)
            version = parseNvramValue(*output);
        if (version)
            break;
    }
    setText(m_cloverVersion, version, &SystemInfoDetector::cloverVersionChanged);
}

/// A search over all disks at once, which ends with the first that has an answer.
struct SystemInfoDetector::Search {
    std::string lowerCasedUUID;
    CancellationToken token = CancellationToken::cancellable();
    std::optional<std::string> found;
};

QCoro::Task<std::optional<std::string>> SystemInfoDetector::diskContainingUUID(std::string uuid)
{
    auto run = m_tools.outputIfAny(m_paths.diskutil(), {"list", "physical"});
    const std::optional<std::string> list = co_await run;
    Search search{.lowerCasedUUID = lowerCased(uuid)};
    std::vector<QCoro::Task<>> children;
    for (const std::string &disk : DiskDetector::parseDiskIdentifiers(list.value_or("")))
        children.push_back(searchDisk(disk, &search));
    auto all = joinAll(std::move(children));
    co_await all;
    co_return search.found;
}

QCoro::Task<> SystemInfoDetector::searchDisk(std::string disk, Search *search)
{
    for (const char *partition : {"s1", "s2"}) {
        auto run = m_tools.outputIfAny(m_paths.diskutil(), {"info", disk + partition}, search->token);
        const std::optional<std::string> info = co_await run;
        if (search->token.isCancelled())
            co_return;
        if (info && findIgnoringCase(*info, search->lowerCasedUUID) != std::string_view::npos) {
            search->found = disk;
            search->token.cancel();
            co_return;
        }
    }
}

std::string SystemInfoDetector::normalizeDiskIdentifier(std::string_view text)
{
    constexpr std::string_view kFolder = "/dev/";
    if (text.starts_with(kFolder))
        text.remove_prefix(kFolder.size());
    const auto disk = text.starts_with("disk") ? ToolText::numbered(text, "disk") : std::nullopt;
    return std::string(disk && disk->data() == text.data() ? *disk : text);
}

std::optional<std::string> SystemInfoDetector::parseNvramValue(std::string_view text)
{
    for (const char separator : {'\t', ':'}) {
        const std::size_t at = text.find(separator);
        if (at == std::string_view::npos)
            continue;
        const std::string_view value = stripped(text.substr(at + 1));
        if (!value.empty() && value != "Not found" && value != "variable not found")
            return std::string(value);
    }
    return std::nullopt;
}

std::optional<std::string> SystemInfoDetector::uuidIn(std::string_view text)
{
    for (; text.size() >= kUUIDLength; text.remove_prefix(1)) {
        if (beginsWithUUID(text))
            return std::string(text.substr(0, kUUIDLength));
    }
    return std::nullopt;
}

void SystemInfoDetector::setText(std::optional<std::string> &field, std::optional<std::string> text, Signal changed)
{
    if (field == text)
        return;
    field = std::move(text);
    Q_EMIT(this->*changed)();
}

void SystemInfoDetector::setIsDetectionComplete(bool isDetectionComplete)
{
    if (std::exchange(m_isDetectionComplete, isDetectionComplete) != isDetectionComplete)
        Q_EMIT isDetectionCompleteChanged();
}

} // namespace brindle
