#include "kernel/PartitionTypes.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

struct TypeCase {
    const char *name;
    const char *table;
    const char *code;
    const char *printed;
};

class PrintsAPartitionType : public testing::TestWithParam<TypeCase> {};

TEST_P(PrintsAPartitionType, ByItsName)
{
    EXPECT_EQ(partitionTypeName(GetParam().table, GetParam().code), GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    Gpt, PrintsAPartitionType,
    testing::Values(TypeCase{"Efi", "gpt", "c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "EFI"},
                    TypeCase{"EfiInUpperCase", "gpt", "C12A7328-F81F-11D2-BA4B-00A0C93EC93B", "EFI"},
                    TypeCase{"BasicData", "gpt", "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7", "Microsoft Basic Data"},
                    TypeCase{"Reserved", "gpt", "e3c9e316-0b5c-4db8-817d-f92df00215ae", "Microsoft Reserved"},
                    TypeCase{"Recovery", "gpt", "de94bba4-06d1-4d40-a16a-bfd50179d6ac", "Windows Recovery"},
                    TypeCase{"LinuxFilesystem", "gpt", "0fc63daf-8483-4772-8e79-3d69d8477de4", "Linux Filesystem"},
                    TypeCase{"LinuxRoot", "gpt", "4f68bce3-e8cd-4db1-96e7-fbcaf984b709", "Linux Filesystem"},
                    TypeCase{"LinuxHome", "gpt", "933ac7e1-2eb4-4f13-b844-0e14e2aef915", "Linux Filesystem"},
                    TypeCase{"LinuxExtendedBoot", "gpt", "bc13c2ff-59e6-4262-a352-b275fd6f7172", "Linux Filesystem"},
                    TypeCase{"LinuxSwap", "gpt", "0657fd6d-a4ab-43c4-84e5-0933c84b4f4f", "Linux Swap"},
                    TypeCase{"LinuxLvm", "gpt", "e6d6d379-f507-44c2-a23c-238f2a3df928", "Linux LVM"},
                    TypeCase{"LinuxRaid", "gpt", "a19d880f-05fc-4d3b-a006-743f0f84911e", "Linux RAID"},
                    TypeCase{"LinuxLuks", "gpt", "ca7d7ccb-63ed-4c53-861c-1742536059cc", "Linux LUKS"},
                    TypeCase{"LinuxDmCrypt", "gpt", "7ffec5c9-2d00-49b7-8941-3ea10a5586b7", "Linux dm-crypt"},
                    TypeCase{"LinuxRootOfPowerPc", "gpt", "c31c45e6-3f39-412e-80fb-4809c4980599", "Linux Filesystem"},
                    TypeCase{"LinuxRootOfLoongArch", "gpt", "77055800-792c-4f94-b39a-98c91b762bb6", "Linux Filesystem"},
                    TypeCase{"LinuxUsrOfArm", "gpt", "b0e01050-ee5f-4390-949a-9101b17104e9", "Linux Filesystem"},
                    TypeCase{"CephEncrypted", "gpt", "4fbd7e29-9d25-41b8-afd0-5ec00ceff05d", "Ceph OSD"},
                    TypeCase{"CephBlock", "gpt", "cafecafe-9b03-4f30-b4c6-b4b80ceff106", "Ceph Block"},
                    TypeCase{"MidnightBsdZfs", "gpt", "85d5e45d-237c-11e1-b4b3-e89a8f7fc3a7", "MidnightBSD ZFS"},
                    TypeCase{"DragonFlyUfs", "gpt", "9d94ce7c-1ca5-11dc-8817-01301bb8a9f5", "DragonFly UFS"},
                    TypeCase{"NetBsdUfs", "gpt", "49f48d5a-b10e-11dc-b99b-0019d1879648", "NetBSD UFS"},
                    TypeCase{"Ceph", "gpt", "4fbd7e29-9d25-41b8-afd0-062c0ceff05d", "Ceph OSD"},
                    TypeCase{"Zfs", "gpt", "6a898cc3-1dd2-11b2-99a6-080020736631", "Solaris ZFS"},
                    TypeCase{"FreeBsdZfs", "gpt", "516e7cba-6ecf-11d6-8ff8-00022d09712b", "FreeBSD ZFS"},
                    TypeCase{"FreeBsdUfs", "gpt", "516e7cb6-6ecf-11d6-8ff8-00022d09712b", "FreeBSD UFS"},
                    TypeCase{"Hfs", "gpt", "48465300-0000-11aa-aa11-00306543ecac", "Apple_HFS"},
                    TypeCase{"Apfs", "gpt", "7c3457ef-0000-11aa-aa11-00306543ecac", "Apple_APFS"},
                    TypeCase{"ApfsIsc", "gpt", "69646961-6700-11aa-aa11-00306543ecac", "Apple_APFS_ISC"},
                    TypeCase{"ApfsRecovery", "gpt", "52637672-7900-11aa-aa11-00306543ecac", "Apple_APFS_Recovery"},
                    TypeCase{"CoreStorage", "gpt", "53746f72-6167-11aa-aa11-00306543ecac", "Apple_CoreStorage"},
                    TypeCase{"AppleUfs", "gpt", "55465300-0000-11aa-aa11-00306543ecac", "Apple_UFS"},
                    TypeCase{"Unknown", "gpt", "142f5f5d-b9e5-4433-87c0-68b6b72699c7",
                             "142F5F5D-B9E5-4433-87C0-68B6B72699C7"},
                    TypeCase{"Missing", "gpt", "", ""}),
    [](const auto &info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Mbr, PrintsAPartitionType,
    testing::Values(
        TypeCase{"Fat16", "dos", "0x6", "DOS_FAT_16"}, TypeCase{"SmallFat16", "dos", "0x4", "DOS_FAT_16"},
        TypeCase{"Fat16Lba", "dos", "0xe", "Windows_FAT_16"}, TypeCase{"Fat32", "dos", "0xb", "DOS_FAT_32"},
        TypeCase{"Fat32Lba", "dos", "0xc", "Windows_FAT_32"}, TypeCase{"HiddenFat32", "dos", "0x1b", "DOS_FAT_32"},
        TypeCase{"NtfsOrExfat", "dos", "0x7", "Windows_NTFS"}, TypeCase{"HiddenNtfs", "dos", "0x17", "Windows_NTFS"},
        TypeCase{"WindowsRecovery", "dos", "0x27", "Windows Recovery"},
        TypeCase{"Linux", "dos", "0x83", "Linux Filesystem"}, TypeCase{"LinuxSwap", "dos", "0x82", "Linux Swap"},
        TypeCase{"LinuxLvm", "dos", "0x8e", "Linux LVM"}, TypeCase{"LinuxRaid", "dos", "0xfd", "Linux RAID"},
        TypeCase{"LinuxLuks", "dos", "0xe8", "Linux LUKS"}, TypeCase{"Minix", "dos", "0x81", "Minix"},
        TypeCase{"Hfs", "dos", "0xaf", "Apple_HFS"}, TypeCase{"AppleUfs", "dos", "0xa8", "Apple_UFS"},
        TypeCase{"Efi", "dos", "0xef", "EFI"}, TypeCase{"Unknown", "dos", "0xdb", "0xdb"},
        TypeCase{"NoNumber", "dos", "0xzz", "0xzz"}, TypeCase{"NoPrefix", "dos", "83", "83"}),
    [](const auto &info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(Apm, PrintsAPartitionType,
                         testing::Values(TypeCase{"Map", "mac", "Apple_partition_map", "Apple_partition_map"},
                                         TypeCase{"Hfs", "mac", "Apple_HFS", "Apple_HFS"}),
                         [](const auto &info) { return info.param.name; });

TEST(PartitionTypes, NamesTheKindsOfTables)
{
    EXPECT_EQ(schemeName("gpt"), "GUID_partition_scheme");
    EXPECT_EQ(schemeName("dos"), "FDisk_partition_scheme");
    EXPECT_EQ(schemeName("PMBR"), "FDisk_partition_scheme");
    EXPECT_EQ(schemeName("mac"), "Apple_partition_scheme");
    EXPECT_EQ(schemeName("sun"), "sun_partition_scheme");
    EXPECT_EQ(schemeName(""), "");
}

TEST(PartitionTypes, KnowsTheEntriesThatHoldLogicalPartitions)
{
    EXPECT_TRUE(isExtended("dos", "0x5"));
    EXPECT_TRUE(isExtended("dos", "0xf"));
    EXPECT_TRUE(isExtended("dos", "0x85"));
    EXPECT_FALSE(isExtended("dos", "0x83"));
    EXPECT_FALSE(isExtended("gpt", "0x5"));
}

} // namespace
} // namespace brindle::tools
