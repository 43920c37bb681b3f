// What an inventory tells of a disk as a thing: its name, its bus, its kind.

#include "linux-tools/kernel/KernelInventoryFixture.h"

namespace brindle::tools {
namespace {

TEST_F(KernelInventoryTest, TellsTheQualitiesOfADisk)
{
    m_kernel.addDisk("8:16", kUsb, 8192,
                     {{"ro", "1"},
                      {"removable", "1"},
                      {"queue/rotational", "0"},
                      {"queue/discard_max_bytes", "4294966784"},
                      {"queue/logical_block_size", "4096"},
                      {"device/vendor", "SanDisk "},
                      {"device/model", "Ultra Fit       "}});
    m_kernel.addUdevRecord("8:16", {"ID_BUS=usb"});

    const Disk disk = read({.name = {}, .withDetails = true}).disks.at(0);

    EXPECT_EQ(disk.mediaName, "SanDisk Ultra Fit (sdb)");
    EXPECT_EQ(disk.protocol, "USB");
    EXPECT_EQ(disk.blockBytes, 4096U);
    EXPECT_TRUE(disk.isExternal);
    EXPECT_TRUE(disk.isReadOnly);
    EXPECT_TRUE(disk.isRemovable);
    EXPECT_TRUE(disk.isSolidState);
    EXPECT_TRUE(disk.supportsTrim);
    EXPECT_EQ(disk.smart, Smart::notSupported);
}

TEST_F(KernelInventoryTest, TellsTheQualitiesThatADiskDoesNotHave)
{
    m_kernel.addDisk("8:16", kUsb, 8192,
                     {{"ro", "0"}, {"removable", "0"}, {"queue/rotational", "1"}, {"queue/discard_max_bytes", "0"}});

    const Disk disk = read({.name = {}, .withDetails = true}).disks.at(0);

    EXPECT_EQ(disk.mediaName, "USB Disk (sdb)");
    EXPECT_FALSE(disk.isReadOnly);
    EXPECT_FALSE(disk.isRemovable);
    EXPECT_FALSE(disk.isSolidState);
    EXPECT_FALSE(disk.supportsTrim);
}

TEST_F(KernelInventoryTest, TakesTheWholeNameOfAnAtaDriveFromUdev)
{
    addSataDisk();
    m_kernel.setAttribute(kSda, "device/vendor", "ATA     ");
    m_kernel.setAttribute(kSda, "device/model", "Samsung SSD 86");

    EXPECT_EQ(read({.name = {}, .withDetails = true}).disks.at(0).mediaName, "Samsung SSD 860 (sda)");
}

} // namespace
} // namespace brindle::tools
