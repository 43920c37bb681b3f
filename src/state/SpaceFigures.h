#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// What `df -k` tells of one mounted file system, in units of 1024 bytes.
struct FileSystemUsage {
    std::int64_t used = 0;
    std::int64_t total = 0;

    bool operator==(const FileSystemUsage &) const = default;
};

/// The mounted file systems of each whole disk ("disk3"), in the order of the tool's lines.
using DiskUsage = std::map<std::string, std::vector<FileSystemUsage>, std::less<>>;

/// The text of `df -k`, by whole disk. Lines of other devices and lines that don't fit are skipped.
[[nodiscard]] DiskUsage parseDfOutput(std::string_view text);

/// The whole disks that \a section, a disk's part of `diskutil list`, names as containers made of its partitions, in
/// line order; one that stands twice is given twice.
[[nodiscard]] std::vector<std::string> containerDisks(std::string_view section);

/// The space of a whole disk in bytes, as far as its file systems are mounted; absent where nothing is counted.
struct SpaceFigures {
    std::optional<std::int64_t> usedSpaceBytes;
    std::optional<std::int64_t> totalSpaceBytes;

    bool operator==(const SpaceFigures &) const = default;
};

/// The space of the disk \a identifier: its own file systems, and those of its \a containers. The volumes of one
/// container all report the size of the container, which therefore counts once.
[[nodiscard]] SpaceFigures spaceFigures(const std::string &identifier, const std::vector<std::string> &containers,
                                        const DiskUsage &usage);

} // namespace brindle
