#include "detectors/FilesystemDetector.h"
#include "detectors/ToolText.h"

#include "base/Log.h"
#include "base/Text.h"

#include <optional>
#include <set>
#include <utility>

namespace brindle {

FilesystemDetector::FilesystemDetector(ToolRunner &tools, ToolPaths paths) : m_diskutil(tools, std::move(paths)) {}

QCoro::Task<FilesystemFlags> FilesystemDetector::detectFilesystems(std::string identifier, std::string mainInfo,
                                                                   std::string section, CancellationToken token)
{
    Log::line("🔍 Starting comprehensive filesystem detection for {}", identifier);
    FilesystemFlags flags = analyzeMainDiskInfo(mainInfo, identifier);
    flags |= analyzeDiskList(section, identifier);
    for (const std::string &partition : partitionIdentifiers(section, identifier)) {
        if (isEFIPartitionLine(partition, section))
            continue;
        auto infoTask = m_diskutil.outputIfAny({"info", partition}, token);
        if (const std::optional<std::string> info = co_await infoTask)
            flags |= analyzePartitionInfo(*info, partition);
    }
    Log::line("✅ Filesystem detection results for {}: macOS={} Windows={} Linux={} ExFAT={}", identifier,
              flags.hasMacOS, flags.hasWindows, flags.hasLinux, flags.hasExFAT);
    co_return flags;
}

std::vector<std::string> FilesystemDetector::partitionIdentifiers(std::string_view section, std::string_view disk)
{
    std::set<std::string, std::less<>> partitions;
    for (const std::string_view line : Lines(section)) {
        if (const auto partition = ToolText::partitionIn(line, disk))
            partitions.emplace(*partition);
    }
    return {partitions.begin(), partitions.end()};
}

bool FilesystemDetector::isEFIPartitionLine(std::string_view partition, std::string_view section)
{
    for (const std::string_view line : Lines(section)) {
        if (contains(line, partition))
            return ToolText::isEFILine(line);
    }
    return false;
}

} // namespace brindle
