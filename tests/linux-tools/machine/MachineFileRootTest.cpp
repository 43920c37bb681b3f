#include "machine/MachineFile.h"

#include "TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Runs \a script with the machine's root as $1 and an empty folder as $2.
Outcome runScript(const std::string &script, const TestMachine &machine, const TestMachine &place)
{
    return runProgram(
        {"/bin/sh", "-c", "set -e\n" + script, "sh", machine.root().string(), place.root().string() + "/x/y/z"});
}

struct CallCase {
    const char *name;
    const char *script;
};

class BelongsToItsMachine : public testing::TestWithParam<CallCase> {
protected:
    BelongsToItsMachine()
    {
        machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
        fs::create_directories(machine.root() / "usr/bin");
        fs::remove(place.root() / "machine.json");
        fs::create_directories(place.root() / "x/y/z");
    }

    const TestMachine machine;
    const TestMachine place;
};

TEST_P(BelongsToItsMachine, HoweverItsPathIsWritten)
{
    const Outcome outcome = runScript(GetParam().script, machine, place);

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("Internal SSD"));
}

INSTANTIATE_TEST_SUITE_P(
    MachineFile, BelongsToItsMachine,
    testing::Values(CallCase{"FromItsFolder", "cd $1/usr/sbin; ./diskutil info disk0"},
                    CallCase{"FromTheFolderAbove", "cd $1/usr; ././sbin/diskutil info disk0"},
                    CallCase{"FromTheRoot", "cd $1; usr/sbin/diskutil info disk0"},
                    CallCase{"WithDots", "$1/usr/./sbin/./diskutil info disk0"},
                    CallCase{"WithDoubleSlashes", "$1/usr//sbin//diskutil info disk0"},
                    CallCase{"ByTheFolderAbove", "$1/usr/bin/../sbin/diskutil info disk0"},
                    CallCase{"BySearching", "cd $1/usr/sbin; PATH=.; diskutil info disk0"},
                    CallCase{"ThroughALink", "ln -s $1/usr/sbin/diskutil $2/tool; $2/tool info disk0"},
                    CallCase{"ThroughTwoLinks",
                             "ln -s $1/usr/sbin/diskutil $2/tool; ln -s tool $2/other; cd $2; ./other info disk0"},
                    CallCase{"ThroughALinkToItsFolder", "ln -s $1/usr/sbin $2/tools; $2/tools/diskutil info disk0"},
                    CallCase{"AboveALinkToItsFolder", "ln -s $1/usr/bin $2/bin; $2/bin/../sbin/diskutil info disk0"},
                    CallCase{"InAFolderThatIsALink",
                             "mv $1/usr/sbin $2/sbin; ln -s $2/sbin $1/usr/sbin; $1/usr/./sbin/diskutil info disk0"}),
    [](const auto &info) { return std::string(info.param.name); });

class IsRefusedWhereItsMachineIsUnknown : public BelongsToItsMachine {};

TEST_P(IsRefusedWhereItsMachineIsUnknown, AndDoesNotActOnTheRealOne)
{
    const Outcome outcome = runScript(GetParam().script, machine, place);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("it can't be told which machine this program belongs to"));
}

INSTANTIATE_TEST_SUITE_P(MachineFile, IsRefusedWhereItsMachineIsUnknown,
                         testing::Values(CallCase{"ADescriptor", "exec 3<$1/usr/sbin/diskutil; /dev/fd/3 list"},
                                         CallCase{"ADescriptorInProc",
                                                  "exec 3<$1/usr/sbin/diskutil; /proc/self/fd/3 list"},
                                         CallCase{"ALinkToADescriptor", "exec 3<$1/usr/sbin/diskutil\n"
                                                                        "ln -s /dev/fd/3 $2/tool; $2/tool list"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(MachineFile, IsFoundByThePathOfAToolThatIsALink)
{
    const TestMachine machine;
    fs::create_directories(machine.root() / "a/b/c");

    EXPECT_EQ(MachineFile::findRoot(machine.root() / "usr/sbin/diskutil"), machine.root());
    EXPECT_EQ(MachineFile::findRoot(machine.root() / "bin/df"), machine.root());
    EXPECT_EQ(MachineFile::findRoot(machine.root() / "a/b/c/tool"), std::nullopt);
}

TEST(MachineFile, IsNoneOfAToolOfTheRealMachine)
{
    const TestMachine place;
    fs::create_directories(place.root() / "x/y/z");
    fs::create_symlink(DISKUTIL_TOOL, place.root() / "x/y/z/diskutil");

    EXPECT_EQ(MachineFile::findRoot(DISKUTIL_TOOL), std::nullopt);
    EXPECT_EQ(MachineFile::findRoot(place.root() / "x/y/z/diskutil"), std::nullopt);
}

TEST(MachineFile, IsUnknownToAToolWhosePathTellsNothing)
{
    const TestMachine place;
    fs::create_directories(place.root() / "x/y/z");
    fs::create_symlink("loop", place.root() / "x/y/z/loop");

    EXPECT_THROW((void)MachineFile::findRoot(""), MachineFileError);
    EXPECT_THROW((void)MachineFile::findRoot(place.root() / "gone/and/away/diskutil"), MachineFileError);
    EXPECT_THROW((void)MachineFile::findRoot(place.root() / "x/y/z/loop"), MachineFileError);
}

TEST(MachineFile, IsThereForAToolAlsoWhereItCannotBeRead)
{
    const TestMachine machine;
    machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    fs::remove(machine.root() / "machine.json");
    fs::create_symlink("gone", machine.root() / "machine.json");

    const Outcome outcome = runProgram({(machine.root() / "usr/sbin/diskutil").string(), "list"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
}

} // namespace
} // namespace brindle::tools
