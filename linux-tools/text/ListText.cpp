#include "text/DiskutilText.h"

#include "inventory/Identifier.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle::tools {
namespace {

constexpr std::string_view kColumns =
    "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n";
// The cells at which the columns of kColumns end and begin.
constexpr std::size_t kNameCells = 23;
constexpr std::size_t kMarkCell = 56;

struct Row {
    std::size_t index = 0;
    std::string_view type;
    std::string_view name; ///< Raw.
    char mark = ' ';       ///< '*' before the size of a physical disk, '+' of a virtual one, ' ' of a part.
    std::uint64_t sizeBytes = 0;
    std::string_view identifier;
};

void appendRow(std::string &text, const Row &row)
{
    std::string line = fmt::format("{:4}: {:>26} ", row.index, printable(row.type));
    // A type code without a name is wider than its column: the name gives way, so that the size stays in its own.
    const std::size_t room = kMarkCell > cellCount(line) ? kMarkCell - cellCount(line) : 0;
    line += cutToCells(printable(row.name), std::min(room, kNameCells));
    line.append(kMarkCell - std::min(kMarkCell, cellCount(line)), ' ');
    fmt::format_to(std::back_inserter(text), "{}{}{:<11}{}\n", line, row.mark, sizeText(row.sizeBytes), row.identifier);
}

void appendDisk(std::string &text, const Disk &disk)
{
    const std::string_view kind = disk.isImage      ? "disk image"
                                  : disk.isExternal ? "external, physical"
                                                    : "internal, physical";
    fmt::format_to(std::back_inserter(text), "/dev/{} ({}):\n{}", disk.identifier, kind, kColumns);
    appendRow(text, {.index = 0,
                     .type = disk.scheme,
                     .name = disk.volume ? std::string_view(disk.volume->name) : std::string_view(),
                     .mark = disk.isImage ? '+' : '*',
                     .sizeBytes = disk.sizeBytes,
                     .identifier = disk.identifier});
    for (std::size_t index = 0; index < disk.partitions.size(); ++index) {
        const Partition &partition = disk.partitions[index];
        const std::string name = !partition.container.empty() ? "Container " + partition.container
                                 : partition.volume           ? partition.volume->name
                                                              : std::string();
        appendRow(text, {.index = index + 1,
                         .type = partition.type,
                         .name = name,
                         .sizeBytes = partition.sizeBytes,
                         .identifier = partition.identifier});
    }
    text += '\n';
}

void appendContainer(std::string &text, const ApfsContainer &container)
{
    fmt::format_to(std::back_inserter(text), "/dev/{} (synthesized):\n{}", container.identifier, kColumns);
    appendRow(text, {.index = 0,
                     .type = "APFS Container Scheme",
                     .name = "-",
                     .mark = '+',
                     .sizeBytes = container.sizeBytes,
                     .identifier = container.identifier});
    fmt::format_to(std::back_inserter(text), "{:33}Physical Store {}\n", "", container.store);
    for (std::size_t index = 0; index < container.volumes.size(); ++index) {
        const ApfsVolume &volume = container.volumes[index];
        appendRow(text, {.index = index + 1,
                         .type = "APFS Volume",
                         .name = volume.name,
                         .sizeBytes = volume.sizeBytes,
                         .identifier = volume.identifier});
    }
    text += '\n';
}

using Section = std::pair<std::uint64_t, std::string>; // The number of its disk, and the text.

std::string &addSection(std::vector<Section> &sections, std::string_view identifier)
{
    const auto parsed = parseIdentifier(identifier);
    return sections.emplace_back(parsed ? parsed->disk : 0, std::string()).second;
}

} // namespace

std::string listText(const Inventory &inventory)
{
    std::vector<Section> sections;
    sections.reserve(inventory.disks.size() + inventory.containers.size());
    for (const Disk &disk : inventory.disks)
        appendDisk(addSection(sections, disk.identifier), disk);
    for (const ApfsContainer &container : inventory.containers)
        appendContainer(addSection(sections, container.identifier), container);
    std::ranges::stable_sort(sections, {}, &Section::first);
    std::string text;
    for (const auto &[number, section] : sections)
        text += section;
    return text;
}

std::string listPhysicalText(const Inventory &inventory)
{
    std::string text;
    for (const Disk &disk : inventory.disks) {
        if (!disk.isImage)
            appendDisk(text, disk);
    }
    return text;
}

std::string listText(const Device &device)
{
    std::string text;
    if (device.container)
        appendContainer(text, *device.container);
    else if (device.disk)
        appendDisk(text, *device.disk);
    return text;
}

} // namespace brindle::tools
