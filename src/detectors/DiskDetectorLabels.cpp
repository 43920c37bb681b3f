// The label of a disk: how its list of volumes becomes one short text.

#include "detectors/DiskDetector.h"
#include "detectors/ToolText.h"

#include "base/Text.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <utility>

namespace brindle {

namespace {

using VolumeRank = DiskDetector::VolumeRank;

constexpr std::string_view kDataSuffix = " - Data";
constexpr std::size_t kLongestLabel = 3; // in names

bool containsAny(std::string_view text, const auto &words)
{
    return std::ranges::any_of(words, [&](std::string_view word) { return contains(text, word); });
}

/// What stands between the keyword and the size, cut where it names a partition of the disk; empty where nothing does,
/// and where keyword or size are missing.
std::string_view nameColumn(std::string_view line, std::string_view lowerCasedKeyword, std::string_view disk)
{
    const std::size_t keyword = findIgnoringCase(line, lowerCasedKeyword);
    if (keyword == std::string_view::npos)
        return {};
    line.remove_prefix(keyword + lowerCasedKeyword.size());
    const auto size = ToolText::positionOfSize(line);
    if (!size)
        return {};
    const std::string_view name = trimmed(line.substr(0, *size));
    const auto partition = ToolText::partitionIn(name, disk);
    return partition ? trimmed(name.substr(0, static_cast<std::size_t>(partition->data() - name.data()))) : name;
}

/// Reads the lines of one section, one after the other.
class SectionReader {
public:
    explicit SectionReader(std::string_view disk) : m_disk(disk) {}

    void read(std::string_view line)
    {
        constexpr std::array<std::string_view, 3> kUnits{"GB", "MB", "TB"}; // a partition of kilobytes is never named
        const std::string lowered = lowerCased(line);
        // By its letters first: in these tables a blank is almost everywhere, and a search for one slow.
        const bool isEFI = contains(lowered, "efi") && contains(lowered, " efi ");
        if (isEFI && !contains(lowered, "microsoft basic data"))
            return;
        if (contains(lowered, "container"))
            readContainer(line);
        else if (contains(line, ":") && containsAny(line, kUnits))
            readPartition(line, lowered);
    }

    [[nodiscard]] DiskDetector::SectionVolumes takeVolumes()
    {
        return {std::move(m_entries), m_containers.list(), std::move(m_unnamedPartitions)};
    }

private:
    void readContainer(std::string_view line)
    {
        if (const auto container = ToolText::containerIn(line))
            m_containers.add(*container);
    }

    void readPartition(std::string_view line, std::string_view lowered)
    {
        if (contains(lowered, "apple_hfs"))
            addName(line, "apple_hfs", VolumeRank::HFS);
        else if (contains(lowered, "microsoft basic data"))
            readWindowsPartition(line, "microsoft basic data");
        else if (contains(lowered, "windows_ntfs"))
            readWindowsPartition(line, "windows_ntfs");
    }

    void readWindowsPartition(std::string_view line, std::string_view keyword)
    {
        if (addName(line, keyword, VolumeRank::Windows))
            return;
        if (auto partition = DiskDetector::partitionIdentifierInLine(line, m_disk))
            m_unnamedPartitions.push_back(*std::move(partition));
    }

    bool addName(std::string_view line, std::string_view keyword, VolumeRank rank)
    {
        auto name = DiskDetector::partitionNameInLine(line, keyword, m_disk);
        if (!name)
            return false;
        m_entries.push_back({*std::move(name), rank});
        return true;
    }

    std::string_view m_disk;
    std::vector<DiskDetector::VolumeEntry> m_entries;
    ToolText::DistinctTexts m_containers;
    std::vector<std::string> m_unnamedPartitions;
};

} // namespace

QCoro::Task<std::optional<std::string>> DiskDetector::volumeLabel(std::string identifier, std::string section,
                                                                  CancellationToken token)
{
    SectionVolumes volumes = readSectionVolumes(section, identifier);
    for (const std::string &container : volumes.containers) {
        auto namesTask = apfsVolumeNames(container, token);
        const std::vector<std::string> names = co_await namesTask;
        for (const std::string &name : names)
            volumes.entries.push_back({name, VolumeRank::APFS});
    }
    const bool hasNamedWindows = std::ranges::any_of(
        volumes.entries, [](const VolumeEntry &entry) { return entry.rank == VolumeRank::Windows; });
    if (!hasNamedWindows) {
        auto nameTask = firstNameFromInfo(std::move(volumes.unnamedPartitions), token);
        if (const std::optional<std::string> name = co_await nameTask)
            volumes.entries.push_back({*name, VolumeRank::Windows});
    }
    co_return labelOf(std::move(volumes.entries));
}

QCoro::Task<std::vector<std::string>> DiskDetector::apfsVolumeNames(std::string container, CancellationToken token)
{
    auto listTask = m_diskutil.outputIfAny({"list", container}, std::move(token));
    const std::optional<std::string> list = co_await listTask;
    co_return readAPFSVolumeNames(list.value_or(""), container);
}

QCoro::Task<std::optional<std::string>> DiskDetector::firstNameFromInfo(std::vector<std::string> partitions,
                                                                        CancellationToken token)
{
    for (const std::string &partition : partitions) {
        auto nameTask = volumeNameFromInfo(partition, token);
        if (std::optional<std::string> name = co_await nameTask)
            co_return name;
    }
    co_return std::nullopt;
}

QCoro::Task<std::optional<std::string>> DiskDetector::volumeNameFromInfo(std::string partition, CancellationToken token)
{
    auto infoTask = m_diskutil.outputIfAny({"info", std::move(partition)}, std::move(token));
    const std::optional<std::string> info = co_await infoTask;
    co_return readVolumeName(info.value_or(""));
}

DiskDetector::SectionVolumes DiskDetector::readSectionVolumes(std::string_view section, std::string_view disk)
{
    SectionReader reader(disk);
    for (const std::string_view line : Lines(section))
        reader.read(trimmed(line));
    return reader.takeVolumes();
}

std::optional<std::string> DiskDetector::partitionNameInLine(std::string_view line, std::string_view lowerCasedKeyword,
                                                             std::string_view disk)
{
    // What the name column holds of an EFI partition ("EFI"), of a FAT volume without a name ("NO NAME") and of the
    // heading.
    constexpr std::array<std::string_view, 3> kNoNames{"EFI", "NO", "NAME"};
    const std::string_view name = nameColumn(line, lowerCasedKeyword, disk);
    if (name.empty() || std::ranges::find(kNoNames, name) != kNoNames.end())
        return std::nullopt;
    return std::string(name);
}

std::optional<std::string> DiskDetector::partitionIdentifierInLine(std::string_view line, std::string_view disk)
{
    const auto partition = ToolText::partitionIn(line, disk);
    return partition ? std::optional<std::string>(*partition) : std::nullopt;
}

std::vector<std::string> DiskDetector::readAPFSVolumeNames(std::string_view list, std::string_view container)
{
    constexpr std::string_view kKeyword = "apfs volume";
    constexpr std::array<std::string_view, 4> kSystemWords{"preboot", "recovery", "vm", "update"};
    std::vector<std::string> names;
    for (const std::string_view untrimmed : Lines(list)) {
        const std::string_view line = trimmed(untrimmed);
        const std::string lowered = lowerCased(line);
        if (!contains(lowered, kKeyword) || containsAny(lowered, kSystemWords))
            continue;
        if (const std::string_view name = nameColumn(line, kKeyword, container); !name.empty())
            names.emplace_back(name);
    }
    return names;
}

std::optional<std::string> DiskDetector::readVolumeName(std::string_view info)
{
    for (const std::string_view line : Lines(info)) {
        const auto name = ToolText::valueOf(trimmed(line), "Volume Name:");
        if (!name)
            continue;
        if (!ToolText::isGiven(*name) || *name == "Untitled" || name->starts_with("disk"))
            return std::nullopt;
        return name;
    }
    return std::nullopt;
}

std::vector<std::string> DiskDetector::mergeDataVolumes(const std::vector<std::string> &names)
{
    ToolText::DistinctTexts baseNames;
    std::vector<std::string> merged;
    for (const std::string &untrimmed : names) {
        const std::string_view name = trimmed(untrimmed);
        if (contains(name, kDataSuffix))
            baseNames.add(without(name, kDataSuffix));
        else
            merged.emplace_back(name);
    }
    std::erase_if(merged, [&](const std::string &name) { return baseNames.contains(name); });
    std::ranges::copy(baseNames.list(), std::back_inserter(merged));
    return merged;
}

std::optional<std::string> DiskDetector::labelOf(std::vector<VolumeEntry> entries)
{
    std::ranges::stable_sort(entries, {}, &VolumeEntry::rank);
    std::vector<std::string> names;
    std::ranges::transform(entries, std::back_inserter(names), &VolumeEntry::name);
    names = mergeDataVolumes(names);
    if (names.empty())
        return std::nullopt;
    names.resize(std::min(names.size(), kLongestLabel));
    return fmt::format("{}", fmt::join(names, " • "));
}

} // namespace brindle
