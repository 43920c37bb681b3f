#include "detectors/DiskDetector.h"
#include "detectors/ToolText.h"

#include "base/DefaultsKeys.h"
#include "base/Error.h"
#include "base/Log.h"
#include "base/Text.h"
#include "records/Preferences.h"

#include <fmt/ranges.h>

#include <set>
#include <utility>

namespace brindle {

DiskDetector::DiskDetector(ToolRunner &tools, ToolPaths paths, const UserDefaults &defaults)
    : m_diskutil(tools, std::move(paths)),
      m_defaults(defaults)
{
}

QCoro::Task<std::vector<std::string>> DiskDetector::listPhysicalDisks(CancellationToken token)
{
    std::vector<std::string> disks;
    try {
        auto physicalList = m_diskutil.run({"list", "physical"}, token);
        disks = parseDiskIdentifiers(co_await physicalList);
        Log::line("Found {} physical disks: {}", disks.size(), disks);
        if (isOn(m_defaults, DefaultsKeys::kShowDiskImages)) {
            auto wholeList = m_diskutil.run({"list"}, token);
            auto images = exposedDiskImages(parseDiskIdentifiers(co_await wholeList), disks, token);
            const std::vector<std::string> found = co_await images;
            disks.insert(disks.end(), found.begin(), found.end());
        }
    } catch (const Error &error) {
        Log::line("Failed to get disk list: {}", error.localizedDescription());
        co_return std::vector<std::string>{};
    }
    Log::line("Found {} disks to process: {}", disks.size(), disks);
    co_return disks;
}

QCoro::Task<std::vector<std::string>> DiskDetector::exposedDiskImages(std::vector<std::string> candidates,
                                                                      std::vector<std::string> physicalDisks,
                                                                      CancellationToken token)
{
    std::set<std::string> listed(physicalDisks.begin(), physicalDisks.end());
    std::vector<std::string> images;
    for (const std::string &candidate : candidates) {
        if (listed.contains(candidate))
            continue;
        auto isExposed = isExposedDiskImageNow(candidate, token);
        if (co_await isExposed) {
            listed.insert(candidate);
            images.push_back(candidate);
        }
    }
    co_return images;
}

QCoro::Task<bool> DiskDetector::isExposedDiskImageNow(std::string identifier, CancellationToken token)
{
    auto infoTask = m_diskutil.outputIfAny({"info", identifier}, token);
    const std::optional<std::string> info = co_await infoTask;
    if (!info)
        co_return false;
    auto listTask = m_diskutil.outputIfAny({"list", identifier}, token);
    const std::optional<std::string> list = co_await listTask;
    co_return list &&isExposedDiskImage(*info + "\n" + *list);
}

std::vector<std::string> DiskDetector::parseDiskIdentifiers(std::string_view list)
{
    // Which disks there are is asked of every line, also of an indented one; parseDiskutilListSections() is stricter.
    std::vector<std::string> identifiers;
    for (const std::string_view line : Lines(list)) {
        const std::string_view header = trimmed(line);
        if (!header.starts_with(ToolText::kDiskDevice))
            continue;
        if (const auto device = ToolText::numbered(header, ToolText::kDiskDevice))
            identifiers.emplace_back(device->substr(ToolText::kDeviceFolder.size()));
    }
    return identifiers;
}

bool DiskDetector::isExposedDiskImage(std::string_view text)
{
    const std::string lowered = lowerCased(text);
    const auto has = [&](std::string_view word) { return contains(lowered, word); };
    if (!has("(disk image)") || has("(synthesized)") || has("apfs container scheme"))
        return false;
    return has("apple_partition_scheme") || has("guid_partition_scheme") || (has("gpt") && !has("synthesized"));
}

QCoro::Task<DiskDetector::DiskRecord> DiskDetector::diskRecord(std::string identifier, std::string section,
                                                               CancellationToken token)
{
    DiskRecord record;
    try {
        auto info = m_diskutil.run({"info", identifier}, token);
        record.info = co_await info;
    } catch (const Error &error) {
        Log::line("Failed to get info for {}: {}", identifier, error.localizedDescription());
        co_return DiskRecord{};
    }
    auto disk = parseDiskInfo(record.info, std::move(identifier), std::move(section), std::move(token));
    record.disk = co_await disk;
    co_return record;
}

QCoro::Task<std::optional<PhysicalDisk>> DiskDetector::parseDiskInfo(std::string info, std::string identifier,
                                                                     std::string section, CancellationToken token)
{
    std::optional<DiskFacts> facts = readDiskInfo(info, identifier);
    if (!facts)
        co_return std::nullopt;
    auto labelTask = volumeLabel(identifier, section, std::move(token));
    std::optional<std::string> label = co_await labelTask;
    const bool isDiskImage = isExposedDiskImage(section.empty() ? info : info + "\n" + section);
    const PhysicalDisk::DiskType type = diskType(*facts, isDiskImage);
    Log::line("Created disk: {} ({}) - Volume: {}", facts->name, identifier, label.value_or("none"));
    co_return PhysicalDisk{
        .identifier = std::move(identifier),
        .mediaUUID = std::move(facts->mediaUUID),
        .name = std::move(facts->name),
        .size = std::move(facts->size),
        .fileSystem = std::move(facts->fileSystem),
        .mountPoint = std::move(facts->mountPoint),
        .volumeName = std::move(label),
        .isRemovable = type == PhysicalDisk::DiskType::removable,
        .isWritable = facts->isWritable,
        .diskType = type,
        .isDiskImage = isDiskImage,
        .smartStatus = facts->smartStatus,
        .isSolidState = facts->isSolidState,
        .trimSupported = facts->trimSupported,
        .busProtocol = std::move(facts->protocol),
    };
}

} // namespace brindle
