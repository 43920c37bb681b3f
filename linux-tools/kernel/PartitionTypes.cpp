#include "kernel/PartitionTypes.h"

#include "text/Words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace brindle::tools {
namespace {

struct GuidName {
    std::string_view guid; ///< Upper case.
    std::string_view name;
};

// The GUIDs are those of the UEFI specification, of its users' own documents, and of the Discoverable Partitions
// Specification, whose data partitions all hold a Linux file system.
constexpr std::array kGuids{
    GuidName{"C12A7328-F81F-11D2-BA4B-00A0C93EC93B", "EFI"},
    GuidName{"21686148-6449-6E6F-744E-656564454649", "BIOS Boot"},
    GuidName{"5808C8AA-7E8F-42E0-85D2-E1E90434CFB3", "Microsoft LDM Metadata"},
    GuidName{"AF9B60A0-1431-4F62-BC68-3311714A69AD", "Microsoft LDM Data"},
    GuidName{"E3C9E316-0B5C-4DB8-817D-F92DF00215AE", "Microsoft Reserved"},
    GuidName{"E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D", "Microsoft Storage Spaces"},
    GuidName{"EBD0A0A2-B9E5-4433-87C0-68B6B72699C7", "Microsoft Basic Data"},
    GuidName{"DE94BBA4-06D1-4D40-A16A-BFD50179D6AC", "Windows Recovery"},
    GuidName{"0FC63DAF-8483-4772-8E79-3D69D8477DE4", "Linux Filesystem"},
    GuidName{"3B8F8425-20E0-4F3B-907F-1A25A76F98E8", "Linux Filesystem"}, // /srv
    GuidName{"44479540-F297-41B2-9AF7-D131D5F0458A", "Linux Filesystem"}, // root, x86
    GuidName{"4D21B016-B534-45C2-A9FB-5C16E091FD2D", "Linux Filesystem"}, // /var
    GuidName{"4F68BCE3-E8CD-4DB1-96E7-FBCAF984B709", "Linux Filesystem"}, // root, x86-64
    GuidName{"69DAD710-2CE4-4E3C-B16C-21A1D49ABED3", "Linux Filesystem"}, // root, ARM
    GuidName{"72EC70A6-CF74-40E6-BD49-4BDA08E8F224", "Linux Filesystem"}, // root, RISC-V 64
    GuidName{"773F91EF-66D4-49B5-BD83-D683BF40AD16", "Linux Filesystem"}, // a user's home
    GuidName{"7EC6F557-3BC5-4ACA-B293-16EF5DF639D1", "Linux Filesystem"}, // /var/tmp
    GuidName{"8484680C-9521-48C6-9C11-B0720656F69E", "Linux Filesystem"}, // /usr, x86-64
    GuidName{"933AC7E1-2EB4-4F13-B844-0E14E2AEF915", "Linux Filesystem"}, // /home
    GuidName{"B921B045-1DF0-41C3-AF44-4C6F280D3FAE", "Linux Filesystem"}, // root, ARM 64
    GuidName{"BC13C2FF-59E6-4262-A352-B275FD6F7172", "Linux Filesystem"}, // extended boot
    GuidName{"0657FD6D-A4AB-43C4-84E5-0933C84B4F4F", "Linux Swap"},
    GuidName{"7FFEC5C9-2D00-49B7-8941-3EA10A5586B7", "Linux dm-crypt"},
    GuidName{"A19D880F-05FC-4D3B-A006-743F0F84911E", "Linux RAID"},
    GuidName{"CA7D7CCB-63ED-4C53-861C-1742536059CC", "Linux LUKS"},
    GuidName{"E6D6D379-F507-44C2-A23C-238F2A3DF928", "Linux LVM"},
    GuidName{"45B0969E-9B03-4F30-B4C6-B4B80CEFF106", "Ceph Journal"},
    GuidName{"4FBD7E29-9D25-41B8-AFD0-062C0CEFF05D", "Ceph OSD"},
    GuidName{"426F6F74-0000-11AA-AA11-00306543ECAC", "Apple_Boot"},
    GuidName{"48465300-0000-11AA-AA11-00306543ECAC", "Apple_HFS"},
    GuidName{"4C616265-6C00-11AA-AA11-00306543ECAC", "Apple_Label"},
    GuidName{"52414944-0000-11AA-AA11-00306543ECAC", "Apple_RAID"},
    GuidName{"5265636F-7665-11AA-AA11-00306543ECAC", "Apple_TV_Recovery"},
    GuidName{"52637672-7900-11AA-AA11-00306543ECAC", "Apple_APFS_Recovery"},
    GuidName{"53746F72-6167-11AA-AA11-00306543ECAC", "Apple_CoreStorage"},
    GuidName{"55465300-0000-11AA-AA11-00306543ECAC", "Apple_UFS"},
    GuidName{"69646961-6700-11AA-AA11-00306543ECAC", "Apple_APFS_ISC"},
    GuidName{"7C3457EF-0000-11AA-AA11-00306543ECAC", "Apple_APFS"},
    GuidName{"516E7CB4-6ECF-11D6-8FF8-00022D09712B", "FreeBSD"},
    GuidName{"516E7CB5-6ECF-11D6-8FF8-00022D09712B", "FreeBSD Swap"},
    GuidName{"516E7CB6-6ECF-11D6-8FF8-00022D09712B", "FreeBSD UFS"},
    GuidName{"516E7CBA-6ECF-11D6-8FF8-00022D09712B", "FreeBSD ZFS"},
    GuidName{"83BD6B9D-7F41-11DC-BE0B-001560B84F0F", "FreeBSD Boot"},
    GuidName{"824CC7A0-36A8-11E3-890A-952519AD3F61", "OpenBSD"},
    GuidName{"6A898CC3-1DD2-11B2-99A6-080020736631", "Solaris ZFS"},
};

struct ByteName {
    unsigned byte;
    std::string_view name;
};

// The type bytes are allotted by custom; hidden ones are named as what they hide.
constexpr std::array kBytes{
    ByteName{0x01, "DOS_FAT_12"},
    ByteName{0x04, "DOS_FAT_16"},
    ByteName{0x05, "DOS_Extended"},
    ByteName{0x06, "DOS_FAT_16"},
    ByteName{0x07, "Windows_NTFS"},
    ByteName{0x0B, "DOS_FAT_32"},
    ByteName{0x0C, "Windows_FAT_32"},
    ByteName{0x0E, "Windows_FAT_16"},
    ByteName{0x0F, "Windows_Extended"},
    ByteName{0x11, "DOS_FAT_12"},
    ByteName{0x14, "DOS_FAT_16"},
    ByteName{0x16, "DOS_FAT_16"},
    ByteName{0x17, "Windows_NTFS"},
    ByteName{0x1B, "DOS_FAT_32"},
    ByteName{0x1C, "Windows_FAT_32"},
    ByteName{0x1E, "Windows_FAT_16"},
    ByteName{0x27, "Windows Recovery"},
    ByteName{0x42, "Microsoft LDM Data"},
    ByteName{0x80, "Minix"},
    ByteName{0x81, "Minix"},
    ByteName{0x82, "Linux Swap"},
    ByteName{0x83, "Linux Filesystem"},
    ByteName{0x85, "Linux_Extended"},
    ByteName{0x8E, "Linux LVM"},
    ByteName{0xA5, "FreeBSD"},
    ByteName{0xA6, "OpenBSD"},
    ByteName{0xA8, "Apple_UFS"},
    ByteName{0xA9, "NetBSD"},
    ByteName{0xAB, "Apple_Boot"},
    ByteName{0xAC, "Apple_RAID"},
    ByteName{0xAF, "Apple_HFS"},
    ByteName{0xBF, "Solaris"},
    ByteName{0xE8, "Linux LUKS"},
    ByteName{0xEA, "Linux Filesystem"},
    ByteName{0xEE, "GUID_protective"},
    ByteName{0xEF, "EFI"},
    ByteName{0xFD, "Linux RAID"},
};

std::optional<unsigned> typeByte(std::string_view code)
{
    constexpr std::string_view kPrefix = "0x";
    constexpr int kHexadecimal = 16;
    if (!code.starts_with(kPrefix))
        return std::nullopt;
    unsigned byte = 0;
    const auto [end, error] =
        std::from_chars(code.data() + kPrefix.size(), code.data() + code.size(), byte, kHexadecimal);
    return error == std::errc() && end == code.data() + code.size() ? std::optional(byte) : std::nullopt;
}

std::string byteName(std::string_view code)
{
    const auto byte = typeByte(code);
    const auto row = byte ? std::ranges::find(kBytes, *byte, &ByteName::byte) : kBytes.end();
    return std::string(row != kBytes.end() ? row->name : code);
}

std::string guidName(std::string_view code)
{
    std::string guid = upperCased(code);
    const auto row = std::ranges::find(kGuids, guid, &GuidName::guid);
    return row != kGuids.end() ? std::string(row->name) : guid;
}

} // namespace

std::string schemeName(std::string_view table)
{
    if (table == "gpt")
        return "GUID_partition_scheme";
    if (table == "dos" || table == "PMBR")
        return "FDisk_partition_scheme";
    if (table == "mac")
        return "Apple_partition_scheme";
    return table.empty() ? std::string() : std::string(table) + "_partition_scheme";
}

std::string partitionTypeName(std::string_view table, std::string_view code)
{
    if (table == "gpt")
        return guidName(code);
    if (table == "dos" || table == "PMBR")
        return byteName(code);
    return std::string(code);
}

bool isExtended(std::string_view table, std::string_view code)
{
    const auto byte = table == "dos" ? typeByte(code) : std::nullopt;
    return byte == 0x05U || byte == 0x0FU || byte == 0x85U;
}

} // namespace brindle::tools
