#include "kernel/BlockProbe.h"

#include <fmt/format.h>

#include <limits>
#include <memory>
#include <string_view>

#include <blkid/blkid.h>
#include <fcntl.h>

namespace brindle::tools {
namespace {

using Probe = std::unique_ptr<blkid_struct_probe, void (*)(blkid_probe)>;

/// Asks the kernel to read at once what libblkid would wait for block by block: the places where it looks for nearly
/// all file systems. It is a hint; a place that it misses is only read more slowly.
void readAhead(int descriptor, off_t start, off_t size)
{
    constexpr off_t kKibibyte = 1024;
    constexpr off_t kBlock = 4 * kKibibyte;
    constexpr off_t kBeginning = 68 * kKibibyte;
    ::posix_fadvise(descriptor, start, kBeginning, POSIX_FADV_WILLNEED);
    for (const off_t place : {128 * kKibibyte, 256 * kKibibyte, 512 * kKibibyte, size - kBlock})
        ::posix_fadvise(descriptor, start + place, kBlock, POSIX_FADV_WILLNEED);
}

Probe newProbe(int descriptor, std::uint64_t offsetBytes, std::uint64_t sizeBytes)
{
    Probe probe(blkid_new_probe(), blkid_free_probe);
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<blkid_loff_t>::max());
    if (!probe || offsetBytes > kLargest || sizeBytes > kLargest ||
        blkid_probe_set_device(probe.get(), descriptor, static_cast<blkid_loff_t>(offsetBytes),
                               static_cast<blkid_loff_t>(sizeBytes)) != 0)
        return {nullptr, blkid_free_probe};
    readAhead(descriptor, blkid_probe_get_offset(probe.get()), blkid_probe_get_size(probe.get()));
    blkid_probe_enable_superblocks(probe.get(), 1);
    blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID | BLKID_SUBLKS_TYPE |
                                                       BLKID_SUBLKS_VERSION);
    return probe;
}

std::string value(blkid_probe probe, const char *name)
{
    const char *data = nullptr;
    std::size_t length = 0; // Counts the NUL at the end of a text.
    if (blkid_probe_lookup_value(probe, name, &data, &length) != 0 || !data || length == 0)
        return {};
    return {data, length - 1};
}

std::optional<Volume> volumeOf(blkid_probe probe)
{
    Volume volume{.fileSystem = value(probe, "TYPE"),
                  .version = value(probe, "VERSION"),
                  .name = value(probe, "LABEL"),
                  .uuid = value(probe, "UUID")};
    return volume.fileSystem.empty() ? std::nullopt : std::optional(std::move(volume));
}

std::string textOf(const char *text)
{
    return text ? text : "";
}

/// libblkid counts in blocks of 512 bytes; a table may claim more bytes than there are numbers.
std::uint64_t bytesOf(blkid_loff_t blocks)
{
    constexpr std::uint64_t kBlock = 512;
    const auto count = blocks > 0 ? static_cast<std::uint64_t>(blocks) : 0;
    return count > std::numeric_limits<std::uint64_t>::max() / kBlock ? std::numeric_limits<std::uint64_t>::max()
                                                                      : count * kBlock;
}

std::vector<ProbedEntry> entriesOf(blkid_probe probe)
{
    std::vector<ProbedEntry> entries;
    blkid_partlist list = blkid_probe_get_partitions(probe); // Owned by the probe.
    const int count = list ? blkid_partlist_numof_partitions(list) : 0;
    for (int index = 0; index < count; ++index) {
        blkid_partition partition = blkid_partlist_get_partition(list, index);
        if (!partition)
            continue;
        const std::string typeName = textOf(blkid_partition_get_type_string(partition));
        entries.push_back(
            {.number = static_cast<std::uint64_t>(blkid_partition_get_partno(partition)),
             .type = typeName.empty() ? fmt::format("{:#x}", blkid_partition_get_type(partition)) : typeName,
             .uuid = textOf(blkid_partition_get_uuid(partition)),
             .offsetBytes = bytesOf(blkid_partition_get_start(partition)),
             .sizeBytes = bytesOf(blkid_partition_get_size(partition))});
    }
    return entries;
}

} // namespace

ProbedContents probeContents(int descriptor)
{
    ProbedContents contents;
    const Probe probe = newProbe(descriptor, 0, 0);
    if (!probe)
        return contents;
    blkid_probe_enable_partitions(probe.get(), 1);
    if (blkid_do_safeprobe(probe.get()) != 0)
        return contents;
    contents.volume = volumeOf(probe.get());
    contents.table = value(probe.get(), "PTTYPE");
    if (!contents.table.empty())
        contents.entries = entriesOf(probe.get());
    return contents;
}

std::optional<Volume> probeVolume(int descriptor, std::uint64_t offsetBytes, std::uint64_t sizeBytes)
{
    const Probe probe = newProbe(descriptor, offsetBytes, sizeBytes);
    if (!probe || blkid_do_safeprobe(probe.get()) != 0)
        return std::nullopt;
    return volumeOf(probe.get());
}

} // namespace brindle::tools
