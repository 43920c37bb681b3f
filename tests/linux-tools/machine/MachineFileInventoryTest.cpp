#include "machine/MachineFileInventory.h"

#include "TestMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

Scope everything()
{
    return {.name = {}, .withContents = true, .withDetails = true, .withMounts = true, .withSpace = true};
}

Inventory inventoryOf(const TestMachine &machine)
{
    const MachineFile file = machine.file();
    return MachineFileInventory(file).read(everything());
}

std::optional<NvramVariable> variableOf(const TestMachine &machine, std::string_view name)
{
    const MachineFile file = machine.file();
    return MachineFileInventory(file).nvramVariable(name);
}

Mount mountOf(const Inventory &inventory, std::string_view carrier)
{
    return *std::ranges::find(inventory.mounts, carrier, &Mount::carrier);
}

TEST(MachineFileInventory, TellsTheDisksThatArePluggedIn)
{
    const TestMachine machine;

    const Inventory inventory = inventoryOf(machine);

    ASSERT_EQ(inventory.disks.size(), 3U);
    const Disk &stick = inventory.disks[1];
    EXPECT_EQ(stick.identifier, "disk2");
    EXPECT_EQ(stick.mediaName, "Stick");
    EXPECT_EQ(stick.scheme, "GUID_partition_scheme");
    EXPECT_EQ(stick.protocol, "USB");
    EXPECT_TRUE(stick.isExternal);
    EXPECT_TRUE(stick.isRemovable);
    EXPECT_FALSE(stick.isReadOnly);
    EXPECT_EQ(stick.sizeBytes, 16'000'000'000U);
    EXPECT_EQ(stick.blockBytes, 512U);
    EXPECT_EQ(inventory.disks[0].smart, Smart::verified);
    EXPECT_EQ(stick.smart, Smart::notSupported);
    EXPECT_EQ(inventory.disks[2].smart, Smart::failing);
}

TEST(MachineFileInventory, TellsPartitionsWithTheirVolumes)
{
    const TestMachine machine;

    const Inventory inventory = inventoryOf(machine);

    const Partition &efi = inventory.disks[1].partitions.at(0);
    EXPECT_EQ(efi.identifier, "disk2s1");
    EXPECT_EQ(efi.type, "EFI");
    EXPECT_EQ(efi.uuid, "22222222-0000-4000-8000-000000000001");
    EXPECT_EQ(efi.offsetBytes, 20480U);
    EXPECT_EQ(efi.sizeBytes, 209715200U);
    ASSERT_TRUE(efi.volume);
    EXPECT_EQ(efi.volume->fileSystem, "vfat");
    EXPECT_EQ(efi.volume->version, "FAT32");
    EXPECT_EQ(efi.volume->name, "OPENCORE");
    EXPECT_EQ(efi.volume->uuid, "1234-ABCD");
}

TEST(MachineFileInventory, TellsTheContainerOfAnApfsPartition)
{
    const TestMachine machine;

    const Inventory inventory = inventoryOf(machine);

    EXPECT_EQ(inventory.disks[0].partitions[1].container, "disk1");
    ASSERT_EQ(inventory.containers.size(), 1U);
    const ApfsContainer &container = inventory.containers[0];
    EXPECT_EQ(container.store, "disk0s2");
    EXPECT_EQ(container.sizeBytes, 499'000'000'000U);
    ASSERT_EQ(container.volumes.size(), 3U);
    EXPECT_EQ(container.volumes[1].name, "Data");
}

TEST(MachineFileInventory, TellsTheDisksByTheirNumbers)
{
    const TestMachine machine;
    auto json = machine.json();
    std::swap(json["disks"][0], json["disks"][2]);
    machine.write(json.dump());

    const Inventory inventory = inventoryOf(machine);

    EXPECT_EQ(inventory.disks[0].identifier, "disk0");
    EXPECT_EQ(inventory.disks[2].identifier, "disk3");
}

TEST(MachineFileInventory, TellsMountPointsAsAbsolutePaths)
{
    const TestMachine machine;

    const Inventory inventory = inventoryOf(machine);

    EXPECT_EQ(mountOf(inventory, "disk1s1").mountPoint, "/");
    EXPECT_TRUE(mountOf(inventory, "disk1s1").isReadOnly);
    EXPECT_EQ(mountOf(inventory, "disk2s2").mountPoint, (machine.root() / "Volumes/DATA").string());
}

/// What `diskutil info` says the name stands for.
std::string identifierOf(const TestMachine &machine, const std::string &name)
{
    const Outcome info = machine.diskutil({"info", name});
    const std::string_view label = "Device Identifier:";
    const std::size_t at = info.output.find(label);
    if (at == std::string::npos)
        return "none";
    const std::size_t start = info.output.find_first_not_of(' ', at + label.size());
    return info.output.substr(start, info.output.find('\n', start) - start);
}

TEST(MachineFileInventory, TakesAnyPathThatLeadsToAMountPoint)
{
    const TestMachine machine;
    const fs::path data = machine.root() / "Volumes/DATA";
    fs::create_directories(data / "inside");
    fs::create_directory_symlink("Volumes/DATA", machine.root() / "link");
    const fs::path before = fs::current_path();
    fs::current_path(data / "inside");

    for (const std::string &name :
         {data.string(), (data / "").string(), (machine.root() / "link").string(),
          (machine.root() / "link/inside/..").string(), (machine.root() / "Volumes//./DATA/").string(),
          std::string(".."), std::string("../../DATA")})
        EXPECT_EQ(identifierOf(machine, name), "disk2s2") << name;
    for (const std::string &name : {(data / "inside").string(), (data / "none/..").string(), std::string("link")})
        EXPECT_EQ(identifierOf(machine, name), "none") << name;

    fs::current_path(before);
}

TEST(MachineFileInventory, TakesAnyPathToAMountPointOfTheSimulatedSystem)
{
    const TestMachine machine;

    for (const char *name : {"/", "//", "/.", "/System/.."})
        EXPECT_EQ(identifierOf(machine, name), "disk1s1") << name;
    for (const char *name : {"/System/Volumes/Data", "/System/Volumes/Data/", "/System//Volumes/None/../Data"})
        EXPECT_EQ(identifierOf(machine, name), "disk1s2") << name;
}

TEST(MachineFileInventory, ActsOnWhatAPathLeadsTo)
{
    const TestMachine machine;
    machine.file().settle();

    const Outcome outcome = machine.diskutil({"unmount", (machine.root() / "Volumes/DATA/").string()});

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "");
}

TEST(MachineFileInventory, SharesTheFreeSpaceOfAContainerAmongItsVolumes)
{
    const TestMachine machine;

    const Inventory inventory = inventoryOf(machine);

    const auto space = mountOf(inventory, "disk1s2").space;
    ASSERT_TRUE(space);
    EXPECT_EQ(space->totalBytes, 499'000'000'000U);
    EXPECT_EQ(space->usedBytes, 85'000'000'000U);
    EXPECT_EQ(space->availableBytes, 398'000'000'000U);
}

TEST(MachineFileInventory, MeasuresTheFolderWhereTheFileTellsNoSpace)
{
    const TestMachine machine;
    machine.writeFile("Volumes/DATA/folder/file", std::string(5000, 'x'));

    const auto space = mountOf(inventoryOf(machine), "disk2s2").space;

    ASSERT_TRUE(space);
    EXPECT_EQ(space->usedBytes, 3U * 4096U); // two clusters of the file and one of the folder
    EXPECT_EQ(space->totalBytes, 15'000'000'000U);
    EXPECT_EQ(space->availableBytes, 15'000'000'000U - 3U * 4096U);
}

TEST(MachineFileInventory, TellsTheSpaceThatTheFileGives)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][1]["partitions"][1]["volume"]["space"] = {
        {"usedBytes", 7'000'000'000}, {"usedNodes", 12}, {"freeNodes", 34}};
    machine.write(json.dump());

    const auto space = mountOf(inventoryOf(machine), "disk2s2").space;

    ASSERT_TRUE(space);
    EXPECT_EQ(space->usedBytes, 7'000'000'000U);
    EXPECT_EQ(space->availableBytes, 8'000'000'000U);
    EXPECT_EQ(space->usedNodes, 12U);
    EXPECT_EQ(space->freeNodes, 34U);
}

TEST(MachineFileInventory, ReadsNamesOfAnyBytes)
{
    const TestMachine machine;
    auto json = machine.json();
    auto &volume = json["disks"][1]["partitions"][1]["volume"];
    volume.erase("name");
    volume["nameHex"] = "41ff0a00";
    machine.write(json.dump());

    const Inventory inventory = inventoryOf(machine);

    EXPECT_EQ(inventory.disks[1].partitions[1].volume->name, std::string("A\xFF\n\0", 4));
}

struct VariableCase {
    const char *name;
    const char *asked;
    std::optional<std::string> value;
};

class FindsAVariable : public testing::TestWithParam<VariableCase> {};

TEST_P(FindsAVariable, ByItsName)
{
    const TestMachine machine;

    const auto variable = variableOf(machine, GetParam().asked);

    EXPECT_EQ(variable ? std::optional(variable->value) : std::nullopt, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    MachineFileInventory, FindsAVariable,
    testing::Values(
        VariableCase{"WithItsGuid", "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version", "REL-097-2023-12-04"},
        VariableCase{"WithItsGuidInLowerCase", "4d1fda02-38c7-4a6a-9cc6-4bcca8b30102:opencore-version",
                     "REL-097-2023-12-04"},
        VariableCase{"UnderTheBootLoadersGuid", "opencore-version", "REL-097-2023-12-04"},
        VariableCase{"OfRawBytes", "odd",
                     std::string("\0\xFF"
                                 "A",
                                 3)},
        VariableCase{"UnderAnotherGuid", "7C436110-AB2A-4BBB-A880-FE41995C9F82:opencore-version", std::nullopt},
        VariableCase{"WithAColonInIt", "prev-lang:kbd", "en-US:0"},
        VariableCase{"ThatIsMissing", "boot-args", std::nullopt}),
    [](const auto &info) { return std::string(info.param.name); });

} // namespace
} // namespace brindle::tools
