#include "machine/Plug.h"

#include "TestMachine.h"

#include "acting/Actor.h"
#include "machine/FileIo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>

#include <sys/stat.h>

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
    const TestMachine place;
    place.writeFile("tools/diskutil", "tool");
    const fs::path way = fs::relative(place.root() / "tools/diskutil", machine.root() / "usr/sbin");
    machine.install("usr/sbin/diskutil", way.string());
    machine.writeFile("contents/22222222-0000-4000-8000-000000000002/file", "x");
    const fs::path copy = place.root() / "copy";

    copyMachine(machine.root(), copy);

    EXPECT_EQ(fs::read_symlink(copy / "usr/sbin/diskutil"), fs::canonical(place.root() / "tools/diskutil"));
    EXPECT_TRUE(fs::exists(copy / "Volumes/DATA/file")); // mounted, so moved there
    EXPECT_EQ(MachineFile(copy).read().inventory.disks.size(), 3U);
}

TEST(Plug, CopiesLinksWithinAMachineToLeadToTheCopy)
{
    const TestMachine machine;
    machine.writeFile("contents/x/folder/file", "x");
    fs::create_symlink("folder/file", machine.root() / "contents/x/relative");
    fs::create_symlink(machine.root() / "contents/x/folder", machine.root() / "contents/x/absolute");
    const TestMachine place;
    const fs::path copy = place.root() / "copy";

    copyMachine(machine.root(), copy);

    EXPECT_EQ(fs::canonical(copy / "contents/x/relative"), fs::canonical(copy / "contents/x/folder/file"));
    EXPECT_EQ(fs::canonical(copy / "contents/x/absolute"), fs::canonical(copy / "contents/x/folder"));
}

TEST(Plug, CopiesAMachineFileThatIsALinkToAFileOfItsOwn)
{
    const TestMachine machine;
    const TestMachine place;
    fs::rename(machine.root() / "machine.json", place.root() / "elsewhere.json");
    fs::create_symlink(place.root() / "elsewhere.json", machine.root() / "machine.json");

    copyMachine(machine.root(), place.root() / "copy");

    EXPECT_FALSE(fs::is_symlink(place.root() / "copy/machine.json"));
    EXPECT_EQ(MachineFile(place.root() / "copy").read().inventory.disks.size(), 3U);
}

TEST(Plug, LeavesOutOfACopyWhatIsNoFile)
{
    const TestMachine machine;
    machine.writeFile("contents/x/file", "x");
    ASSERT_EQ(::mkfifo((machine.root() / "contents/x/pipe").c_str(), 0600), 0);
    const TestMachine place;

    copyMachine(machine.root(), place.root() / "copy");

    EXPECT_TRUE(fs::exists(place.root() / "copy/contents/x/file"));
    EXPECT_FALSE(fs::exists(place.root() / "copy/contents/x/pipe"));
}

TEST(Plug, CopiesNoMachineIntoItself)
{
    const TestMachine machine;
    fs::create_directory(machine.root() / "x");
    fs::create_symlink("x", machine.root() / "link");

    EXPECT_THROW(copyMachine(machine.root(), machine.root() / "x/copy"), MachineFileError);
    EXPECT_THROW(copyMachine(machine.root(), machine.root() / "link/copy"), MachineFileError);
    EXPECT_THROW(copyMachine(machine.root() / ".", machine.root() / "x"), MachineFileError);

    EXPECT_TRUE(fs::is_empty(machine.root() / "x"));
}

TEST(Plug, CopiesNothingThatIsNoMachine)
{
    const TestMachine machine;
    machine.write("{}");
    const TestMachine place;

    EXPECT_THROW(copyMachine(machine.root(), place.root() / "copy"), MachineFileError);
    EXPECT_THROW(copyMachine(machine.root() / "gone", place.root() / "copy"), MachineFileError);

    EXPECT_FALSE(fs::exists(place.root() / "copy"));
}

TEST(Plug, LeavesNothingOfACopyThatFails)
{
    const TestMachine machine;
    machine.writeFile("Volumes", "a file where the mount points should be");
    const TestMachine place;
    fs::create_directory(place.root() / "empty");

    EXPECT_THROW(copyMachine(machine.root(), place.root() / "copy"), MachineFileError);
    EXPECT_THROW(copyMachine(machine.root(), place.root() / "empty"), MachineFileError);

    EXPECT_FALSE(fs::exists(place.root() / "copy"));
    EXPECT_TRUE(fs::is_empty(place.root() / "empty"));
}

TEST(Plug, CopiesNoMachineThatIsBeingChanged)
{
    const TestMachine machine;
    const TestMachine place;
    auto lock = std::make_optional<FolderLock>(machine.root());

    auto copied = std::async(std::launch::async, copyMachine, machine.root(), place.root() / "copy");
    const auto state = copied.wait_for(std::chrono::milliseconds(300));
    const bool isBegun = fs::exists(place.root() / "copy");
    lock.reset();
    copied.get();

    EXPECT_EQ(state, std::future_status::timeout);
    EXPECT_FALSE(isBegun);
    EXPECT_TRUE(fs::exists(place.root() / "copy/machine.json"));
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

TEST(MachineCommand, PrintsNoRawBytesOfANameOnTheTerminal)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][1]["mediaName"] = "\x1B[2J";
    machine.write(json.dump());

    const Outcome list = runProgram({MACHINE_TOOL, "list", machine.root().string()});
    const Outcome in = runProgram({MACHINE_TOOL, "in", machine.root().string(), "\x1B[2J"});

    EXPECT_THAT(list.output, testing::HasSubstr("in  disk2   \uFFFD[2J\n"));
    EXPECT_EQ(in.errors, "brindle-machine: There is no disk \uFFFD[2J on the shelf\n");
}

TEST(Plug, NamesNoDiskByANumberBeyondTheLast)
{
    const TestMachine machine;
    auto json = machine.json();
    json["nextDisk"] = 4294967295U;
    machine.write(json.dump());

    EXPECT_THROW((void)plugIn(machine.file(), "disk4"), MachineFileError);

    EXPECT_EQ(machine.text(), json.dump());
}

TEST(MachineCommand, EndsWithTwoForAWrongUsage)
{
    const Outcome outcome = runProgram({MACHINE_TOOL, "in"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "brindle-machine: ROOT is required\nRun with --help for more information.\n");
}

TEST(MachineCommand, NamesACommandThatThereIsNot)
{
    const Outcome unknown = runProgram({MACHINE_TOOL, "fo\x1B[2J", "somewhere"});
    const Outcome none = runProgram({MACHINE_TOOL});

    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.errors, "brindle-machine: There is no command \"fo\uFFFD[2J\"\n"
                              "Run with --help for more information.\n");
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.errors, "brindle-machine: A command is required\nRun with --help for more information.\n");
}

TEST(MachineCommand, PrintsNoRawBytesOfAWrongArgument)
{
    const Outcome outcome = runProgram({MACHINE_TOOL, "list", "somewhere", "\x1B[2J"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("\uFFFD[2J\n"));
}

TEST(MachineCommand, FailsWhereItsOutputCannotBeWritten)
{
    const TestMachine machine;

    const Outcome outcome =
        runProgram({"/bin/sh", "-c", "exec \"$0\" list \"$1\" >/dev/full", MACHINE_TOOL, machine.root().string()});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("brindle-machine: standard output: "));
}

} // namespace
} // namespace brindle::tools
