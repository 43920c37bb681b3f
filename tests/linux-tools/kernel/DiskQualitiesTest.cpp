#include "linux-tools/kernel/FakeKernel.h"

#include "kernel/DiskQualities.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

struct PathCase {
    const char *name;
    const char *path;
    const char *protocol;
    bool isExternal = false;
};

class TellsHowADiskIsAttached : public testing::TestWithParam<PathCase> {};

TEST_P(TellsHowADiskIsAttached, FromItsPath)
{
    FakeKernel kernel;
    kernel.addDisk("8:0", GetParam().path, 2048);
    const BlockDevices devices(kernel.roots());

    const Attachment attachment = attachmentOf(devices, devices.all().at(0));

    EXPECT_EQ(attachment.protocol, GetParam().protocol);
    EXPECT_EQ(attachment.isExternal, GetParam().isExternal);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, TellsHowADiskIsAttached,
    testing::Values(
        PathCase{"Sata", "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda", "SATA"},
        PathCase{"Nvme", "pci0000:00/0000:00:1d.0/0000:3d:00.0/nvme/nvme0/nvme0n1", "NVMe"},
        PathCase{"NvmeOfManyPaths", "virtual/nvme-subsystem/nvme-subsys0/nvme0n1", "NVMe"},
        PathCase{"Usb", "pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host3/target3:0:0/3:0:0:0/block/sdb", "USB", true},
        PathCase{"UsbOfASmallBoard", "platform/soc/fe980000.usb/usb1/1-1/1-1:1.0/host0/block/sda", "USB", true},
        PathCase{"FireWire", "pci0000:00/0000:05:00.0/fw1/fw1.0/host6/target6:0:0/6:0:0:0/block/sdc", "FireWire", true},
        PathCase{"Iscsi", "platform/host7/session1/target7:0:0/7:0:0:1/block/sdd", "iSCSI", true},
        PathCase{"Sas", "pci0000:00/0000:01:00.0/host0/port-0:0/end_device-0:0/target0:0:0/0:0:0:0/block/sda", "SAS"},
        PathCase{"Virtio", "pci0000:00/0000:00:02.0/virtio1/block/vda", "Virtio"},
        PathCase{"VirtioScsi", "pci0000:00/0000:00:03.0/virtio0/host2/target2:0:0/2:0:0:0/block/sda", "Virtio"},
        PathCase{"Card", "pci0000:00/0000:02:00.0/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0", "Secure Digital"},
        PathCase{"Xen", "vbd-51712/block/xvda", "Xen"},
        PathCase{"Scsi", "pci0000:00/0000:00:10.0/host2/target2:0:0/2:0:0:0/block/sda", "SCSI"},
        PathCase{"Image", "virtual/block/loop3", "Disk Image"},
        PathCase{"SomethingElse", "platform/something/block/xyz0", ""}),
    [](const auto &info) { return info.param.name; });

TEST(DiskQualities, TakeADiskBehindAThunderboltPortForExternal)
{
    FakeKernel kernel;
    kernel.addDisk("259:0", "pci0000:00/0000:00:1c.0/0000:04:00.0/nvme/nvme1/nvme1n1", 2048);
    kernel.setAttribute("pci0000:00/0000:00:1c.0/0000:04:00.0", "removable", "removable");
    const BlockDevices devices(kernel.roots());

    EXPECT_TRUE(attachmentOf(devices, devices.all().at(0)).isExternal);
}

TEST(DiskQualities, TakeADiskBehindAFixedPortForInternal)
{
    FakeKernel kernel;
    kernel.addDisk("259:0", "pci0000:00/0000:00:1c.0/0000:04:00.0/nvme/nvme1/nvme1n1", 2048);
    kernel.setAttribute("pci0000:00/0000:00:1c.0/0000:04:00.0", "removable", "fixed");
    const BlockDevices devices(kernel.roots());

    EXPECT_FALSE(attachmentOf(devices, devices.all().at(0)).isExternal);
}

TEST(DiskQualities, TellACardFromASolderedChip)
{
    FakeKernel kernel;
    kernel.addDisk("179:0", "pci0000:00/0000:02:00.0/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0", 2048,
                   {{"removable", "0"}, {"device/type", "SD"}, {"device/name", "SD32G"}});
    kernel.addDisk("179:32", "pci0000:00/0000:02:00.1/mmc_host/mmc1/mmc1:0001/block/mmcblk1", 2048,
                   {{"removable", "0"}, {"device/type", "MMC"}, {"device/name", "DG4064"}});
    const BlockDevices devices(kernel.roots());
    const BlockDevice &card = devices.all().at(0);
    const BlockDevice &chip = devices.all().at(1);

    EXPECT_EQ(attachmentOf(devices, card).protocol, "Secure Digital");
    EXPECT_TRUE(isRemovable(devices, card));
    EXPECT_EQ(mediaName(devices, card, attachmentOf(devices, card), std::nullopt), "SD32G (mmcblk0)");
    EXPECT_EQ(attachmentOf(devices, chip).protocol, "eMMC");
    EXPECT_FALSE(isRemovable(devices, chip));
}

} // namespace
} // namespace brindle::tools
