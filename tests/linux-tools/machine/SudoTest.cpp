#include "machine/Sudo.h"

#include "TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// A machine with its tools in their places.
class Sudo : public testing::Test {
protected:
    Sudo()
    {
        machine.install("usr/bin/sudo", SUDO_TOOL);
        machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    }

    Outcome sudo(std::vector<std::string> arguments, std::string_view input)
    {
        arguments.insert(arguments.begin(), (machine.root() / "usr/bin/sudo").string());
        return runProgram(arguments, input);
    }

    const TestMachine machine;
};

TEST_F(Sudo, ProvesTheRightPassword)
{
    const Outcome outcome = sudo({"-S", "-v"}, "secret\n");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "Password:");
}

TEST_F(Sudo, RefusesAWrongPassword)
{
    const Outcome outcome = sudo({"-S", "-v"}, "wrong\n");

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "Password:Sorry, try again.\n"
                              "Password:\n"
                              "sudo: no password was provided\n"
                              "sudo: 1 incorrect password attempt\n");
}

TEST_F(Sudo, RefusesAnEmptyInput)
{
    const Outcome outcome = sudo({"-S", "-v"}, "");

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Password:\nsudo: no password was provided\nsudo: a password is required\n");
}

TEST_F(Sudo, GivesThreeAttempts)
{
    const Outcome right = sudo({"-S", "-v"}, "a\nb\nsecret\n");
    const Outcome wrong = sudo({"-S", "-v"}, "a\nb\nc\nsecret\n");

    EXPECT_EQ(right.status, 0);
    EXPECT_EQ(wrong.status, 1);
    EXPECT_THAT(wrong.errors, EndsWith("Sorry, try again.\nsudo: 3 incorrect password attempts\n"));
}

TEST_F(Sudo, TakesAPasswordWithoutANewline)
{
    EXPECT_EQ(sudo({"-S", "-v"}, "secret").status, 0);
}

TEST_F(Sudo, TakesNoPartOfThePassword)
{
    EXPECT_EQ(sudo({"-S", "-v"}, "secre\n").status, 1);
    EXPECT_EQ(sudo({"-S", "-v"}, "secret \n").status, 1);
    EXPECT_EQ(sudo({"-S", "-v"}, "\n").status, 1);
}

TEST_F(Sudo, MountsAnEfiPartition)
{
    const Outcome outcome = sudo({"-S", "-k", "/usr/sbin/diskutil", "mount", "disk2s1"}, "secret\n");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "Volume OPENCORE on disk2s1 mounted\n");
    EXPECT_EQ(outcome.errors, "Password:");
    EXPECT_EQ(machine.mountPointOf("disk2s1"), "Volumes/OPENCORE");
}

TEST_F(Sudo, IsWhatMountingAnEfiPartitionNeeds)
{
    const Outcome outcome = runProgram({(machine.root() / "usr/sbin/diskutil").string(), "mount", "disk2s1"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("(kDAReturnNotPermitted)"));
}

TEST_F(Sudo, RunsNothingWithAWrongPassword)
{
    const Outcome outcome = sudo({"-S", "-k", "/usr/sbin/diskutil", "mount", "disk2s1"}, "wrong\n");

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(machine.text(), sampleMachineText());
}

TEST_F(Sudo, GivesTheStatusOfItsCommand)
{
    const Outcome outcome = sudo({"-S", "-k", "/bin/sh", "-c", "exit 7"}, "secret\n");

    EXPECT_EQ(outcome.status, 7);
}

TEST_F(Sudo, LeavesItsCommandTheRestOfTheInput)
{
    const Outcome outcome = sudo({"-S", "-k", "/bin/cat"}, "secret\nthe rest");

    EXPECT_EQ(outcome.output, "the rest");
}

TEST_F(Sudo, HandsArgumentsOnAsTheyAre)
{
    const Outcome outcome =
        sudo({"-S", "-k", (machine.root() / "usr/sbin/diskutil").string(), "rename", "disk2s2", "-S a; b"}, "secret\n");

    EXPECT_EQ(outcome.output, "Volume on disk2s2 renamed to -S a; b\n");
}

TEST_F(Sudo, TakesWhatStandsBehindTwoHyphensForTheCommand)
{
    const Outcome outcome = sudo({"-S", "-k", "--", "/usr/sbin/diskutil", "mount", "disk2s1"}, "secret\n");

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "Volume OPENCORE on disk2s1 mounted\n");
}

TEST_F(Sudo, PrintsNoRawBytesOfACommand)
{
    const Outcome outcome = sudo({"-S", "-k", "/no/\x1B[2J"}, "secret\n");

    EXPECT_EQ(outcome.errors, "Password:sudo: /no/\uFFFD[2J: command not found\n");
}

TEST_F(Sudo, NamesACommandThatIsMissing)
{
    const Outcome outcome = sudo({"-S", "-k", "/no/such/tool"}, "secret\n");

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Password:sudo: /no/such/tool: command not found\n");
}

TEST_F(Sudo, RefusesWhatItDoesNotKnow)
{
    EXPECT_EQ(sudo({"-S", "-v", "-x"}, "secret\n").status, 1);
    EXPECT_EQ(sudo({"-S"}, "secret\n").status, 1);
    EXPECT_EQ(sudo({"-v"}, "secret\n").status, 1);
}

TEST_F(Sudo, TellsWhatIsWrongWithTheMachineFile)
{
    machine.write("{}");

    const Outcome outcome = sudo({"-S", "-v"}, "secret\n");

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "sudo: " + (machine.root() / "machine.json").string() + ":1: password: the key is missing\n");
}

} // namespace
} // namespace brindle::tools
