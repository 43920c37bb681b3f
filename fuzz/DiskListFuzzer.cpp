// The text of `diskutil list`: identifiers, sections, volumes and EFI partitions.

#include "Numbered.h"
#include "Require.h"

#include "base/Text.h"
#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "state/DiskutilListSections.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using namespace brindle;

namespace {

bool areDistinct(const std::vector<std::string> &texts)
{
    return std::set<std::string>(texts.begin(), texts.end()).size() == texts.size();
}

void requireName(const std::string &name, std::string_view text)
{
    require(!name.empty() && trimmed(name) == name, "a name is trimmed and not empty");
    require(text.find(name) != std::string_view::npos, "a name stands in the text");
}

void readSection(const std::string &disk, const std::string &section)
{
    require(isNumbered(disk, "disk"), "a section's disk");
    require(section.starts_with("/dev/disk"), "a section begins with its header");

    const auto volumes = DiskDetector::readSectionVolumes(section, disk);
    for (const auto &entry : volumes.entries)
        requireName(entry.name, section);
    for (const std::string &container : volumes.containers)
        require(isNumbered(container, "disk"), "a container is a whole disk");
    require(areDistinct(volumes.containers), "a container is listed once");
    for (const std::string &partition : volumes.unnamedPartitions)
        require(isNumbered(partition, disk + "s"), "an unnamed partition is one of the disk");
    for (const std::string &name : DiskDetector::readAPFSVolumeNames(section, disk))
        requireName(name, section);
    if (const auto label = DiskDetector::labelOf(volumes.entries))
        require(!label->empty() && label->size() <= section.size() + 2 * std::string_view(" • ").size(),
                "a label is not longer than its names");
    require(DiskDetector::labelOf(volumes.entries).has_value() == !volumes.entries.empty(), "names make a label");

    const auto candidates = EFIPartitionReader::efiCandidates(disk, section);
    require(areDistinct(candidates), "a candidate is listed once");
    for (const std::string &candidate : candidates)
        require(isNumbered(candidate, disk + "s"), "a candidate is a partition of the disk");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view list(reinterpret_cast<const char *>(data), size);

    const auto identifiers = DiskDetector::parseDiskIdentifiers(list);
    for (const std::string &identifier : identifiers)
        require(isNumbered(identifier, "disk"), "an identifier is a whole disk's");

    std::size_t sectionsSize = 0;
    for (const auto &[disk, section] : parseDiskutilListSections(list)) {
        sectionsSize += section.size() + 1;
        readSection(disk, section);
    }
    require(sectionsSize <= list.size() + 1, "sections are parts of the list");
    return 0;
}
