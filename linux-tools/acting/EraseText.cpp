#include "acting/EraseText.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kGiB = 1024 * kMiB;
constexpr std::uint64_t kSectorBytes = 512;

struct ClusterSize {
    std::uint64_t largestBytes; ///< Of the volume.
    std::uint64_t sectors;
};

// Microsoft's default cluster sizes of FAT32, which the platform follows.
constexpr std::array kClusterSizes{ClusterSize{260 * kMiB, 1}, ClusterSize{8 * kGiB, 8}, ClusterSize{16 * kGiB, 16},
                                   ClusterSize{32 * kGiB, 32}};
constexpr std::uint64_t kLargestCluster = 64;

std::uint64_t clusterSectorsOf(std::uint64_t sizeBytes)
{
    const auto *const found =
        std::ranges::find_if(kClusterSizes, [&](const ClusterSize &size) { return sizeBytes <= size.largestBytes; });
    return found == kClusterSizes.end() ? kLargestCluster : found->sectors;
}

/// Of a FAT32 volume: 32 reserved sectors, two tables of 128 entries a sector, of which the first two name no cluster.
std::string fatText(const Erased &erased)
{
    constexpr std::uint64_t kReserved = 32;
    constexpr std::uint64_t kEntries = 128;
    if (erased.sizeBytes < kMiB)
        return {};
    const std::uint64_t each = clusterSectorsOf(erased.sizeBytes);
    const std::uint64_t sectors = erased.sizeBytes / kSectorBytes - kReserved;
    const std::uint64_t perTableSector = kEntries * each + 2;
    const std::uint64_t table = (sectors + 2 * each + perTableSector - 1) / perTableSector;
    const std::uint64_t clusters = (sectors - 2 * table) / each;
    return fmt::format("512 bytes per physical sector\n/dev/r{}: {} sectors in {} FAT32 clusters ({} bytes/cluster)\n",
                       erased.identifier, clusters * each, clusters, each * kSectorBytes);
}

/// "15 GB": without the digit behind the point.
std::string wholeSizeText(std::uint64_t bytes)
{
    std::string size = sizeText(bytes);
    const std::size_t point = size.find('.');
    return point == std::string::npos ? size : size.erase(point, 2);
}

/// Of an HFS+ volume, whose journal takes 8 MiB for each 100 GiB.
std::string hfsText(const Erased &erased, bool isJournaled)
{
    const std::uint64_t journalKilobytes = 8192 * (1 + erased.sizeBytes / (100 * kGiB));
    const std::string journal = isJournaled ? fmt::format(" with a {}k journal", journalKilobytes) : std::string();
    return fmt::format("Initialized /dev/r{} as a {} case-insensitive HFS Plus volume{}\n", erased.identifier,
                       wholeSizeText(erased.sizeBytes), journal);
}

} // namespace

std::string formattingText(const Erased &erased, const Format &format)
{
    if (format.fileSystem == "vfat")
        return fatText(erased);
    return format.fileSystem == "hfsplus" ? hfsText(erased, format.isJournaled) : std::string();
}

} // namespace brindle::tools
