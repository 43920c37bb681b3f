#include "text/FileSystemNames.h"

#include "text/Words.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace brindle::tools {
namespace {

struct Row {
    std::string_view fileSystem;
    std::string_view personality;
    std::string_view bundle;
};

constexpr std::array kNames{
    Row{"apfs", "APFS", "apfs"},
    Row{"btrfs", "Btrfs", "btrfs"},
    Row{"crypto_LUKS", "LUKS", "luks"},
    Row{"exfat", "ExFAT", "exfat"},
    Row{"hfs", "HFS", "hfs"},
    Row{"hfsplus", "HFS+", "hfs"},
    Row{"iso9660", "ISO 9660", "cd9660"},
    Row{"LVM2_member", "Linux LVM", "lvm"},
    Row{"ntfs", "NTFS", "ntfs"},
    Row{"swap", "Linux Swap", "swap"},
    Row{"udf", "UDF", "udf"},
    Row{"xfs", "XFS", "xfs"},
    Row{"zfs_member", "ZFS", "zfs"},
};

} // namespace

FileSystemNames fileSystemNames(const Volume &volume)
{
    if (volume.fileSystem == "vfat")
        return {volume.version.empty() ? "MS-DOS FAT" : "MS-DOS " + printable(volume.version), "msdos"};
    const auto row = std::ranges::find(kNames, volume.fileSystem, &Row::fileSystem);
    if (row == kNames.end())
        return {printable(volume.fileSystem), printable(volume.fileSystem)};
    return {std::string(row->personality), std::string(row->bundle)};
}

} // namespace brindle::tools
