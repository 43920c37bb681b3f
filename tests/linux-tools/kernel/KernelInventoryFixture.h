#pragma once

#include "linux-tools/kernel/FakeKernel.h"

#include "kernel/KernelInventory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle::tools {

inline constexpr const char *kSda = "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda";
inline constexpr const char *kNvme = "pci0000:00/0000:00:1d.0/0000:3d:00.0/nvme/nvme0/nvme0n1";
inline constexpr const char *kUsb = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/2:0:0:0/block/sdb";
inline constexpr const char *kOptical = "pci0000:00/0000:00:17.0/ata2/host1/target1:0:0/1:0:0:0/block/sr0";
inline constexpr const char *kLoop = "virtual/block/loop0";

inline const Scope kList{.name = {}, .withContents = true};

inline std::vector<std::string> identifiers(const Inventory &inventory)
{
    std::vector<std::string> found;
    for (const Disk &disk : inventory.disks)
        found.push_back(disk.identifier);
    return found;
}

inline std::vector<std::string> partitionTypes(const Disk &disk)
{
    std::vector<std::string> types;
    for (const Partition &partition : disk.partitions)
        types.push_back(partition.identifier + " " + partition.type);
    return types;
}

class KernelInventoryTest : public testing::Test {
protected:
    [[nodiscard]] Inventory read(const Scope &scope = kList) const
    {
        return KernelInventory(m_kernel.roots()).read(scope);
    }

    /// A SATA disk as udev knows it: an EFI partition and one with an ext4 file system.
    void addSataDisk()
    {
        m_kernel.addDisk("8:0", kSda, 1000215216, {{"diskseq", "3"}});
        m_kernel.addUdevRecord("8:0", {"ID_PART_TABLE_TYPE=gpt", "ID_BUS=ata", "ID_MODEL_ENC=Samsung\\x20SSD\\x20860"});
        m_kernel.addPartition("8:1", std::string(kSda) + "/sda1", 2048, 409600);
        m_kernel.addUdevRecord("8:1",
                               {"ID_PART_ENTRY_SCHEME=gpt", "ID_PART_ENTRY_TYPE=c12a7328-f81f-11d2-ba4b-00a0c93ec93b",
                                "ID_PART_ENTRY_UUID=8d1f4a70-7ae9-4b3c-9d2a-00a1b2c3d4e5", "ID_FS_TYPE=vfat",
                                "ID_FS_VERSION=FAT32", "ID_FS_LABEL_ENC=EFI", "ID_FS_UUID=67E3-17ED"});
        m_kernel.addPartition("8:2", std::string(kSda) + "/sda2", 411648, 999800000);
        m_kernel.addUdevRecord("8:2", {"ID_PART_ENTRY_SCHEME=gpt",
                                       "ID_PART_ENTRY_TYPE=0fc63daf-8483-4772-8e79-3d69d8477de4", "ID_FS_TYPE=ext4"});
    }

    FakeKernel m_kernel;
};

} // namespace brindle::tools
