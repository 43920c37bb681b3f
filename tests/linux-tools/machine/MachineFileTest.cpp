#include "machine/MachineFile.h"

#include "TestMachine.h"

#include "machine/FileIo.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include <sys/stat.h>

namespace brindle::tools {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

struct FaultCase {
    const char *name;
    const char *good; ///< What stands in the sample.
    const char *bad;  ///< What stands there instead.
    const char *error;
    const char *place = nullptr; ///< What stands on the line that the error names; absent: what is bad.
    std::size_t linesAbove = 0;  ///< How many lines above it that one is.
};

class NamesFileLineAndKey : public testing::TestWithParam<FaultCase> {};

std::string sampleWith(const FaultCase &fault)
{
    std::string text = sampleMachineText();
    const std::size_t at = text.find(fault.good);
    EXPECT_NE(at, std::string::npos);
    return text.replace(at, std::string_view(fault.good).size(), fault.bad);
}

std::size_t lineOf(std::string_view text, std::string_view place)
{
    const auto at = static_cast<std::ptrdiff_t>(text.find(place));
    return static_cast<std::size_t>(std::count(text.begin(), text.begin() + at, '\n')) + 1;
}

std::string errorOf(const MachineFile &file)
{
    try {
        (void)file.read();
    } catch (const MachineFileError &error) {
        return error.what();
    }
    return "no error";
}

TEST_P(NamesFileLineAndKey, OfWhatIsWrong)
{
    const FaultCase &fault = GetParam();
    const TestMachine machine;
    const std::string text = sampleWith(fault);
    machine.write(text);

    const std::string error = errorOf(machine.file());

    const std::size_t line = lineOf(text, fault.place ? fault.place : fault.bad) - fault.linesAbove;
    EXPECT_EQ(error, fmt::format("{}/machine.json:{}: {}", machine.root().string(), line, fault.error));
}

TEST_P(NamesFileLineAndKey, AndChangesNothing)
{
    const TestMachine machine;
    const std::string text = sampleWith(GetParam());
    machine.write(text);

    EXPECT_THROW((void)machine.diskutil({"unmount", "disk2s2"}), MachineFileError);

    EXPECT_EQ(machine.text(), text);
}

INSTANTIATE_TEST_SUITE_P(
    MachineFile, NamesFileLineAndKey,
    testing::Values(
        FaultCase{"MissingKeyOfTheMachine", R"("password": "secret",)", "", "password: the key is missing", "{"},
        FaultCase{"MissingKeyOfADisk", R"("mediaName": "Stick",)", "", "disks[1].mediaName: the key is missing",
                  R"("identifier": "disk2")", 1},
        FaultCase{"MissingKeyOfAPartition", R"("offsetBytes": 211812352,)", "",
                  "disks[1].partitions[1].offsetBytes: the key is missing", R"("identifier": "disk2s2")", 1},
        FaultCase{"MissingKeyOfAVolume", R"("fileSystem": "exfat", "name": "DATA")", R"("name": "DATA")",
                  "disks[1].partitions[1].volume.fileSystem: the key is missing"},
        FaultCase{"TextForANumber", R"("sizeBytes": 16000000000)", R"("sizeBytes": "16 GB")",
                  "disks[1].sizeBytes: must be a whole number"},
        FaultCase{"ObjectForAListOfDisks", R"("shelf": [)", R"("shelf": {}, "drawer": [)", "shelf: must be a list"},
        FaultCase{"NegativeNumber", R"("sizeBytes": 16000000000)", R"("sizeBytes": -1)",
                  "disks[1].sizeBytes: must be a whole number"},
        FaultCase{"NumberBeyond64Bits", R"("sizeBytes": 16000000000)", R"("sizeBytes": 18446744073709551616)",
                  "disks[1].sizeBytes: must be a whole number"},
        FaultCase{"NumberForAText", R"("mediaName": "Stick")", R"("mediaName": 7)",
                  "disks[1].mediaName: must be a text"},
        FaultCase{"TextForAFlag", R"("isReadOnly": true)", R"("isReadOnly": "yes")",
                  "mounts[0].isReadOnly: must be true or false"},
        FaultCase{"KeyTwice", R"("hardware": {"model": "iMac19,1"})", R"("hardware": 1, "shelf": {})",
                  "shelf: the key stands twice"},
        FaultCase{"UnknownSmartState", R"("smart": "failing")", R"("smart": "fine")",
                  R"(disks[2].smart: must be "verified", "failing" or "notSupported")"},
        FaultCase{"ForeignIdentifier", R"("identifier": "disk2s1")", R"("identifier": "disk9s1")",
                  R"(disks[1].partitions[0].identifier: must be "disk2s" and a number)"},
        FaultCase{"NumberNotYetGiven", R"("identifier": "disk3",)", R"("identifier": "disk5",)",
                  R"(disks[2].identifier: must have a number below "nextDisk")"},
        FaultCase{"IdentifierTwice", R"("identifier": "disk2s2")", R"("identifier": "disk2s1")",
                  "disks[1].partitions[1].identifier: is another disk's", R"("offsetBytes": 211812352)", 3},
        FaultCase{"MountOfNoVolume", R"("carrier": "disk2s2")", R"("carrier": "disk2")",
                  "mounts[2].carrier: must be the identifier of a volume"},
        FaultCase{"MountOfTheShelf", R"("carrier": "disk2s2")", R"("carrier": "disk4")",
                  "mounts[2].carrier: must be the identifier of a volume"},
        FaultCase{"MountPointThatLeadsElsewhere", "Volumes/DATA", "Volumes/../../etc",
                  R"(mounts[2].mountPoint: must be "Volumes/NAME" or begin with "/")"},
        FaultCase{"MountPointTwice", "Volumes/DATA", "/", "mounts[2].mountPoint: is taken by another volume",
                  R"("carrier": "disk2s2")"},
        FaultCase{"CarrierTwice", R"("carrier": "disk1s2")", R"("carrier": "disk1s1")",
                  "mounts[1].carrier: is mounted already", "/System/Volumes/Data"},
        FaultCase{"FolderThatLeadsElsewhere", R"("uuid": "AAAA-BBBB")", R"("uuid": "AAAA-BBBB", "content": "../..")",
                  "disks[1].partitions[1].volume.content: must be the name of a folder"},
        FaultCase{"FolderAbove", R"("uuid": "AAAA-BBBB")", R"("uuid": "AAAA-BBBB", "content": "..")",
                  "disks[1].partitions[1].volume.content: must be the name of a folder"},
        FaultCase{"MountPointAbove", "Volumes/DATA", "Volumes/..",
                  R"(mounts[2].mountPoint: must be "Volumes/NAME" or begin with "/")"},
        FaultCase{"FolderOfAnother", R"("uuid": "AAAA-BBBB")", R"("uuid": "AAAA-BBBB", "content": "APFS-1")",
                  R"(disks[1].partitions[1].volume.content: "APFS-1" belongs to another volume)"},
        FaultCase{"OddHexadecimalDigits", "00ff41", "00ff4", "nvram[1].valueHex: must be pairs of hexadecimal digits"},
        FaultCase{"NoJsonInTheMiddle", R"("mediaName": "Stick",)", R"("mediaName": Stick,)",
                  R"(disks[1].mediaName: not JSON at ""mediaName": S")"},
        FaultCase{"MissingHardware", R"("hardware":)", R"("software":)", "hardware: the key is missing", "{"},
        FaultCase{"HardwareThatIsNoObject", R"("hardware": {"model": "iMac19,1"})", R"("hardware": 7)",
                  "hardware: must be an object"},
        FaultCase{"NextDiskBeyondAllNumbers", R"("nextDisk": 5)", R"("nextDisk": 18446744073709551615)",
                  "nextDisk: must be at most 4294967295"},
        FaultCase{"LaterFormat", R"("format": 1)", R"("format": 2)", "format: must be 1"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(MachineFile, SaysWhereTheTextEndsTooEarly)
{
    const TestMachine machine;
    machine.write("{\n  \"format\": 1,\n  \"password\": \"x\"\n");

    EXPECT_THAT(errorOf(machine.file()), HasSubstr("machine.json:4: not JSON at "));
}

TEST(MachineFile, NamesTheListThatDoesNotGoOnAsItShould)
{
    const TestMachine machine;

    machine.write("{\"disks\": [{\"a\": 1},\n]}");
    const std::string inList = errorOf(machine.file());
    machine.write("{\"disks\": [{\"a\": 1\n\"b\": 2}]}");
    const std::string inObject = errorOf(machine.file());

    EXPECT_THAT(inList, HasSubstr("machine.json:2: disks: not JSON at "));
    EXPECT_THAT(inObject, HasSubstr("machine.json:2: disks[0]: not JSON at "));
}

TEST(MachineFile, SaysThatAnotherProgramChangesTheMachineForTooLong)
{
    const TestMachine machine;
    const FolderLock other(machine.root());

    try {
        const FolderLock second(machine.root(), std::chrono::milliseconds(0));
        FAIL() << "two locks at a time";
    } catch (const MachineFileError &error) {
        EXPECT_EQ(error.what(),
                  machine.root().string() + ": another program is changing this machine and doesn't come to an end");
    }
}

TEST(MachineFile, RefusesATextThatIsNestedTooDeeply)
{
    const TestMachine machine;
    machine.write(R"({"format": 1, "x": )" + std::string(100'000, '[') + std::string(100'000, ']') + '}');

    EXPECT_THAT(errorOf(machine.file()), EndsWith("nested too deeply"));
}

TEST(MachineFile, RefusesWhatStandsBehindTheMachine)
{
    const TestMachine machine;

    const std::string text = sampleMachineText();
    machine.write(text + "x");
    const std::string afterText = errorOf(machine.file());
    machine.write(text + '\0' + "x");
    const std::string afterNul = errorOf(machine.file());
    machine.write(std::string("{\n\0}", 4));
    const std::string withinText = errorOf(machine.file());

    const auto lines = std::ranges::count(text, '\n');
    EXPECT_THAT(afterText, HasSubstr(fmt::format("machine.json:{}: not JSON at ", lines + 1)));
    EXPECT_THAT(afterNul, EndsWith(": not JSON at a NUL byte"));
    EXPECT_THAT(withinText, EndsWith("machine.json:2: not JSON at a NUL byte"));
}

TEST(MachineFile, PrintsNoRawBytesInAnError)
{
    const TestMachine machine;

    machine.write(R"({"\u001b[2J": 1, "\u001b[2J": 2})");
    const std::string ofKey = errorOf(machine.file());
    machine.write("{\"a\": \x1B[2J\xFF}");
    const std::string ofText = errorOf(machine.file());

    EXPECT_THAT(ofKey, EndsWith(": \uFFFD[2J: the key stands twice"));
    EXPECT_THAT(ofText, testing::Not(HasSubstr("\x1B")));
    EXPECT_THAT(ofText, testing::Not(HasSubstr("\xFF")));
}

TEST(MachineFile, RefusesAListInThePlaceOfTheMachine)
{
    const TestMachine machine;
    machine.write("[]");

    EXPECT_THAT(errorOf(machine.file()), EndsWith("machine.json:1: must be an object"));
}

TEST(MachineFile, NamesTheFileThatIsMissing)
{
    const TestMachine machine;
    std::filesystem::remove(machine.root() / "machine.json");

    EXPECT_THAT(errorOf(machine.file()), HasSubstr((machine.root() / "machine.json").string()));
}

struct NoFileCase {
    const char *name;
    const char *making; ///< What a shell makes in the place of the file.
    const char *error;
};

class IsRefusedAtOnce : public testing::TestWithParam<NoFileCase> {};

TEST_P(IsRefusedAtOnce, WhereItIsNoFileThatEnds)
{
    const TestMachine machine;
    machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    const std::string file = machine.root() / "machine.json";
    std::filesystem::remove(file);
    ASSERT_EQ(runProgram({"/bin/sh", "-c", std::string(GetParam().making) + " \"$0\"", file}).status, 0);

    const Outcome outcome = runProgram({(machine.root() / "usr/sbin/diskutil").string(), "list"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "diskutil: " + file + ": " + GetParam().error + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    MachineFile, IsRefusedAtOnce,
    testing::Values(NoFileCase{"Pipe", "mkfifo", "not a regular file"},
                    NoFileCase{"LinkToAPipe", "mkfifo \"$0.pipe\"; ln -s \"$0.pipe\"", "not a regular file"},
                    NoFileCase{"DeviceWithoutEnd", "ln -s /dev/zero", "not a regular file"},
                    NoFileCase{"Folder", "mkdir", "not a regular file"},
                    NoFileCase{"LinkToItself", "ln -s machine.json", "Too many levels of symbolic links"},
                    NoFileCase{"FileOfMoreThan64MiB", "truncate -s 65M", "File too large"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(MachineFile, KeepsUnknownKeysAndTheirOrder)
{
    const TestMachine machine;

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).status, 0);

    const auto json = machine.json();
    EXPECT_EQ(json["owner"], "somebody");
    EXPECT_EQ(json["hardware"]["model"], "iMac19,1");
    EXPECT_EQ(json["disks"][1]["partitions"][1]["note"], "kept");
    EXPECT_EQ(json.begin().key(), "format");
}

TEST(MachineFile, GivesTheHardwareAsItStands)
{
    const TestMachine machine;

    EXPECT_EQ(machine.file().hardware(), "{\n  \"model\": \"iMac19,1\"\n}\n");
}

TEST(MachineFile, KeepsItsPermissionsAndLeavesNoOtherFile)
{
    const TestMachine machine;
    ::chmod((machine.root() / "machine.json").c_str(), 0600);

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).status, 0);

    struct stat status {};
    ASSERT_EQ(::stat((machine.root() / "machine.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_FALSE(machine.hasFile("machine.json.new"));
}

TEST(MachineFile, IsAsItWasWhenItCannotBeWritten)
{
    const TestMachine machine;
    machine.writeFile("Volumes/DATA/file", "x");
    std::filesystem::create_directories(machine.root() / "machine.json.new"); // stands in the way of the new text

    EXPECT_THROW((void)machine.diskutil({"unmount", "disk2s2"}), MachineFileError);

    EXPECT_EQ(machine.text(), sampleMachineText());
    EXPECT_TRUE(machine.hasFile("Volumes/DATA/file"));
}

TEST(MachineFile, IsAsItWasWhenTheSpaceEndsWhileItIsWritten)
{
    const TestMachine machine;
    machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    machine.writeFile("Volumes/DATA/file", "x");
    const std::string diskutil = (machine.root() / "usr/sbin/diskutil").string();

    const Outcome outcome =
        runProgram({"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 1; exec \"$0\" unmount disk2s2", diskutil});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("machine.json.new"));
    EXPECT_EQ(machine.text(), sampleMachineText());
    EXPECT_TRUE(machine.hasFile("Volumes/DATA/file"));
    EXPECT_FALSE(machine.hasFile("machine.json.new"));
}

TEST(MachineFile, WritesToNoFileThatALeftoverOfAWriteLeadsTo)
{
    const TestMachine machine;
    machine.writeFile("other/hard", "kept");
    std::filesystem::create_hard_link(machine.root() / "other/hard", machine.root() / "machine.json.new");

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "HARD"}).status, 0);
    const bool isLinked = std::filesystem::hard_link_count(machine.root() / "other/hard") > 1;
    std::filesystem::create_symlink("other/hard", machine.root() / "machine.json.new");
    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "SOFT"}).status, 0);

    EXPECT_FALSE(isLinked);
    EXPECT_EQ(readWholeFile(machine.root() / "other/hard"), "kept");
    EXPECT_EQ(machine.labelOf("disk2s2"), "SOFT");
}

TEST(MachineFile, StaysALinkWhereItIsOne)
{
    const TestMachine machine;
    std::filesystem::create_directory(machine.root() / "kept");
    std::filesystem::rename(machine.root() / "machine.json", machine.root() / "kept/real.json");
    std::filesystem::create_symlink("kept/real.json", machine.root() / "machine.json");

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).status, 0);

    EXPECT_TRUE(std::filesystem::is_symlink(machine.root() / "machine.json"));
    EXPECT_EQ(machine.labelOf("disk2s2"), "NEW");
    EXPECT_FALSE(machine.hasFile("kept/real.json.new"));
}

TEST(MachineFile, FinishesAMountThatWasCutShort)
{
    const TestMachine machine;
    machine.writeFile("contents/22222222-0000-4000-8000-000000000002/file", "x"); // written as mounted, not yet moved

    machine.file().settle();

    EXPECT_TRUE(machine.hasFile("Volumes/DATA/file"));
    EXPECT_FALSE(machine.hasFile("contents/22222222-0000-4000-8000-000000000002"));
}

TEST(MachineFile, FinishesAMountThatWasCutShortAlsoWhereNothingElseIsToDo)
{
    const TestMachine machine;
    machine.writeFile("contents/22222222-0000-4000-8000-000000000002/file", "x"); // written as mounted, not yet moved

    ASSERT_EQ(machine.diskutil({"mount", "disk2s2"}).status, 0);

    EXPECT_TRUE(machine.hasFile("Volumes/DATA/file"));
}

TEST(MachineFile, MakesTheFolderOfAMountThatHasNone)
{
    const TestMachine machine;

    machine.file().settle();

    EXPECT_TRUE(machine.hasFile("Volumes/DATA"));
}

} // namespace
} // namespace brindle::tools
