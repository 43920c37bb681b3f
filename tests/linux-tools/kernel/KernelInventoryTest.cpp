#include "linux-tools/kernel/KernelInventoryFixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <tuple>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(KernelInventoryTest, IsEmptyWhereThereIsNoBlockDevice)
{
    EXPECT_THAT(read().disks, IsEmpty());
}

TEST_F(KernelInventoryTest, TellsWhatUdevKnowsWithoutTheDevice)
{
    addSataDisk();

    const Inventory inventory = read();

    ASSERT_THAT(identifiers(inventory), ElementsAre("disk3"));
    const Disk &disk = inventory.disks[0];
    EXPECT_EQ(disk.node, "/dev/sda");
    EXPECT_EQ(disk.scheme, "GUID_partition_scheme");
    EXPECT_EQ(disk.sizeBytes, 1000215216ULL * 512);
    EXPECT_FALSE(disk.isImage);
    EXPECT_FALSE(disk.isExternal);
    EXPECT_THAT(partitionTypes(disk), ElementsAre("disk3s1 EFI", "disk3s2 Linux Filesystem"));
    EXPECT_EQ(disk.partitions[0].node, "/dev/sda1");
    EXPECT_EQ(disk.partitions[0].uuid, "8d1f4a70-7ae9-4b3c-9d2a-00a1b2c3d4e5");
    EXPECT_EQ(disk.partitions[0].sizeBytes, 409600ULL * 512);
    ASSERT_TRUE(disk.partitions[0].volume);
    EXPECT_EQ(disk.partitions[0].volume->name, "EFI");
    EXPECT_EQ(disk.partitions[0].volume->version, "FAT32");
}

TEST_F(KernelInventoryTest, CountsDisksAsTheKernelDoesAndSortsByNumber)
{
    m_kernel.addDisk("8:0", kSda, 2048, {{"diskseq", "12"}});
    m_kernel.addDisk("259:0", kNvme, 2048, {{"diskseq", "9"}});

    EXPECT_THAT(identifiers(read()), ElementsAre("disk9", "disk12"));
}

TEST_F(KernelInventoryTest, CountsFoldersOfSysfsWhereTheKernelDoesNotCountDisks)
{
    m_kernel.addDisk("8:0", kSda, 2048, {{"diskseq", ""}});
    m_kernel.addDisk("259:0", kNvme, 2048, {{"diskseq", ""}});

    const std::vector<std::string> first = identifiers(read());
    const std::vector<std::string> second = identifiers(read());

    ASSERT_EQ(first.size(), 2U);
    EXPECT_NE(first[0], first[1]);
    EXPECT_NE(first[0], "disk0");
    EXPECT_EQ(first, second);
}

TEST_F(KernelInventoryTest, NumbersPartitionsAsTheKernelDoes)
{
    m_kernel.addDisk("259:0", kNvme, 4096, {{"diskseq", "2"}});
    m_kernel.addPartition("259:1", std::string(kNvme) + "/nvme0n1p7", 2048, 100);
    m_kernel.addPartition("259:2", std::string(kNvme) + "/nvme0n1p12", 1024, 100);
    m_kernel.addDisk("8:0", kSda, 4096, {{"diskseq", "4"}});
    m_kernel.addPartition("8:10", std::string(kSda) + "/sda10", 64, 100);

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 2U);
    // By their place on the disk, not by their number.
    EXPECT_THAT(partitionTypes(inventory.disks[0]), ElementsAre("disk2s12 ", "disk2s7 "));
    EXPECT_THAT(partitionTypes(inventory.disks[1]), ElementsAre("disk4s10 "));
}

TEST_F(KernelInventoryTest, LeavesOutWhatIsMadeOfOtherDevicesAndWhatIsNoDisk)
{
    m_kernel.addVirtual("253:0", "dm-0", {"sda1"});
    m_kernel.addVirtual("9:0", "md0", {"sda2"});
    m_kernel.addVirtual("252:0", "zram0", {});
    m_kernel.addVirtual("1:0", "ram0", {});
    m_kernel.addDisk("2:0", "platform/floppy.0/block/fd0", 8);
    m_kernel.addDisk("179:8", "platform/mmc/mmc_host/mmc0/mmc0:0001/block/mmcblk0/mmcblk0boot0", 8192);
    m_kernel.addDisk("31:0", "platform/flash/mtd/mtd0/mtdblock0", 8192);

    EXPECT_THAT(read().disks, IsEmpty());
}

TEST_F(KernelInventoryTest, LeavesOutDrivesWithoutAMedium)
{
    m_kernel.addDisk("8:16", kUsb, 0);
    m_kernel.addDisk("7:0", kLoop, 0);
    m_kernel.addDisk("11:0", kOptical, 2097151);
    m_kernel.addUdevRecord("11:0", {"ID_CDROM=1"});

    EXPECT_THAT(read().disks, IsEmpty());
}

TEST_F(KernelInventoryTest, LeavesOutAnOpticalDriveThatCannotBeAsked)
{
    m_kernel.addDisk("11:0", kOptical, 2097151);

    EXPECT_THAT(read().disks, IsEmpty());
}

TEST_F(KernelInventoryTest, ListsAnOpticalDriveWithAMedium)
{
    m_kernel.addDisk("11:0", kOptical, 2000000);
    m_kernel.addUdevRecord("11:0", {"ID_CDROM=1", "ID_CDROM_MEDIA=1", "ID_FS_TYPE=iso9660", "ID_FS_LABEL_ENC=RESCUE"});

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    EXPECT_EQ(inventory.disks[0].volume->name, "RESCUE");
}

TEST_F(KernelInventoryTest, TakesALoopDeviceOverAFileForADiskImage)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}, {"loop/backing_file", "/home/me/rescue disk.img"}});

    const Inventory inventory = read({.name = {}, .withDetails = true});

    ASSERT_THAT(identifiers(inventory), ElementsAre("disk11"));
    EXPECT_TRUE(inventory.disks[0].isImage);
    EXPECT_EQ(inventory.disks[0].protocol, "Disk Image");
    EXPECT_EQ(inventory.disks[0].mediaName, "rescue disk.img (loop0)");
}

TEST_F(KernelInventoryTest, ReadsTheDeviceWhereUdevDoesNotRun)
{
    m_kernel.addDisk("8:16", kUsb, 8192, {{"diskseq", "5"}});
    m_kernel.writeNode("sdb", mbrWith({{0xEF, 2048, 4096}, {0x83, 6144, 2048}}));
    m_kernel.addPartition("8:17", std::string(kUsb) + "/sdb1", 2048, 4096);
    m_kernel.writeNode("sdb1", fatWith("STICKEFI", 4096));
    m_kernel.addPartition("8:18", std::string(kUsb) + "/sdb2", 6144, 2048);

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    EXPECT_EQ(inventory.disks[0].scheme, "FDisk_partition_scheme");
    EXPECT_THAT(partitionTypes(inventory.disks[0]), ElementsAre("disk5s1 EFI", "disk5s2 Linux Filesystem"));
    const Partition &efi = inventory.disks[0].partitions[0];
    EXPECT_EQ(efi.uuid, "1234abcd-01");
    ASSERT_TRUE(efi.volume);
    EXPECT_EQ(efi.volume->fileSystem, "vfat");
    EXPECT_EQ(efi.volume->name, "STICKEFI");
    EXPECT_FALSE(inventory.disks[0].partitions[1].volume); // Its node can't be opened.
}

TEST_F(KernelInventoryTest, ListsThePartitionsOfATableThatTheKernelHasNotRead)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}});
    m_kernel.addUdevRecord("7:0", {"ID_PART_TABLE_TYPE=dos"});
    std::string image = mbrWith({{0xEF, 2048, 4096}});
    image.replace(2048 * 512, 4096 * 512, fatWith("LOOPEFI", 4096));
    m_kernel.writeNode("loop0", image);

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    ASSERT_THAT(partitionTypes(inventory.disks[0]), ElementsAre("disk11s1 EFI"));
    const Partition &efi = inventory.disks[0].partitions[0];
    EXPECT_EQ(efi.node, "");
    EXPECT_EQ(efi.offsetBytes, 2048U * 512);
    EXPECT_EQ(efi.sizeBytes, 4096U * 512);
    ASSERT_TRUE(efi.volume);
    EXPECT_EQ(efi.volume->name, "LOOPEFI");
}

TEST_F(KernelInventoryTest, SurvivesEntriesThatOverlapAndLeaveTheDisk)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}});
    m_kernel.writeNode("loop0", mbrWith({{0xEF, 2048, 4096}, {0x83, 2048, 6144}, {0x07, 4000000000, 4000000000}}));

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    EXPECT_EQ(inventory.disks[0].scheme, "FDisk_partition_scheme");
}

TEST_F(KernelInventoryTest, TellsNoVolumeOfANeighbourInAnEntryWithoutSize)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}});
    std::string image = gptWithEfi(2048, 2047);
    image.replace(2048 * 512, 4096 * 512, fatWith("NEIGHBOUR", 4096));
    m_kernel.writeNode("loop0", image);

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    ASSERT_THAT(partitionTypes(inventory.disks[0]), ElementsAre("disk11s1 EFI"));
    EXPECT_EQ(inventory.disks[0].partitions[0].sizeBytes, 0U);
    EXPECT_FALSE(inventory.disks[0].partitions[0].volume);
}

TEST_F(KernelInventoryTest, LeavesOutTheEntryThatHoldsLogicalPartitions)
{
    m_kernel.addDisk("8:16", kUsb, 8192, {{"diskseq", "5"}});
    m_kernel.addUdevRecord("8:16", {"ID_PART_TABLE_TYPE=dos"});
    for (const auto &[number, name, type] :
         {std::tuple("8:17", "/sdb1", "0x7"), {"8:18", "/sdb2", "0x5"}, {"8:21", "/sdb5", "0x83"}}) {
        m_kernel.addPartition(number, std::string(kUsb) + name, 2048, 2048);
        m_kernel.addUdevRecord(number, {"ID_PART_ENTRY_SCHEME=dos", std::string("ID_PART_ENTRY_TYPE=") + type});
    }

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    EXPECT_THAT(partitionTypes(inventory.disks[0]), ElementsAre("disk5s1 Windows_NTFS", "disk5s5 Linux Filesystem"));
}

TEST_F(KernelInventoryTest, SurvivesADiskThatVanishesMeanwhile)
{
    addSataDisk();
    std::filesystem::remove_all(m_kernel.root() / "sys/devices" / kSda);

    EXPECT_THAT(read().disks, IsEmpty());
}

TEST_F(KernelInventoryTest, SurvivesAPartitionThatVanishesMeanwhile)
{
    addSataDisk();
    std::filesystem::remove_all(m_kernel.root() / "sys/devices" / kSda / "sda1");

    const Inventory inventory = read();

    ASSERT_EQ(inventory.disks.size(), 1U);
    EXPECT_EQ(inventory.disks[0].partitions.size(), 2U);
}

TEST_F(KernelInventoryTest, ReadsOnlyTheDiskThatANameIsAbout)
{
    addSataDisk();
    m_kernel.addDisk("259:0", kNvme, 4096, {{"diskseq", "2"}});

    EXPECT_THAT(identifiers(read({.name = "disk3s1"})), ElementsAre("disk3"));
    EXPECT_THAT(identifiers(read({.name = "/dev/disk2"})), ElementsAre("disk2"));
    EXPECT_THAT(identifiers(read({.name = "/dev/sda1"})), ElementsAre("disk3"));
    EXPECT_THAT(identifiers(read({.name = "/dev/nvme0n1"})), ElementsAre("disk2"));
    EXPECT_THAT(identifiers(read({.name = "disk99"})), IsEmpty());
    EXPECT_THAT(identifiers(read({.name = "EFI"})), ElementsAre("disk2", "disk3"));
    EXPECT_THAT(identifiers(read({.name = "/"})), ElementsAre("disk2", "disk3"));
}

TEST_F(KernelInventoryTest, KeepsHostileNamesAsTheBytesThatTheyAre)
{
    addSataDisk();
    m_kernel.addUdevRecord("8:1",
                           {"ID_PART_ENTRY_TYPE=c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "ID_PART_ENTRY_SCHEME=gpt",
                            "ID_FS_TYPE=vfat", "ID_FS_LABEL_ENC=A\\x0a\\xff" + std::string(255, 'x')});

    EXPECT_EQ(read().disks.at(0).partitions.at(0).volume->name, "A\n\xFF" + std::string(255, 'x'));
}

} // namespace
} // namespace brindle::tools
