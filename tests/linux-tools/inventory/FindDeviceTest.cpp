#include "linux-tools/SampleMachine.h"

#include "inventory/FindDevice.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

std::string identifierOf(const std::optional<Device> &device)
{
    if (!device)
        return "none";
    if (device->apfsVolume)
        return device->apfsVolume->identifier;
    if (device->container)
        return device->container->identifier;
    return device->partition ? device->partition->identifier : device->disk->identifier;
}

struct NameCase {
    const char *name;
    const char *given;
    const char *identifier;
};

class FindsADevice : public testing::TestWithParam<NameCase> {};

TEST_P(FindsADevice, ByAnyOfItsNames)
{
    const Inventory machine = sampleMachine();

    EXPECT_EQ(identifierOf(findDevice(machine, GetParam().given)), GetParam().identifier);
}

INSTANTIATE_TEST_SUITE_P(
    Names, FindsADevice,
    testing::Values(NameCase{"Disk", "disk10", "disk10"}, NameCase{"Partition", "disk10s1", "disk10s1"},
                    NameCase{"IdentifierAsPath", "/dev/disk0s1", "disk0s1"},
                    NameCase{"KernelNodeOfADisk", "/dev/sdb", "disk10"},
                    NameCase{"KernelNodeOfAPartition", "/dev/nvme0n1p1", "disk0s1"},
                    NameCase{"Container", "disk3", "disk3"}, NameCase{"ApfsVolume", "disk3s1", "disk3s1"},
                    NameCase{"MountPoint", "/boot/efi", "disk0s1"}, NameCase{"SecondMountPoint", "/srv/efi", "disk0s1"},
                    NameCase{"RootOnApfs", "/", "disk3s1"}, NameCase{"VolumeName", "EFI", "disk0s1"},
                    NameCase{"ApfsVolumeName", "Macintosh HD", "disk3s1"}, NameCase{"Nothing", "", "none"},
                    NameCase{"UnknownDisk", "disk99", "none"}, NameCase{"PrefixOfAnIdentifier", "disk1", "none"},
                    NameCase{"BareDevices", "/dev/", "none"}, NameCase{"UnknownPath", "/nowhere", "none"}),
    [](const auto &info) { return info.param.name; });

TEST(FindDevice, FollowsTheLinkThatWasAskedFor)
{
    Inventory machine = sampleMachine();
    machine.link = Link{.path = "/dev/disk/by-label/EFI", .target = "/dev/nvme0n1p1"};

    EXPECT_EQ(identifierOf(findDevice(machine, "/dev/disk/by-label/EFI")), "disk0s1");
    EXPECT_EQ(identifierOf(findDevice(machine, "/dev/disk/by-label/ESP")), "none");
}

TEST(FindDevice, TakesTheNameOfAMountedVolumeThatItsCarrierDoesNotBear)
{
    Inventory machine = sampleMachine();
    const Volume home{.fileSystem = "ext4", .version = {}, .name = "home", .uuid = "1"};
    machine.mounts.push_back({.carrier = "disk0s5", .mountPoint = "/home", .volume = home});
    machine.mounts.push_back({.carrier = "disk0s5", .mountPoint = "/srv", .isWhole = false, .volume = home});

    EXPECT_EQ(identifierOf(findDevice(machine, "home")), "disk0s5");
    EXPECT_EQ(volumesNamed(machine, "home"), 1);
    machine.mounts.back().volume->uuid = "2";
    EXPECT_EQ(volumesNamed(machine, "home"), 2);
}

TEST(FindDevice, TakesTheIdentifierBeforeAVolumeOfThatName)
{
    Inventory machine = sampleMachine();
    machine.disks[0].partitions[0].volume->name = "disk10";

    EXPECT_EQ(identifierOf(findDevice(machine, "disk10")), "disk10");
}

TEST(FindDevice, TellsTheMountThatWasNamedAndElseTheFirst)
{
    const Inventory machine = sampleMachine();

    EXPECT_EQ(findDevice(machine, "/srv/efi")->mount->mountPoint, "/srv/efi");
    EXPECT_EQ(findDevice(machine, "disk0s1")->mount->mountPoint, "/boot/efi");
    EXPECT_EQ(findDevice(machine, "disk10s1")->mount, nullptr);
}

TEST(FindDevice, TakesTheLastOfTwoMountsAtOnePlace)
{
    Inventory machine = sampleMachine();
    machine.mounts.push_back({.carrier = "disk10s1", .mountPoint = "/boot/efi"});

    EXPECT_EQ(identifierOf(findDevice(machine, "/boot/efi")), "disk10s1");
}

TEST(FindDevice, CountsTheVolumesOfAName)
{
    Inventory machine = sampleMachine();
    machine.containers[0].volumes[1].name = "EFI";

    EXPECT_EQ(volumesNamed(machine, "EFI"), 2);
    EXPECT_EQ(volumesNamed(machine, "RESCUE"), 1);
    EXPECT_EQ(volumesNamed(machine, "Nothing"), 0);
}

} // namespace
} // namespace brindle::tools
