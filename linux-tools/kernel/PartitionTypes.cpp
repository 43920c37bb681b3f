#include "kernel/PartitionTypes.h"

#include "text/Words.h"

#include <fmt/format.h>

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

// The GUIDs are those of UEFI, of its users' own documents, and of the Discoverable Partitions of the UAPI Group,
// whose data partitions all hold a Linux file system.
constexpr std::array kGuids{
    GuidName{"C12A7328-F81F-11D2-BA4B-00A0C93EC93B", "EFI"},
    GuidName{"21686148-6449-6E6F-744E-656564454649", "BIOS Boot"},
    GuidName{"5808C8AA-7E8F-42E0-85D2-E1E90434CFB3", "Microsoft LDM Metadata"},
    GuidName{"AF9B60A0-1431-4F62-BC68-3311714A69AD", "Microsoft LDM Data"},
    GuidName{"E3C9E316-0B5C-4DB8-817D-F92DF00215AE", "Microsoft Reserved"},
    GuidName{"E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D", "Microsoft Storage Spaces"},
    GuidName{"EBD0A0A2-B9E5-4433-87C0-68B6B72699C7", "Microsoft Basic Data"},
    GuidName{"DE94BBA4-06D1-4D40-A16A-BFD50179D6AC", "Windows Recovery"},
    GuidName{"08A7ACEA-624C-4A20-91E8-6E0FA67D23F9", "Linux Filesystem"}, // root, s390
    GuidName{"0F4868E9-9952-4706-979F-3ED3A473E947", "Linux Filesystem"}, // /usr, MIPS, little-endian
    GuidName{"0FC63DAF-8483-4772-8E79-3D69D8477DE4", "Linux Filesystem"},
    GuidName{"15BB03AF-77E7-4D4A-B12B-C0D084F7491C", "Linux Filesystem"}, // /usr, PowerPC 64, little-endian
    GuidName{"1AACDB3B-5444-4138-BD9E-E5C2239B2346", "Linux Filesystem"}, // root, PA-RISC
    GuidName{"1DE3F1EF-FA98-47B5-8DCD-4A860A654D78", "Linux Filesystem"}, // root, PowerPC
    GuidName{"2C9739E2-F068-46B3-9FD0-01C5A9AFBCCA", "Linux Filesystem"}, // /usr, PowerPC 64
    GuidName{"37C58C8A-D913-4156-A25F-48B1B64E07F0", "Linux Filesystem"}, // root, MIPS, little-endian
    GuidName{"3B8F8425-20E0-4F3B-907F-1A25A76F98E8", "Linux Filesystem"}, // /srv
    GuidName{"4301D2A6-4E3B-4B2A-BB94-9E0B2C4225EA", "Linux Filesystem"}, // /usr, Itanium
    GuidName{"44479540-F297-41B2-9AF7-D131D5F0458A", "Linux Filesystem"}, // root, x86
    GuidName{"4D21B016-B534-45C2-A9FB-5C16E091FD2D", "Linux Filesystem"}, // /var
    GuidName{"4F68BCE3-E8CD-4DB1-96E7-FBCAF984B709", "Linux Filesystem"}, // root, x86-64
    GuidName{"55497029-C7C1-44CC-AA39-815ED1558630", "Linux Filesystem"}, // /usr, TILE-Gx
    GuidName{"57E13958-7331-4365-8E6E-35EEEE17C61B", "Linux Filesystem"}, // /usr, MIPS 64
    GuidName{"5EEAD9A9-FE09-4A1E-A1D7-520D00531306", "Linux Filesystem"}, // root, s390x
    GuidName{"60D5A7FE-8E7D-435C-B714-3DD8162144E1", "Linux Filesystem"}, // root, RISC-V 32
    GuidName{"6523F8AE-3EB1-4E2A-A05A-18B695AE656F", "Linux Filesystem"}, // root, Alpha
    GuidName{"69DAD710-2CE4-4E3C-B16C-21A1D49ABED3", "Linux Filesystem"}, // root, ARM
    GuidName{"700BDA43-7A34-4507-B179-EEB93D7A7CA3", "Linux Filesystem"}, // root, MIPS 64, little-endian
    GuidName{"72EC70A6-CF74-40E6-BD49-4BDA08E8F224", "Linux Filesystem"}, // root, RISC-V 64
    GuidName{"75250D76-8CC6-458E-BD66-BD47CC81A812", "Linux Filesystem"}, // /usr, x86
    GuidName{"77055800-792C-4F94-B39A-98C91B762BB6", "Linux Filesystem"}, // root, LoongArch 64
    GuidName{"773B2ABC-2A99-4398-8BF5-03BAAC40D02B", "Linux Filesystem"}, // /usr, MIPS
    GuidName{"773F91EF-66D4-49B5-BD83-D683BF40AD16", "Linux Filesystem"}, // a user's home
    GuidName{"7978A683-6316-4922-BBEE-38BFF5A2FECC", "Linux Filesystem"}, // /usr, ARC
    GuidName{"7D0359A3-02B3-4F0A-865C-654403E70625", "Linux Filesystem"}, // /usr, ARM
    GuidName{"7D14FEC5-CC71-415D-9D6C-06BF0B3C3EAF", "Linux Filesystem"}, // /usr, PowerPC
    GuidName{"7EC6F557-3BC5-4ACA-B293-16EF5DF639D1", "Linux Filesystem"}, // /var/tmp
    GuidName{"8484680C-9521-48C6-9C11-B0720656F69E", "Linux Filesystem"}, // /usr, x86-64
    GuidName{"8A4F5770-50AA-4ED3-874A-99B710DB6FEA", "Linux Filesystem"}, // /usr, s390x
    GuidName{"912ADE1D-A839-4913-8964-A10EEE08FBD2", "Linux Filesystem"}, // root, PowerPC 64
    GuidName{"933AC7E1-2EB4-4F13-B844-0E14E2AEF915", "Linux Filesystem"}, // /home
    GuidName{"993D8D3D-F80E-4225-855A-9DAF8ED7EA97", "Linux Filesystem"}, // root, Itanium
    GuidName{"B0E01050-EE5F-4390-949A-9101B17104E9", "Linux Filesystem"}, // /usr, ARM 64
    GuidName{"B921B045-1DF0-41C3-AF44-4C6F280D3FAE", "Linux Filesystem"}, // root, ARM 64
    GuidName{"B933FB22-5C3F-4F91-AF90-E2BB0FA50702", "Linux Filesystem"}, // /usr, RISC-V 32
    GuidName{"BC13C2FF-59E6-4262-A352-B275FD6F7172", "Linux Filesystem"}, // extended boot
    GuidName{"BEAEC34B-8442-439B-A40B-984381ED097D", "Linux Filesystem"}, // /usr, RISC-V 64
    GuidName{"C31C45E6-3F39-412E-80FB-4809C4980599", "Linux Filesystem"}, // root, PowerPC 64, little-endian
    GuidName{"C50CDD70-3862-4CC3-90E1-809A8C93EE2C", "Linux Filesystem"}, // root, TILE-Gx
    GuidName{"C97C1F32-BA06-40B4-9F22-236061B08AA8", "Linux Filesystem"}, // /usr, MIPS 64, little-endian
    GuidName{"CD0F869B-D0FB-4CA0-B141-9EA87CC78D66", "Linux Filesystem"}, // /usr, s390
    GuidName{"D113AF76-80EF-41B4-BDB6-0CFF4D3D4A25", "Linux Filesystem"}, // root, MIPS 64
    GuidName{"D27F46ED-2919-4CB8-BD25-9531F3C16534", "Linux Filesystem"}, // root, ARC
    GuidName{"DC4A4480-6917-4262-A4EC-DB9384949F25", "Linux Filesystem"}, // /usr, PA-RISC
    GuidName{"E18CF08C-33EC-4C0D-8246-C6C6FB3DA024", "Linux Filesystem"}, // /usr, Alpha
    GuidName{"E611C702-575C-4CBE-9A46-434FA0BF7E3F", "Linux Filesystem"}, // /usr, LoongArch 64
    GuidName{"E9434544-6E2C-47CC-BAE2-12D6DEAFB44C", "Linux Filesystem"}, // root, MIPS
    GuidName{"0657FD6D-A4AB-43C4-84E5-0933C84B4F4F", "Linux Swap"},
    GuidName{"7FFEC5C9-2D00-49B7-8941-3EA10A5586B7", "Linux dm-crypt"},
    GuidName{"A19D880F-05FC-4D3B-A006-743F0F84911E", "Linux RAID"},
    GuidName{"8DA63339-0007-60C0-C436-083AC8230908", "Linux Reserved"},
    GuidName{"CA7D7CCB-63ED-4C53-861C-1742536059CC", "Linux LUKS"},
    GuidName{"E6D6D379-F507-44C2-A23C-238F2A3DF928", "Linux LVM"},
    GuidName{"45B0969E-9B03-4F30-B4C6-B4B80CEFF106", "Ceph Journal"},
    GuidName{"45B0969E-9B03-4F30-B4C6-5EC00CEFF106", "Ceph Journal"}, // encrypted
    GuidName{"30CD0809-C2B2-499C-8879-2D6B78529876", "Ceph Block DB"},
    GuidName{"5CE17FCE-4087-4169-B7FF-058CC58473F9", "Ceph Block WAL"},
    GuidName{"CAFECAFE-9B03-4F30-B4C6-B4B80CEFF106", "Ceph Block"},
    GuidName{"FB3AABF9-D25F-47CC-BF5E-721D1816496B", "Ceph Lockbox"},
    GuidName{"4FBD7E29-9D25-41B8-AFD0-062C0CEFF05D", "Ceph OSD"},
    GuidName{"4FBD7E29-9D25-41B8-AFD0-5EC00CEFF05D", "Ceph OSD"}, // encrypted
    GuidName{"89C57F98-2FE5-4DC0-89C1-5EC00CEFF2BE", "Ceph OSD"}, // encrypted, while it is made
    GuidName{"89C57F98-2FE5-4DC0-89C1-F3AD0CEFF2BE", "Ceph OSD"}, // while it is made
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
    GuidName{"0394EF8B-237E-11E1-B4B3-E89A8F7FC3A7", "MidnightBSD UFS"},
    GuidName{"85D5E45D-237C-11E1-B4B3-E89A8F7FC3A7", "MidnightBSD ZFS"},
    GuidName{"9D94CE7C-1CA5-11DC-8817-01301BB8A9F5", "DragonFly UFS"},
    GuidName{"49F48D5A-B10E-11DC-B99B-0019D1879648", "NetBSD UFS"},
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

std::string gptTypeCode(std::string_view name)
{
    const auto row = std::ranges::find(kGuids, name, &GuidName::name);
    return row != kGuids.end() ? std::string(row->guid) : std::string();
}

std::string mbrTypeCode(std::string_view name)
{
    const auto row = std::ranges::find(kBytes, name, &ByteName::name);
    return row != kBytes.end() ? fmt::format("{:#04x}", row->byte) : std::string();
}

bool isExtended(std::string_view table, std::string_view code)
{
    const auto byte = table == "dos" ? typeByte(code) : std::nullopt;
    return byte == 0x05U || byte == 0x0FU || byte == 0x85U;
}

} // namespace brindle::tools
