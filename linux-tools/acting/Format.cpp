#include "acting/Format.h"

#include "text/Words.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

// What the makers of Debian 12 refuse to go below: mkfs.fat 4.2 "too few blocks for viable filesystem", mkfs.exfat 1.2
// "boundary alignment is too big", mkapfs of 2023-02-06 "small containers are not supported".
constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kSmallestFat = kMiB / 16;
constexpr std::uint64_t kSmallestExFat = 3 * kMiB;
constexpr std::uint64_t kSmallestApfs = 128 * kMiB;

constexpr std::array kFormats{
    Format{"FAT32", "MS-DOS (FAT32)", "vfat", "FAT32", "Microsoft Basic Data", "DOS_FAT_32", kSmallestFat},
    Format{"MS-DOS", "MS-DOS (FAT32)", "vfat", "FAT32", "Microsoft Basic Data", "DOS_FAT_32", kSmallestFat},
    Format{"ExFAT", "ExFAT", "exfat", "1.0", "Microsoft Basic Data", "Windows_NTFS", kSmallestExFat},
    Format{"JHFS+", "Mac OS Extended (Journaled)", "hfsplus", "", "Apple_HFS", "Apple_HFS", 0, true},
    Format{"HFS+", "Mac OS Extended", "hfsplus", "", "Apple_HFS", "Apple_HFS"},
    Format{"APFS", "APFS", "apfs", "", "Apple_APFS", "Apple_APFS", kSmallestApfs},
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
