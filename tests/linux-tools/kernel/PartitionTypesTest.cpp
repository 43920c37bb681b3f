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

INSTANTIATE_TEST_SUITE_P(
    DiscoverableLinux, PrintsAPartitionType,
    testing::Values(TypeCase{"RootAlpha", "gpt", "6523f8ae-3eb1-4e2a-a05a-18b695ae656f", "Linux Filesystem"},
                    TypeCase{"RootArc", "gpt", "d27f46ed-2919-4cb8-bd25-9531f3c16534", "Linux Filesystem"},
                    TypeCase{"RootArm", "gpt", "69dad710-2ce4-4e3c-b16c-21a1d49abed3", "Linux Filesystem"},
                    TypeCase{"RootArm64", "gpt", "b921b045-1df0-41c3-af44-4c6f280d3fae", "Linux Filesystem"},
                    TypeCase{"RootIa64", "gpt", "993d8d3d-f80e-4225-855a-9daf8ed7ea97", "Linux Filesystem"},
                    TypeCase{"RootMips", "gpt", "e9434544-6e2c-47cc-bae2-12d6deafb44c", "Linux Filesystem"},
                    TypeCase{"RootMips64", "gpt", "d113af76-80ef-41b4-bdb6-0cff4d3d4a25", "Linux Filesystem"},
                    TypeCase{"RootMipsLe", "gpt", "37c58c8a-d913-4156-a25f-48b1b64e07f0", "Linux Filesystem"},
                    TypeCase{"RootMips64Le", "gpt", "700bda43-7a34-4507-b179-eeb93d7a7ca3", "Linux Filesystem"},
                    TypeCase{"RootParisc", "gpt", "1aacdb3b-5444-4138-bd9e-e5c2239b2346", "Linux Filesystem"},
                    TypeCase{"RootPpc", "gpt", "1de3f1ef-fa98-47b5-8dcd-4a860a654d78", "Linux Filesystem"},
                    TypeCase{"RootPpc64", "gpt", "912ade1d-a839-4913-8964-a10eee08fbd2", "Linux Filesystem"},
                    TypeCase{"RootRiscv32", "gpt", "60d5a7fe-8e7d-435c-b714-3dd8162144e1", "Linux Filesystem"},
                    TypeCase{"RootRiscv64", "gpt", "72ec70a6-cf74-40e6-bd49-4bda08e8f224", "Linux Filesystem"},
                    TypeCase{"RootS390", "gpt", "08a7acea-624c-4a20-91e8-6e0fa67d23f9", "Linux Filesystem"},
                    TypeCase{"RootS390x", "gpt", "5eead9a9-fe09-4a1e-a1d7-520d00531306", "Linux Filesystem"},
                    TypeCase{"RootTilegx", "gpt", "c50cdd70-3862-4cc3-90e1-809a8c93ee2c", "Linux Filesystem"},
                    TypeCase{"RootX86", "gpt", "44479540-f297-41b2-9af7-d131d5f0458a", "Linux Filesystem"},
                    TypeCase{"UsrAlpha", "gpt", "e18cf08c-33ec-4c0d-8246-c6c6fb3da024", "Linux Filesystem"},
                    TypeCase{"UsrArc", "gpt", "7978a683-6316-4922-bbee-38bff5a2fecc", "Linux Filesystem"},
                    TypeCase{"UsrArm", "gpt", "7d0359a3-02b3-4f0a-865c-654403e70625", "Linux Filesystem"},
                    TypeCase{"UsrIa64", "gpt", "4301d2a6-4e3b-4b2a-bb94-9e0b2c4225ea", "Linux Filesystem"},
                    TypeCase{"UsrLoongarch64", "gpt", "e611c702-575c-4cbe-9a46-434fa0bf7e3f", "Linux Filesystem"},
                    TypeCase{"UsrMips", "gpt", "773b2abc-2a99-4398-8bf5-03baac40d02b", "Linux Filesystem"},
                    TypeCase{"UsrMips64", "gpt", "57e13958-7331-4365-8e6e-35eeee17c61b", "Linux Filesystem"},
                    TypeCase{"UsrMipsLe", "gpt", "0f4868e9-9952-4706-979f-3ed3a473e947", "Linux Filesystem"},
                    TypeCase{"UsrMips64Le", "gpt", "c97c1f32-ba06-40b4-9f22-236061b08aa8", "Linux Filesystem"},
                    TypeCase{"UsrParisc", "gpt", "dc4a4480-6917-4262-a4ec-db9384949f25", "Linux Filesystem"},
                    TypeCase{"UsrPpc", "gpt", "7d14fec5-cc71-415d-9d6c-06bf0b3c3eaf", "Linux Filesystem"},
                    TypeCase{"UsrPpc64", "gpt", "2c9739e2-f068-46b3-9fd0-01c5a9afbcca", "Linux Filesystem"},
                    TypeCase{"UsrPpc64Le", "gpt", "15bb03af-77e7-4d4a-b12b-c0d084f7491c", "Linux Filesystem"},
                    TypeCase{"UsrRiscv32", "gpt", "b933fb22-5c3f-4f91-af90-e2bb0fa50702", "Linux Filesystem"},
                    TypeCase{"UsrRiscv64", "gpt", "beaec34b-8442-439b-a40b-984381ed097d", "Linux Filesystem"},
                    TypeCase{"UsrS390", "gpt", "cd0f869b-d0fb-4ca0-b141-9ea87cc78d66", "Linux Filesystem"},
                    TypeCase{"UsrS390x", "gpt", "8a4f5770-50aa-4ed3-874a-99b710db6fea", "Linux Filesystem"},
                    TypeCase{"UsrTilegx", "gpt", "55497029-c7c1-44cc-aa39-815ed1558630", "Linux Filesystem"},
                    TypeCase{"UsrX86", "gpt", "75250d76-8cc6-458e-bd66-bd47cc81a812", "Linux Filesystem"},
                    TypeCase{"UsrX8664", "gpt", "8484680c-9521-48c6-9c11-b0720656f69e", "Linux Filesystem"},
                    TypeCase{"Srv", "gpt", "3b8f8425-20e0-4f3b-907f-1a25a76f98e8", "Linux Filesystem"},
                    TypeCase{"Var", "gpt", "4d21b016-b534-45c2-a9fb-5c16e091fd2d", "Linux Filesystem"},
                    TypeCase{"Tmp", "gpt", "7ec6f557-3bc5-4aca-b293-16ef5df639d1", "Linux Filesystem"},
                    TypeCase{"UserHome", "gpt", "773f91ef-66d4-49b5-bd83-d683bf40ad16", "Linux Filesystem"}),
    [](const auto &info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    RarerGpt, PrintsAPartitionType,
    testing::Values(TypeCase{"BiosBoot", "gpt", "21686148-6449-6e6f-744e-656564454649", "BIOS Boot"},
                    TypeCase{"LdmMetadata", "gpt", "5808c8aa-7e8f-42e0-85d2-e1e90434cfb3", "Microsoft LDM Metadata"},
                    TypeCase{"LdmData", "gpt", "af9b60a0-1431-4f62-bc68-3311714a69ad", "Microsoft LDM Data"},
                    TypeCase{"StorageSpaces", "gpt", "e75caf8f-f680-4cee-afa3-b001e56efc2d",
                             "Microsoft Storage Spaces"},
                    TypeCase{"LinuxReserved", "gpt", "8da63339-0007-60c0-c436-083ac8230908", "Linux Reserved"},
                    TypeCase{"CephJournal", "gpt", "45b0969e-9b03-4f30-b4c6-b4b80ceff106", "Ceph Journal"},
                    TypeCase{"CephEncryptedJournal", "gpt", "45b0969e-9b03-4f30-b4c6-5ec00ceff106", "Ceph Journal"},
                    TypeCase{"CephBlockDb", "gpt", "30cd0809-c2b2-499c-8879-2d6b78529876", "Ceph Block DB"},
                    TypeCase{"CephBlockWal", "gpt", "5ce17fce-4087-4169-b7ff-058cc58473f9", "Ceph Block WAL"},
                    TypeCase{"CephLockbox", "gpt", "fb3aabf9-d25f-47cc-bf5e-721d1816496b", "Ceph Lockbox"},
                    TypeCase{"CephEncryptedInCreation", "gpt", "89c57f98-2fe5-4dc0-89c1-5ec00ceff2be", "Ceph OSD"},
                    TypeCase{"CephInCreation", "gpt", "89c57f98-2fe5-4dc0-89c1-f3ad0ceff2be", "Ceph OSD"},
                    TypeCase{"AppleBoot", "gpt", "426f6f74-0000-11aa-aa11-00306543ecac", "Apple_Boot"},
                    TypeCase{"AppleLabel", "gpt", "4c616265-6c00-11aa-aa11-00306543ecac", "Apple_Label"},
                    TypeCase{"AppleRaid", "gpt", "52414944-0000-11aa-aa11-00306543ecac", "Apple_RAID"},
                    TypeCase{"AppleTvRecovery", "gpt", "5265636f-7665-11aa-aa11-00306543ecac", "Apple_TV_Recovery"},
                    TypeCase{"FreeBsd", "gpt", "516e7cb4-6ecf-11d6-8ff8-00022d09712b", "FreeBSD"},
                    TypeCase{"FreeBsdSwap", "gpt", "516e7cb5-6ecf-11d6-8ff8-00022d09712b", "FreeBSD Swap"},
                    TypeCase{"FreeBsdBoot", "gpt", "83bd6b9d-7f41-11dc-be0b-001560b84f0f", "FreeBSD Boot"},
                    TypeCase{"MidnightBsdUfs", "gpt", "0394ef8b-237e-11e1-b4b3-e89a8f7fc3a7", "MidnightBSD UFS"},
                    TypeCase{"OpenBsd", "gpt", "824cc7a0-36a8-11e3-890a-952519ad3f61", "OpenBSD"}),
    [](const auto &info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    RarerMbr, PrintsAPartitionType,
    testing::Values(
        TypeCase{"Fat12", "dos", "0x1", "DOS_FAT_12"}, TypeCase{"Extended", "dos", "0x5", "DOS_Extended"},
        TypeCase{"ExtendedLba", "dos", "0xf", "Windows_Extended"}, TypeCase{"HiddenFat12", "dos", "0x11", "DOS_FAT_12"},
        TypeCase{"HiddenSmallFat16", "dos", "0x14", "DOS_FAT_16"}, TypeCase{"HiddenFat16", "dos", "0x16", "DOS_FAT_16"},
        TypeCase{"HiddenFat32Lba", "dos", "0x1c", "Windows_FAT_32"},
        TypeCase{"HiddenFat16Lba", "dos", "0x1e", "Windows_FAT_16"},
        TypeCase{"DynamicDisk", "dos", "0x42", "Microsoft LDM Data"}, TypeCase{"OldMinix", "dos", "0x80", "Minix"},
        TypeCase{"LinuxExtended", "dos", "0x85", "Linux_Extended"}, TypeCase{"FreeBsd", "dos", "0xa5", "FreeBSD"},
        TypeCase{"OpenBsd", "dos", "0xa6", "OpenBSD"}, TypeCase{"NetBsd", "dos", "0xa9", "NetBSD"},
        TypeCase{"AppleBoot", "dos", "0xab", "Apple_Boot"}, TypeCase{"AppleRaid", "dos", "0xac", "Apple_RAID"},
        TypeCase{"Solaris", "dos", "0xbf", "Solaris"}, TypeCase{"LinuxExtendedBoot", "dos", "0xea", "Linux Filesystem"},
        TypeCase{"Protective", "dos", "0xee", "GUID_protective"}),
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
