#include "linux-tools/kernel/FakeKernel.h"

#include "inventory/FindDevice.h"
#include "kernel/KernelInventory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kNvme = "pci0000:00/0000:00:1d.0/0000:3d:00.0/nvme/nvme0/nvme0n1";
constexpr const char *kUsb = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/2:0:0:0/block/sdb";

/// disk1 (nvme0n1) with two partitions, and disk16 (sdb) with one.
class MountReaderTest : public testing::Test {
protected:
    MountReaderTest()
    {
        m_kernel.addDisk("259:0", kNvme, 1000000, {{"diskseq", "1"}});
        m_kernel.addPartition("259:1", std::string(kNvme) + "/nvme0n1p1", 2048, 1000);
        m_kernel.addPartition("259:2", std::string(kNvme) + "/nvme0n1p2", 4096, 100000);
        m_kernel.addDisk("8:16", kUsb, 1000000);
        m_kernel.addPartition("8:17", std::string(kUsb) + "/sdb1", 2048, 1000);
    }

    [[nodiscard]] std::vector<std::string> mountsOf(const std::string &mountInfo)
    {
        m_kernel.setMounts(mountInfo);
        m_inventory = KernelInventory(m_kernel.roots()).read({.name = {}, .withMounts = true});
        std::vector<std::string> found;
        for (const Mount &mount : m_inventory.mounts)
            found.push_back(mount.carrier + " " + mount.mountPoint);
        return found;
    }

    FakeKernel m_kernel;
    Inventory m_inventory;
};

TEST_F(MountReaderTest, NamesThePartitionThatIsMounted)
{
    EXPECT_THAT(mountsOf("1 0 259:2 / / rw - ext4 /dev/nvme0n1p2 rw\n"
                         "2 1 259:1 / /boot/efi ro - vfat /dev/nvme0n1p1 rw\n"
                         "3 1 0:20 / /proc rw - proc proc rw\n"
                         "4 1 0:21 / /run rw - tmpfs tmpfs rw\n"),
                ElementsAre("disk1s2 /", "disk1s1 /boot/efi"));
    EXPECT_FALSE(m_inventory.mounts[0].isReadOnly);
    EXPECT_TRUE(m_inventory.mounts[1].isReadOnly);
}

TEST_F(MountReaderTest, NamesTheDiskThatIsMountedWithoutATable)
{
    EXPECT_THAT(mountsOf("1 0 8:16 / /mnt rw - vfat /dev/sdb rw\n"), ElementsAre("disk16 /mnt"));
}

TEST_F(MountReaderTest, TellsAFolderOfAFileSystemFromAllOfIt)
{
    ASSERT_THAT(mountsOf("1 0 8:17 /sub /a rw - ext4 /dev/sdb1 rw\n2 0 8:17 / /b rw - ext4 /dev/sdb1 rw\n"),
                ElementsAre("disk16s1 /a", "disk16s1 /b"));

    EXPECT_FALSE(m_inventory.mounts[0].isWhole);
    EXPECT_EQ(findDevice(m_inventory, "disk16s1")->mount->mountPoint, "/b");
}

TEST_F(MountReaderTest, TellsWhatIsMountedWhereTheVolumeCannotBeRead)
{
    ASSERT_THAT(mountsOf("1 0 8:17 / /a rw - xfs /dev/sdb1 rw\n"), ElementsAre("disk16s1 /a"));

    ASSERT_TRUE(m_inventory.mounts[0].volume);
    EXPECT_EQ(m_inventory.mounts[0].volume->fileSystem, "xfs");
}

TEST_F(MountReaderTest, GoesThroughAVolumeGroupAndEncryptionToTheFirstPartition)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"dm-0"});
    m_kernel.addUdevRecord("253:1", {"ID_FS_TYPE=ext4", "ID_FS_LABEL_ENC=root"});

    ASSERT_THAT(mountsOf("1 0 253:1 / / rw - ext4 /dev/mapper/vg-root rw\n"), ElementsAre("disk1s2 /"));

    ASSERT_TRUE(m_inventory.mounts[0].volume);
    EXPECT_EQ(m_inventory.mounts[0].volume->fileSystem, "ext4");
    EXPECT_EQ(m_inventory.mounts[0].volume->name, "root");
}

TEST_F(MountReaderTest, GoesThroughARaidToItsFirstPartition)
{
    m_kernel.addVirtual("9:0", "md0", {"sdb1", "nvme0n1p2"});

    EXPECT_THAT(mountsOf("1 0 9:0 / / rw - ext4 /dev/md0 rw\n"), ElementsAre("disk1s2 /"));
}

TEST_F(MountReaderTest, GoesThroughAPartitionOfARaid)
{
    m_kernel.addVirtual("9:0", "md0", {"sdb1"});
    m_kernel.addPartition("259:9", "virtual/block/md0/md0p1", 2048, 1000);

    EXPECT_THAT(mountsOf("1 0 259:9 / / rw - ext4 /dev/md0p1 rw\n"), ElementsAre("disk16s1 /"));
}

TEST_F(MountReaderTest, NamesThePartitionOfBtrfsBySource)
{
    EXPECT_THAT(mountsOf("1 0 0:30 /@rootfs / rw - btrfs /dev/nvme0n1p2 rw,subvol=/@rootfs\n"
                         "2 0 0:30 /@home /home rw - btrfs /dev/nvme0n1p2 rw,subvol=/@home\n"),
                ElementsAre("disk1s2 /", "disk1s2 /home"));
}

TEST_F(MountReaderTest, NamesTheFirstOfTheDevicesThatBcachefsLists)
{
    EXPECT_THAT(mountsOf("1 0 0:31 / / rw - bcachefs /dev/sdb1:/dev/nvme0n1p2 rw\n"), ElementsAre("disk16s1 /"));
}

TEST_F(MountReaderTest, FindsAMemberOfAZfsPoolByThePoolsName)
{
    m_kernel.addUdevRecord("8:17", {"ID_FS_TYPE=zfs_member", "ID_FS_LABEL_ENC=rpool"});

    EXPECT_THAT(mountsOf("1 0 0:32 / / rw - zfs rpool/ROOT/debian rw\n"), ElementsAre("disk16s1 /"));
}

TEST_F(MountReaderTest, KnowsNothingOfAZfsPoolWithoutMembers)
{
    EXPECT_THAT(mountsOf("1 0 0:32 / / rw - zfs rpool/ROOT/debian rw\n"), IsEmpty());
}

TEST_F(MountReaderTest, FollowsAnOverlayToTheDiskOfItsLayers)
{
    EXPECT_THAT(mountsOf("1 0 259:2 / /media/root-ro ro - ext4 /dev/nvme0n1p2 rw\n"
                         "2 0 0:40 / /media/root-rw rw - tmpfs tmpfs rw\n"
                         "3 0 0:41 / / rw - overlay overlay rw,lowerdir=/media/root-ro,upperdir=/media/root-rw/up\n"),
                ElementsAre("disk1s2 /media/root-ro", "disk1s2 /"));
    EXPECT_EQ(findDevice(m_inventory, "/")->partition->identifier, "disk1s2");
}

TEST_F(MountReaderTest, FollowsALiveSystemToTheStickThatItsImageLiesOn)
{
    m_kernel.addDisk("7:0", "virtual/block/loop0", 4096,
                     {{"diskseq", "20"}, {"loop/backing_file", "/run/live/medium/live/filesystem.squashfs"}});

    EXPECT_THAT(mountsOf("1 0 8:17 / /run/live/medium ro - iso9660 /dev/sdb1 ro\n"
                         "2 0 7:0 / /run/live/rootfs ro - squashfs /dev/loop0 ro\n"
                         "3 0 0:41 / / rw - overlay overlay rw,lowerdir=/run/live/rootfs/,upperdir=/run/live/cow\n"),
                ElementsAre("disk16s1 /run/live/medium", "disk20 /run/live/rootfs", "disk16s1 /"));
}

TEST_F(MountReaderTest, FindsTheDiskOfAContainerByTheFilesThatAreMountedIntoIt)
{
    EXPECT_THAT(
        mountsOf("1 0 0:41 / / rw - overlay overlay "
                 "rw,lowerdir=/var/lib/docker/overlay2/l/A:/var/lib/docker/overlay2/l/B,upperdir=/var/lib/docker/x\n"
                 "2 1 8:17 /srv/data /data rw - ext4 /dev/sdb1 rw\n"
                 "3 1 259:2 /var/lib/docker/containers/1/hosts /etc/hosts rw - ext4 /dev/nvme0n1p2 rw\n"),
        ElementsAre("disk1s2 /", "disk16s1 /data", "disk1s2 /etc/hosts"));
}

TEST_F(MountReaderTest, KnowsNothingOfAContainerThatSeesNoDisk)
{
    EXPECT_THAT(mountsOf("1 0 0:41 / / rw - overlay overlay rw,lowerdir=/var/lib/a,upperdir=/var/lib/b\n"), IsEmpty());
}

TEST_F(MountReaderTest, EndsWhereDevicesAndOverlaysLieOnThemselves)
{
    m_kernel.addVirtual("253:0", "dm-0", {"dm-1"});
    m_kernel.addVirtual("253:1", "dm-1", {"dm-0"});

    EXPECT_THAT(mountsOf("1 0 253:1 / /mnt rw - ext4 /dev/dm-1 rw\n"
                         "2 0 0:41 / /a rw - overlay overlay rw,lowerdir=/b/x\n"
                         "3 0 0:42 / /b rw - overlay overlay rw,lowerdir=/a/x\n"),
                IsEmpty());
}

TEST_F(MountReaderTest, TellsTheSpaceOfAFileSystemOnce)
{
    struct stat status {};
    ASSERT_EQ(::stat(m_kernel.root().c_str(), &status), 0);
    const std::string number = fmt::format("{}:{}", major(status.st_dev), minor(status.st_dev));
    m_kernel.addDisk(number, "pci0000:00/0000:00:02.0/virtio9/block/vdz", 4096, {{"diskseq", "30"}});
    m_kernel.setMounts(fmt::format("1 0 {0} / {1} rw - ext4 /dev/vdz rw\n2 0 {0} / {1} rw - ext4 /dev/vdz rw\n", number,
                                   m_kernel.root().string()));

    const Inventory inventory =
        KernelInventory(m_kernel.roots()).read({.name = {}, .withMounts = true, .withSpace = true});

    ASSERT_EQ(inventory.mounts.size(), 2U);
    ASSERT_TRUE(inventory.mounts[0].space);
    EXPECT_GT(inventory.mounts[0].space->totalBytes, 0U);
    EXPECT_GE(inventory.mounts[0].space->totalBytes, inventory.mounts[0].space->usedBytes);
    EXPECT_FALSE(inventory.mounts[1].space);
}

TEST_F(MountReaderTest, TellsNoSpaceOfAFileSystemThatAnotherWasMountedOver)
{
    m_kernel.setMounts(fmt::format("1 0 8:17 / {} rw - ext4 /dev/sdb1 rw\n", m_kernel.root().string()));

    const Inventory inventory =
        KernelInventory(m_kernel.roots()).read({.name = {}, .withMounts = true, .withSpace = true});

    ASSERT_EQ(inventory.mounts.size(), 1U);
    EXPECT_FALSE(inventory.mounts[0].space);
}

} // namespace
} // namespace brindle::tools
