#include "detectors/EFIPartitionReader.h"
#include "detectors/ToolText.h"

#include "base/Text.h"

#include <utility>

namespace brindle {

namespace {

void readLine(EFIPartition &partition, std::string_view line)
{
    if (auto name = ToolText::valueOf(line, "Volume Name:")) {
        if (ToolText::isGiven(*name))
            partition.volumeName = std::move(name);
    } else if (auto mountPoint = ToolText::valueOf(line, ToolText::kMountPointLabel)) {
        if (ToolText::isGiven(*mountPoint)) {
            partition.mountPoint = std::move(mountPoint);
            partition.isMounted = true;
        }
    } else if (auto uuid = ToolText::valueOf(line, "Disk / Partition UUID:")) {
        partition.mediaUUID = std::move(uuid);
    } else if (auto volumeUUID = ToolText::valueOf(line, "Volume UUID:")) {
        if (!partition.mediaUUID)
            partition.mediaUUID = std::move(volumeUUID);
    }
}

} // namespace

EFIPartitionReader::EFIPartitionReader(ToolRunner &tools, ToolPaths paths) : m_diskutil(tools, std::move(paths)) {}

std::vector<std::string> EFIPartitionReader::efiCandidates(std::string_view disk, std::string_view section)
{
    ToolText::DistinctTexts candidates;
    for (const std::string_view line : Lines(section)) {
        if (!ToolText::isEFILine(line))
            continue;
        if (const auto partition = ToolText::partitionIn(line, disk))
            candidates.add(*partition);
    }
    return candidates.list();
}

std::optional<EFIPartition> EFIPartitionReader::readPartitionInfo(std::string_view info, std::string_view identifier)
{
    if (contains(info, "could not be found"))
        return std::nullopt;
    EFIPartition partition{.identifier = std::string(identifier)};
    for (const std::string_view line : Lines(info))
        readLine(partition, trimmed(line));
    return partition;
}

QCoro::Task<std::optional<EFIPartition>> EFIPartitionReader::partitionInfo(std::string identifier,
                                                                           CancellationToken token)
{
    auto infoTask = m_diskutil.outputIfAny({"info", identifier}, std::move(token));
    const std::optional<std::string> info = co_await infoTask;
    co_return info ? readPartitionInfo(*info, identifier) : std::nullopt;
}

QCoro::Task<bool> EFIPartitionReader::isMountedThere(EFIPartition partition)
{
    auto infoTask = partitionInfo(partition.identifier);
    const std::optional<EFIPartition> now = co_await infoTask;
    co_return now && now->isMounted && now->mountPoint == partition.mountPoint && now->mediaUUID == partition.mediaUUID;
}

QCoro::Task<std::vector<EFIPartition>> EFIPartitionReader::efiPartitions(std::string disk, std::string section,
                                                                         CancellationToken token)
{
    std::vector<EFIPartition> partitions;
    for (const std::string &candidate : efiCandidates(disk, section)) {
        auto infoTask = partitionInfo(candidate, token);
        if (std::optional<EFIPartition> partition = co_await infoTask)
            partitions.push_back(*std::move(partition));
    }
    co_return partitions;
}

} // namespace brindle
