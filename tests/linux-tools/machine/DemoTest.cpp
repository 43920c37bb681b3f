#include "TestMachine.h"

#include "inventory/FindDevice.h"
#include "machine/MachineFileInventory.h"
#include "machine/Plug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

/// A fresh copy of the shipped demo.
class Demo : public testing::Test {
protected:
    Demo() : root(m_place.root() / "demo") { copyMachine(DEMO_ROOT, root); }

    [[nodiscard]] Inventory inventory() const
    {
        const MachineFile file(root);
        Scope scope;
        scope.withSpace = true;
        return MachineFileInventory(file).read(scope);
    }

    [[nodiscard]] std::vector<std::string> valuesOf(std::string (*value)(const Disk &)) const
    {
        std::vector<std::string> values;
        for (const Disk &disk : inventory().disks)
            values.push_back(value(disk));
        return values;
    }

    const TestMachine m_place;
    const fs::path root;
};

TEST_F(Demo, HasSixDisks)
{
    EXPECT_THAT(valuesOf([](const Disk &disk) { return disk.protocol; }),
                testing::ElementsAre("PCI-Express", "SATA", "USB", "USB", "Secure Digital", "Disk Image"));
}

TEST_F(Demo, HasAGoodABadAndAnUnknownHealth)
{
    const Inventory machine = inventory();

    EXPECT_EQ(machine.disks[0].smart, Smart::verified);
    EXPECT_EQ(machine.disks[3].smart, Smart::failing);
    EXPECT_EQ(machine.disks[2].smart, Smart::notSupported);
}

TEST_F(Demo, RunsFromTheInternalDisk)
{
    const Inventory machine = inventory();

    const auto system = findDevice(machine, "/");

    ASSERT_TRUE(system);
    EXPECT_EQ(system->disk->identifier, "disk0");
    EXPECT_EQ(system->apfsVolume->name, "Macintosh HD");
}

TEST_F(Demo, WasStartedFromTheStick)
{
    const MachineFile file(root);
    const auto bootPath = MachineFileInventory(file).nvramVariable("boot-path");
    const Inventory machine = inventory();
    const auto efi = findDevice(machine, "disk3s1");

    ASSERT_TRUE(bootPath && efi);
    EXPECT_THAT(bootPath->value, testing::HasSubstr("HD(1,GPT," + efi->partition->uuid + ","));
    ASSERT_TRUE(efi->mount);
    EXPECT_TRUE(fs::exists(fs::path(efi->mount->mountPoint) / "EFI/OC/OpenCore.efi"));
    EXPECT_TRUE(fs::exists(fs::path(efi->mount->mountPoint) / "EFI/OC/config.plist"));
}

TEST_F(Demo, HasFoldersForAllThatIsMounted)
{
    for (const Mount &mount : inventory().mounts)
        EXPECT_TRUE(fs::is_directory(mount.mountPoint) || mount.mountPoint.starts_with("/System")) << mount.mountPoint;
}

TEST_F(Demo, LetsItsPartitionsLieOnTheirDisksInOrder)
{
    for (const Disk &disk : inventory().disks) {
        std::uint64_t end = 0;
        for (const Partition &partition : disk.partitions) {
            EXPECT_GE(partition.offsetBytes, end) << partition.identifier;
            end = partition.offsetBytes + partition.sizeBytes;
        }
        EXPECT_LE(end, disk.sizeBytes) << disk.identifier;
    }
}

TEST_F(Demo, FillsNoVolumeBeyondItsSize)
{
    for (const Mount &mount : inventory().mounts)
        EXPECT_LT(mount.space->usedBytes, mount.space->totalBytes) << mount.carrier;
}

TEST_F(Demo, ShowsCloverOnceTheInternalPartitionIsMounted)
{
    fs::remove(root / "usr/sbin/diskutil");
    fs::create_symlink(DISKUTIL_TOOL, root / "usr/sbin/diskutil");

    const Outcome mounted = runProgram(
        {(root / "usr/bin/sudo").string(), "-S", "-k", "/usr/sbin/diskutil", "mount", "disk0s1"}, "brindle\n");

    EXPECT_EQ(mounted.output, "Volume EFI on disk0s1 mounted\n");
    EXPECT_TRUE(fs::exists(root / "Volumes/EFI/EFI/CLOVER/CLOVERX64.efi"));
}

TEST_F(Demo, IsABelievablePc)
{
    const std::string profiler = (root / "usr/sbin/system_profiler").string();

    const Outcome hardware = runProgram({profiler, "SPHardwareDataType"});
    const Outcome memory = runProgram({profiler, "SPMemoryDataType"});
    const Outcome displays = runProgram({profiler, "SPDisplaysDataType"});

    for (const char *const label : {"Model Name: ", "Model Identifier: ", "Processor Name: ", "Processor Speed: ",
                                    "Total Number of Cores: 8\n", "Memory: 32 GB\n", "Serial Number (system): "})
        EXPECT_THAT(hardware.output, testing::HasSubstr(label)) << hardware.errors;
    for (const char *const label : {"Size: 16 GB\n", "Type: DDR4\n", "Speed: 2667 MHz\n", "Part Number: "})
        EXPECT_THAT(memory.output, testing::HasSubstr(label)) << memory.errors;
    for (const char *const label : {"Chipset Model: ", "VRAM (Total): 8 GB\n", "Displays:\n", "Resolution: "})
        EXPECT_THAT(displays.output, testing::HasSubstr(label)) << displays.errors;
}

TEST_F(Demo, HasADiskToPlugIn)
{
    EXPECT_EQ(plugIn(MachineFile(root), "Kingston DataTraveler 3.0"), "disk8");
    EXPECT_EQ(inventory().disks.size(), 7U);
}

} // namespace
} // namespace brindle::tools
