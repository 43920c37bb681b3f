// Which devices are opened for an inventory, and how often.

#include "linux-tools/kernel/KernelInventoryFixture.h"
#include "linux-tools/kernel/OpenCounter.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(KernelInventoryTest, NeverOpensADiskThatTheKernelHasSentToSleep)
{
    m_kernel.addDisk("8:16", kUsb, 8192, {{"device/power/runtime_status", "suspended"}});
    m_kernel.writeNode("sdb", mbrWith({{0xEF, 2048, 4096}}));

    EXPECT_EQ(read().disks.at(0).scheme, "");

    m_kernel.setAttribute(kUsb, "device/power/runtime_status", "active");
    EXPECT_EQ(read().disks.at(0).scheme, "FDisk_partition_scheme");
}

TEST_F(KernelInventoryTest, NeverReadsADiskWithAMotorThatDoesNotSayThatItRuns)
{
    m_kernel.addDisk("8:0", kSda, 8192, {{"queue/rotational", "1"}});
    m_kernel.writeNode("sda", mbrWith({{0xEF, 2048, 4096}}));

    EXPECT_EQ(read().disks.at(0).scheme, "");

    m_kernel.setAttribute(kSda, "queue/rotational", "0");
    EXPECT_EQ(read().disks.at(0).scheme, "FDisk_partition_scheme");
}

TEST_F(KernelInventoryTest, DoesNotOpenABlankDiskThatUdevKnows)
{
    m_kernel.addDisk("8:16", kUsb, 8192);
    m_kernel.addUdevRecord("8:16", {"ID_BUS=usb"});
    m_kernel.writeNode("sdb", mbrWith({{0xEF, 2048, 4096}}));

    EXPECT_EQ(read().disks.at(0).scheme, "");
}

TEST_F(KernelInventoryTest, OpensEachDeviceOnceForAllThatIsAsked)
{
    m_kernel.addDisk("259:0", kNvme, 8192, {{"diskseq", "5"}});
    m_kernel.writeNode("nvme0n1", mbrWith({{0xEF, 2048, 4096}}));
    m_kernel.addPartition("259:1", std::string(kNvme) + "/nvme0n1p1", 2048, 4096);
    m_kernel.writeNode("nvme0n1p1", fatWith("EFI", 4096));
    const OpenCounter counter(m_kernel.root() / "dev");

    const Inventory inventory = read({.name = {}, .withContents = true, .withDetails = true, .withMounts = true});

    EXPECT_EQ(inventory.disks.at(0).partitions.at(0).volume->name, "EFI");
    EXPECT_THAT(counter.counts(), ElementsAre(Pair("nvme0n1", 1), Pair("nvme0n1p1", 1)));
}

TEST_F(KernelInventoryTest, OpensNoDeviceThatUdevKnows)
{
    addSataDisk();
    m_kernel.writeNode("sda", "");
    m_kernel.writeNode("sda1", "");
    const OpenCounter counter(m_kernel.root() / "dev");

    EXPECT_EQ(read().disks.size(), 1U);

    EXPECT_THAT(counter.counts(), IsEmpty());
}

} // namespace
} // namespace brindle::tools
