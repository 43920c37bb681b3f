#include "linux-tools/kernel/FakeKernel.h"
#include "linux-tools/kernel/OpenCounter.h"

#include "inventory/FindDevice.h"
#include "kernel/KernelInventory.h"
#include "text/DiskutilText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const char *kNvme = "pci0000:00/0000:00:1d.0/0000:3d:00.0/nvme/nvme0/nvme0n1";
constexpr const char *kUsb = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/2:0:0:0/block/sdb";
constexpr const char *kLoop = "virtual/block/loop0";

/// Two partitions that udev knows nothing of; what is opened while a name is asked for.
class NamedDeviceTest : public testing::Test {
protected:
    NamedDeviceTest()
    {
        m_kernel.addDisk("259:0", kNvme, 12288, {{"diskseq", "5"}});
        m_kernel.writeNode("nvme0n1", mbrWith({{0xEF, 2048, 4096}, {0x83, 6144, 4096}}));
        m_kernel.addPartition("259:1", std::string(kNvme) + "/nvme0n1p1", 2048, 4096);
        m_kernel.writeNode("nvme0n1p1", fatWith("EFI", 4096));
        m_kernel.addPartition("259:2", std::string(kNvme) + "/nvme0n1p2", 6144, 4096);
        m_kernel.writeNode("nvme0n1p2", fatWith("DATA", 4096));
    }

    [[nodiscard]] Inventory read(const Scope &scope) const { return KernelInventory(m_kernel.roots()).read(scope); }

    [[nodiscard]] Inventory readNamed(const std::string &name) const
    {
        return read({.name = name, .onlyNamed = true, .withContents = true, .withDetails = true, .withMounts = true});
    }

    [[nodiscard]] std::string identifierOf(const std::string &name) const
    {
        const Inventory inventory = readNamed(name);
        const auto device = findDevice(inventory, name);
        if (!device)
            return "none";
        return device->partition ? device->partition->identifier : device->disk->identifier;
    }

    [[nodiscard]] std::map<std::string, int> openedFor(const std::string &name) const
    {
        const OpenCounter counter(m_kernel.root() / "dev");
        EXPECT_NE(identifierOf(name), "none");
        return counter.counts();
    }

    FakeKernel m_kernel;
};

TEST_F(NamedDeviceTest, OpensNoNeighbourOfWhatIsNamed)
{
    const auto disk = Pair("nvme0n1", 1);
    const auto second = Pair("nvme0n1p2", 1);
    m_kernel.setMounts("1 0 259:2 / /data rw - vfat /dev/nvme0n1p2 rw\n");

    EXPECT_THAT(openedFor("disk5"), ElementsAre(disk));
    EXPECT_THAT(openedFor("/dev/nvme0n1"), ElementsAre(disk));
    EXPECT_THAT(openedFor("disk5s2"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("/dev/nvme0n1p2"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("/data"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("DATA"), ElementsAre(disk, Pair("nvme0n1p1", 1), second));
}

TEST_F(NamedDeviceTest, TellsOfWhatIsNamedAsMuchAsOfAllTogether)
{
    const Inventory all = read({.name = {}, .withContents = true, .withDetails = true});

    EXPECT_EQ(infoText(*findDevice(readNamed("disk5"), "disk5")), infoText(*findDevice(all, "disk5")));
    EXPECT_EQ(infoText(*findDevice(readNamed("disk5s1"), "disk5s1")), infoText(*findDevice(all, "disk5s1")));
}

TEST_F(NamedDeviceTest, DoesNotReadTheTableOfADiskThatUdevKnows)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}});
    m_kernel.addUdevRecord("7:0", {"ID_PART_TABLE_TYPE=dos"});
    m_kernel.writeNode("loop0", mbrWith({{0xEF, 2048, 4096}}));

    EXPECT_THAT(openedFor("disk11"), IsEmpty());
    EXPECT_THAT(openedFor("disk11s1"), ElementsAre(Pair("loop0", 1)));
}

TEST_F(NamedDeviceTest, TakesALinkForTheDeviceWhoseNumberItLeadsTo)
{
    const auto number = m_kernel.linkToSomeBlockDevice("disk/by-label/STICK");
    if (!number)
        GTEST_SKIP() << "there is no block device in /dev";
    m_kernel.addDisk("8:16", kUsb, 8192, {{"diskseq", "8"}});
    m_kernel.addPartition(*number, std::string(kUsb) + "/sdb3", 2048, 4096);

    EXPECT_EQ(identifierOf("/dev/disk/by-label/STICK"), "disk8s3");
    EXPECT_EQ(identifierOf("/dev/disk/by-label/EFI"), "none");
}

TEST_F(NamedDeviceTest, TakesAMappedDeviceForThePartitionThatCarriesIt)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"dm-0"});

    EXPECT_EQ(identifierOf("/dev/dm-1"), "disk5s2");
}

TEST_F(NamedDeviceTest, TellsTheMountOfTheMappedDeviceThatIsNamed)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"nvme0n1p2"});
    m_kernel.setMounts("1 0 253:0 / / rw - ext4 /dev/mapper/vg-root rw\n"
                       "2 1 253:1 / /home rw - ext4 /dev/mapper/vg-home rw\n");

    const Inventory inventory = readNamed("/dev/dm-1");

    EXPECT_EQ(findDevice(inventory, "/dev/dm-1")->mount->mountPoint, "/home");
}

TEST_F(NamedDeviceTest, KnowsNoMappedDeviceThatNoDiskCarries)
{
    m_kernel.addVirtual("252:0", "zram0", {});

    EXPECT_EQ(identifierOf("/dev/zram0"), "none");
}

} // namespace
} // namespace brindle::tools
