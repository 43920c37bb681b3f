#include "machine/Plug.h"

#include "TestMachine.h"

#include "acting/Actor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> identifiersOf(const TestMachine &machine)
{
    const Machine description = machine.file().read();
    std::vector<std::string> identifiers;
    for (const Disk &disk : description.inventory.disks)
        identifiers.push_back(disk.identifier);
    return identifiers;
}

TEST(Plug, GivesADiskANumberThatNoDiskHad)
{
    const TestMachine machine;

    EXPECT_EQ(plugIn(machine.file(), "disk4"), "disk5");
    plugOut(machine.file(), "disk5");
    EXPECT_EQ(plugIn(machine.file(), "Card"), "disk6");

    EXPECT_THAT(identifiersOf(machine), testing::ElementsAre("disk0", "disk2", "disk3", "disk6"));
}

TEST(Plug, NumbersPartitionsAndContainersAnew)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"eraseVolume", "APFS", "Mac", "disk2s2"}).status, 0);
    plugOut(machine.file(), "Stick");

    const std::string identifier = plugIn(machine.file(), "Stick");

    const Inventory inventory = machine.file().read().inventory;
    EXPECT_EQ(identifier, "disk6");
    const Disk &stick = inventory.disks.back();
    EXPECT_EQ(stick.partitions[0].identifier, "disk6s1");
    EXPECT_EQ(stick.partitions[1].identifier, "disk6s2");
    EXPECT_EQ(stick.partitions[1].container, "disk7");
    EXPECT_EQ(inventory.containers.back().volumes[0].identifier, "disk7s1");
    EXPECT_EQ(machine.json()["nextDisk"], 8);
}

TEST(Plug, PullsAMountedDiskOutWithItsFiles)
{
    const TestMachine machine;
    machine.writeFile("Volumes/DATA/file", "x");

    plugOut(machine.file(), "disk2");
    const bool isStillThere = machine.hasFile("Volumes/DATA");
    const std::string identifier = plugIn(machine.file(), "disk2");
    ASSERT_EQ(machine.diskutil({"mount", identifier + "s2"}).status, 0);

    EXPECT_FALSE(isStillThere);
    EXPECT_TRUE(machine.hasFile("Volumes/DATA/file"));
}

TEST(Plug, PullsABusyDiskOutToo)
{
    const TestMachine machine;
    auto json = machine.json();
    json["mounts"][2]["dissenter"] = {{"pid", 7}, {"program", "/bin/sleep"}};
    machine.write(json.dump());

    plugOut(machine.file(), "disk2");

    EXPECT_THAT(identifiersOf(machine), testing::ElementsAre("disk0", "disk3"));
}

TEST(Plug, LeavesTheBootDiskIn)
{
    const TestMachine machine;

    EXPECT_THROW(plugOut(machine.file(), "disk0"), ActionError);

    EXPECT_EQ(machine.text(), sampleMachineText());
}

TEST(Plug, RefusesADiskThatIsNotThere)
{
    const TestMachine machine;

    EXPECT_THROW(plugOut(machine.file(), "disk4"), ActionError);
    EXPECT_THROW((void)plugIn(machine.file(), "disk2"), ActionError);
}

TEST(Plug, RefusesAMediaNameOfTwoDisks)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][2]["mediaName"] = "Stick";
    machine.write(json.dump());

    EXPECT_THROW(plugOut(machine.file(), "Stick"), ActionError);
}

TEST(Plug, CopiesAMachineWithLinksToTheSameTools)
{
    const TestMachine machine;
    machine.writeFile("tools/diskutil", "tool");
    machine.install("usr/sbin/diskutil", "../../tools/diskutil");
    machine.writeFile("contents/22222222-0000-4000-8000-000000000002/file", "x");
    const TestMachine place;
    const fs::path copy = place.root() / "copy";

    copyMachine(machine.root(), copy);

    EXPECT_EQ(fs::read_symlink(copy / "usr/sbin/diskutil"), fs::canonical(machine.root() / "tools/diskutil"));
    EXPECT_TRUE(fs::exists(copy / "Volumes/DATA/file")); // mounted, so moved there
    EXPECT_EQ(MachineFile(copy).read().inventory.disks.size(), 3U);
}

TEST(Plug, CopiesReadOnlyFilesToBeWritten)
{
    const TestMachine machine;
    machine.writeFile("contents/x/file", "x");
    fs::permissions(machine.root() / "contents/x/file", fs::perms::owner_read);
    const TestMachine place;

    copyMachine(machine.root(), place.root() / "copy");

    EXPECT_NE(fs::status(place.root() / "copy/contents/x/file").permissions() & fs::perms::owner_write,
              fs::perms::none);
}

TEST(Plug, CopiesNothingOverWhatIsThere)
{
    const TestMachine machine;
    const TestMachine place;

    EXPECT_THROW(copyMachine(machine.root(), place.root()), MachineFileError);
}

TEST(MachineCommand, ListsPlugsInAndPullsOut)
{
    const TestMachine machine;
    const std::string root = machine.root().string();

    const Outcome out = runProgram({MACHINE_TOOL, "out", root, "Stick"});
    const Outcome in = runProgram({MACHINE_TOOL, "in", root, "disk4"});
    const Outcome list = runProgram({MACHINE_TOOL, "list", root});

    EXPECT_EQ(out.status, 0) << out.errors;
    EXPECT_EQ(in.output, "disk5\n");
    EXPECT_EQ(list.output, "in  disk0   Internal SSD\n"
                           "in  disk3   Linux Disk\n"
                           "in  disk5   Card\n"
                           "out disk2   Stick\n");
}

TEST(MachineCommand, SaysWhatItCannotDo)
{
    const TestMachine machine;

    const Outcome outcome = runProgram({MACHINE_TOOL, "in", machine.root().string(), "disk9"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "brindle-machine: There is no disk disk9 on the shelf\n");
}

TEST(MachineCommand, EndsWithTwoForAWrongUsage)
{
    EXPECT_EQ(runProgram({MACHINE_TOOL, "in"}).status, 2);
}

} // namespace
} // namespace brindle::tools
