#include "linux-tools/SampleMachine.h"

#include "text/DiskutilText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string infoOf(const Inventory &machine, std::string_view name)
{
    const auto device = findDevice(machine, name);
    return device ? infoText(*device) : "none";
}

TEST(InfoText, TellsAWholeDisk)
{
    EXPECT_EQ(infoOf(sampleMachine(), "disk0"),
              R"(   Device Identifier:         disk0
   Device Node:               /dev/nvme0n1
   Whole:                     Yes
   Part of Whole:             disk0
   Device / Media Name:       Samsung SSD 980 PRO (nvme0n1)

   Content (IOContent):       GUID_partition_scheme

   Protocol:                  PCI-Express
   SMART Status:              Verified

   Disk Size:                 500.3 GB (500277790720 Bytes) (exactly 977105060 512-Byte-Units)
   Device Block Size:         512 Bytes

   Read-Only Media:           No
   Device Location:           Internal
   Removable Media:           No
   Solid State:               Yes
   TRIM Support:              Yes
)");
}

TEST(InfoText, TellsAMountedPartition)
{
    EXPECT_EQ(infoOf(sampleMachine(), "disk0s1"),
              R"(   Device Identifier:         disk0s1
   Device Node:               /dev/nvme0n1p1
   Whole:                     No
   Part of Whole:             disk0

   Volume Name:               EFI
   Mounted:                   Yes
   Mount Point:               /boot/efi

   Partition Type:            EFI
   File System Personality:   MS-DOS FAT32
   Type (Bundle):             msdos

   Protocol:                  PCI-Express
   Volume UUID:               67E3-17ED
   Disk / Partition UUID:     8D1F4A70-7AE9-4B3C-9D2A-00A1B2C3D4E5

   Disk Size:                 209.7 MB (209715200 Bytes) (exactly 409600 512-Byte-Units)
   Device Block Size:         512 Bytes

   Read-Only Media:           No
   Device Location:           Internal
   Removable Media:           No
   Solid State:               Yes
   TRIM Support:              Yes
)");
}

TEST(InfoText, LeavesTheMountPointOutWhereNothingIsMounted)
{
    const std::string text = infoOf(sampleMachine(), "disk10s1");

    EXPECT_THAT(text, HasSubstr("   Mounted:                   No\n"));
    EXPECT_THAT(text, Not(HasSubstr("Mount Point:")));
}

TEST(InfoText, TellsTheExternalRemovableAndReadOnlyStick)
{
    const std::string text = infoOf(sampleMachine(), "disk10");

    EXPECT_THAT(text, HasSubstr("   Protocol:                  USB\n"));
    EXPECT_THAT(text, HasSubstr("   SMART Status:              Not Supported\n"));
    EXPECT_THAT(text, HasSubstr("   Read-Only Media:           Yes\n"));
    EXPECT_THAT(text, HasSubstr("   Device Location:           External\n"));
    EXPECT_THAT(text, HasSubstr("   Removable Media:           Yes\n"));
    EXPECT_THAT(text, HasSubstr("   Solid State:               No\n"));
    EXPECT_THAT(text, HasSubstr("   TRIM Support:              No\n"));
}

TEST(InfoText, TellsAFileSystemOnAWholeDisk)
{
    const std::string text = infoOf(sampleMachine(), "RESCUE");

    EXPECT_THAT(text, HasSubstr("   Content (IOContent):       None\n"));
    EXPECT_THAT(text, HasSubstr("   File System Personality:   ISO 9660\n"));
    EXPECT_THAT(text, HasSubstr("   Volume Name:               RESCUE\n"));
}

TEST(InfoText, TellsThePhysicalStoreOfAnApfsVolume)
{
    const std::string text = infoOf(sampleMachine(), "/");

    EXPECT_THAT(text, HasSubstr("   Device Identifier:         disk3s1\n"));
    EXPECT_THAT(text, HasSubstr("   Whole:                     No\n"));
    EXPECT_THAT(text, HasSubstr("   Part of Whole:             disk3\n"));
    EXPECT_THAT(text, HasSubstr("   Volume Name:               Macintosh HD\n"));
    EXPECT_THAT(text, HasSubstr("   Protocol:                  PCI-Express\n"));
    EXPECT_THAT(text, HasSubstr("   APFS Physical Store:       disk0s2\n"));
}

TEST(InfoText, TellsAContainerAsAWholeDisk)
{
    const std::string text = infoOf(sampleMachine(), "disk3");

    EXPECT_THAT(text, HasSubstr("   Whole:                     Yes\n"));
    EXPECT_THAT(text, HasSubstr("   Content (IOContent):       EF57347C-0000-11AA-AA11-00306543ECAC\n"));
}

TEST(InfoText, TellsWhatIsMountedBehindTheEncryption)
{
    Inventory machine = sampleMachine();
    machine.disks[0].partitions[0].volume = Volume{.fileSystem = "crypto_LUKS", .version = {}, .name = {}, .uuid = {}};
    machine.mounts = {{.carrier = "disk0s1",
                       .mountPoint = "/home",
                       .volume = Volume{.fileSystem = "ext4", .version = "1.0", .name = "home", .uuid = {}}}};

    const std::string text = infoOf(machine, "/home");

    EXPECT_THAT(text, HasSubstr("   Device Identifier:         disk0s1\n"));
    EXPECT_THAT(text, HasSubstr("   Volume Name:               home\n"));
    EXPECT_THAT(text, HasSubstr("   File System Personality:   ext4\n"));
}

TEST(InfoText, SurvivesAContainerWithoutItsStore)
{
    Inventory machine;
    machine.containers = {{.identifier = "disk3", .store = "disk3", .sizeBytes = 1, .volumes = {}}};

    EXPECT_THAT(infoOf(machine, "disk3"), HasSubstr("   Device Identifier:         disk3\n"));
}

TEST(InfoText, KeepsAHostileNameWithinItsLine)
{
    Inventory machine = sampleMachine();
    machine.disks[0].partitions[0].volume->name = "EFI\n   Mount Point:               /etc\r\n";

    const std::string text = infoOf(machine, "disk0s1");

    EXPECT_THAT(text, Not(HasSubstr("\n   Mount Point:               /etc")));
    EXPECT_THAT(text, Not(HasSubstr("\r")));
}

struct NameCase {
    const char *name;
    const char *fileSystem;
    const char *version;
    const char *personality;
    const char *bundle;
};

class NamesTheFileSystem : public testing::TestWithParam<NameCase> {};

TEST_P(NamesTheFileSystem, AsTheReaderOfTheTextKnowsIt)
{
    Inventory machine = sampleMachine();
    machine.disks[0].partitions[0].volume =
        Volume{.fileSystem = GetParam().fileSystem, .version = GetParam().version, .name = {}, .uuid = {}};

    const std::string text = infoOf(machine, "disk0s1");

    EXPECT_THAT(text, HasSubstr(std::string("   File System Personality:   ") + GetParam().personality + "\n"));
    EXPECT_THAT(text, HasSubstr(std::string("   Type (Bundle):             ") + GetParam().bundle + "\n"));
}

INSTANTIATE_TEST_SUITE_P(
    FileSystems, NamesTheFileSystem,
    testing::Values(
        NameCase{"Fat32", "vfat", "FAT32", "MS-DOS FAT32", "msdos"},
        NameCase{"Fat16", "vfat", "FAT16", "MS-DOS FAT16", "msdos"},
        NameCase{"FatOfUnknownWidth", "vfat", "", "MS-DOS FAT", "msdos"}, NameCase{"Ntfs", "ntfs", "", "NTFS", "ntfs"},
        NameCase{"Exfat", "exfat", "1.0", "ExFAT", "exfat"}, NameCase{"HfsPlus", "hfsplus", "", "HFS+", "hfs"},
        NameCase{"Hfs", "hfs", "", "HFS", "hfs"}, NameCase{"Btrfs", "btrfs", "", "Btrfs", "btrfs"},
        NameCase{"Iso9660", "iso9660", "", "ISO 9660", "cd9660"}, NameCase{"Udf", "udf", "2.01", "UDF", "udf"},
        NameCase{"Apfs", "apfs", "", "APFS", "apfs"}, NameCase{"Ext4", "ext4", "1.0", "ext4", "ext4"},
        NameCase{"Xfs", "xfs", "", "XFS", "xfs"}, NameCase{"Luks", "crypto_LUKS", "2", "LUKS", "luks"},
        NameCase{"Lvm", "LVM2_member", "", "Linux LVM", "lvm"}, NameCase{"Zfs", "zfs_member", "5000", "ZFS", "zfs"},
        NameCase{"Raid", "linux_raid_member", "1.2", "linux_raid_member", "linux_raid_member"},
        NameCase{"Swap", "swap", "1", "Linux Swap", "swap"}),
    [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
