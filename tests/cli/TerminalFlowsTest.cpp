// The copy and erase flows in a real terminal, where they ask.

#include "cli/ActingFixture.h"
#include "cli/TerminalProgram.h"

#include <filesystem>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class TerminalFlows : public ActingFixture {
protected:
    TerminalFlows()
    {
        EXPECT_EQ(runWithPassword({"mount", "disk2s1"}).status, 0);
        old = treeOf(destination());
        EXPECT_FALSE(old.empty());
    }

    [[nodiscard]] fs::path source() const { return fs::path(root()) / "Volumes/OPENCORE/EFI"; }
    [[nodiscard]] fs::path destination() const { return fs::path(root()) / "Volumes/SYSTEM/EFI"; }

    TerminalProgram program(const std::vector<std::string> &arguments)
    {
        return {BRINDLECTL, arguments, environment(), becomeOrdinaryUser};
    }

    std::map<std::string, std::string> old;
};

TEST_F(TerminalFlows, AskAsTheDialogDoesAndCopyAfterABackup)
{
    TerminalProgram copy = program({"copy", "disk3s1", "disk2s1"});
    const std::string question = copy.awaitText("Number: ");
    EXPECT_THAT(question,
                HasSubstr("EFI Folder Exists\r\nThe destination already contains an EFI folder. Choose how to "
                          "proceed:\r\n"));
    EXPECT_THAT(question, HasSubstr("1) Create Backup & Continue  2) Overwrite Without Backup  3) Cancel  Number: "));

    copy.type("1\n");
    EXPECT_THAT(copy.awaitText("]: "), HasSubstr("Save EFI Backup\r\n"));
    copy.type(home() + "/backup\n");

    EXPECT_EQ(copy.end(), 0);
    EXPECT_THAT(copy.shown(), HasSubstr("EFI copy completed successfully\r\n"));
    EXPECT_EQ(treeOf(home() + "/backup"), old);
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(TerminalFlows, DrawABarBeneathTheSteps)
{
    TerminalProgram copy = program({"copy", "disk3s1", "disk2s1", "--overwrite"});

    EXPECT_EQ(copy.end(), 0);
    EXPECT_THAT(copy.shown(), HasSubstr("\r[############################------------]  70%"));
    EXPECT_THAT(copy.shown(), HasSubstr("\rVerifying copied files...\r\n"));
}

TEST_F(TerminalFlows, CancelACopyWhoseQuestionIsCancelled)
{
    for (const char *answer : {"3\n", "\x03"}) {
        TerminalProgram copy = program({"copy", "disk3s1", "disk2s1"});
        copy.awaitText("Number: ");

        copy.type(answer);

        EXPECT_EQ(copy.end(), 1);
        EXPECT_THAT(copy.shown(), HasSubstr("brindlectl: Operation cancelled\r\n"));
    }
    EXPECT_EQ(treeOf(destination()), old);
}

TEST_F(TerminalFlows, CallABackupWithoutAPlaceAFailure)
{
    TerminalProgram copy = program({"copy", "disk3s1", "disk2s1"});
    copy.awaitText("Number: ");
    copy.type("1\n");
    copy.awaitText("]: ");

    copy.type("\x03");

    EXPECT_EQ(copy.end(), 1);
    EXPECT_THAT(copy.shown(), HasSubstr("brindlectl: Operation failed: Operation cancelled by user\r\n"));
    EXPECT_EQ(treeOf(destination()), old);
}

TEST_F(TerminalFlows, AskForTheNameUntilItIsRightAndThenForThePassword)
{
    TerminalProgram erase = program({"erase-efi", "disk2s1"});
    const std::string question = erase.awaitText("]: ");
    EXPECT_THAT(question,
                HasSubstr("Erase EFI Partition?\r\nThis will permanently erase the EFI partition (disk2s1) on "
                          "CT500MX500SSD1, including any bootloader"));
    EXPECT_THAT(question, HasSubstr("Type \"SYSTEM\" to confirm\r\n"));

    erase.type("system\n");
    erase.awaitText("That doesn't match \"SYSTEM\" — try again.\r\nType \"SYSTEM\" to confirm\r\nName []: ");
    erase.type("SYSTEM\n");
    erase.awaitText("Administrator Password: ");
    erase.type(std::string(kAdminPassword) + "\n");

    EXPECT_EQ(erase.end(), 0);
    EXPECT_THAT(erase.shown(), HasSubstr("has been erased and reformatted as FAT32.\r\n"));
    EXPECT_FALSE(fs::exists(destination()));
}

TEST_F(TerminalFlows, EraseNothingWhereTheNameIsNotTyped)
{
    TerminalProgram erase = program({"erase-efi", "disk2s1"});
    erase.awaitText("]: ");

    erase.type("\x03");

    EXPECT_EQ(erase.end(), 1);
    EXPECT_THAT(erase.shown(), HasSubstr("brindlectl: Nothing was erased\r\n"));
    EXPECT_THAT(erase.shown(), Not(HasSubstr("Password")));
    EXPECT_EQ(treeOf(destination()), old);
}

} // namespace
} // namespace brindle
