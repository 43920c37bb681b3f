#include "acting/Format.h"

#include "text/Words.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::array kFormats{
    Format{"FAT32", "MS-DOS (FAT32)", "vfat", "FAT32", "Microsoft Basic Data", "DOS_FAT_32"},
    Format{"MS-DOS", "MS-DOS (FAT32)", "vfat", "FAT32", "Microsoft Basic Data", "DOS_FAT_32"},
    Format{"ExFAT", "ExFAT", "exfat", "1.0", "Microsoft Basic Data", "Windows_NTFS"},
    Format{"JHFS+", "Mac OS Extended (Journaled)", "hfsplus", "", "Apple_HFS", "Apple_HFS", true},
    Format{"HFS+", "Mac OS Extended", "hfsplus", "", "Apple_HFS", "Apple_HFS"},
    Format{"APFS", "APFS", "apfs", "", "Apple_APFS", "Apple_APFS"},
};

} // namespace

const Format *findFormat(std::string_view name)
{
    const std::string wanted = upperCased(name);
    const auto found =
        std::ranges::find_if(kFormats, [&](const Format &format) { return upperCased(format.name) == wanted; });
    return found == kFormats.end() ? nullptr : &*found;
}

} // namespace brindle::tools
