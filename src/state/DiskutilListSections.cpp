#include "state/DiskutilListSections.h"

#include "base/Text.h"
#include "detectors/ToolText.h"

#include <optional>
#include <utility>

namespace brindle {

namespace {

std::optional<std::string_view> diskOfHeader(std::string_view header)
{
    const std::string_view device = header.substr(0, header.find_first_of(" 	"));
    return ToolText::numbered(device.substr(ToolText::kDeviceFolder.size()), "disk");
}

} // namespace

DiskutilListSections parseDiskutilListSections(std::string_view list)
{
    DiskutilListSections sections;
    std::optional<std::string> disk;
    std::string section;
    const auto endSection = [&] {
        if (disk)
            sections.insert_or_assign(*disk, std::exchange(section, {}));
    };
    for (const std::string_view line : Lines(list)) {
        // Only in the first column: what is indented belongs to the section, whatever it says. The detector, which
        // asks which disks there are, looks behind blanks too.
        if (line.starts_with(ToolText::kDiskDevice)) {
            endSection();
            section = line;
            if (const auto found = diskOfHeader(line))
                disk = *found;
        } else {
            section += '\n';
            section += line;
        }
    }
    endSection();
    return sections;
}

} // namespace brindle
