// The commands that copy and compare EFI folders, as processes on simulated machines with real folders.

#include "cli/BrindlectlFixture.h"
#include "cli/TerminalProgram.h"
#include "support/FileTree.h"
#include "support/Patience.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <sys/stat.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CopyCommands : public Brindlectl {
protected:
    CopyCommands()
    {
        writeSampleEFI(source());
        fs::create_directories(mountPoint("destination"));
        machine.addDisk("disk1").named("Source").onBus("USB").withEFI("OPENCORE", mountPoint("source"));
        machine.addDisk("disk2").named("Stick").onBus("USB").withEFI("EFI", mountPoint("destination")).withEFI("SPARE");
    }

    [[nodiscard]] std::string mountPoint(const char *name) const { return machine.root() / "Volumes" / name; }
    [[nodiscard]] fs::path source() const { return fs::path(mountPoint("source")) / "EFI"; }
    [[nodiscard]] fs::path destination() const { return fs::path(mountPoint("destination")) / "EFI"; }
    [[nodiscard]] std::string backup() const { return machine.root() / "backup"; }

    void writeOldEFI() const
    {
        writeFile(destination() / "OLD/old.efi", "old");
        writeFile(destination() / ".old", "hidden");
    }
};

TEST_F(CopyCommands, CopyToAFreeDestinationAndTellEachStep)
{
    const Outcome copy = run({"copy", "disk1s1", "disk2s1"});

    EXPECT_EQ(copy.status, 0);
    EXPECT_EQ(copy.output, "Preparing EFI copy operation...\n"
                           "Checking destination...\n"
                           "Destination is ready...\n"
                           "Copying EFI from disk1s1 (OPENCORE) to disk2s1 (EFI)...\n"
                           "Copying files...\n"
                           "Copy completed, verifying...\n"
                           "Verifying copied files...\n"
                           "Verification completed successfully\n"
                           "EFI copy completed successfully\n");
    EXPECT_THAT(copy.error, IsEmpty());
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(CopyCommands, CopyWithABackupOfTheOldFolder)
{
    writeOldEFI();
    const auto old = treeOf(destination());

    const Outcome copy = run({"copy", "disk1s1", "disk2s1", "--backup", backup(), "--verbose"});

    EXPECT_EQ(copy.status, 0);
    EXPECT_THAT(copy.output, HasSubstr("Checking destination...\nCreating backup of existing EFI folder...\n"));
    EXPECT_THAT(copy.output, HasSubstr("Removing existing EFI folder...\n"));
    EXPECT_THAT(copy.error, HasSubstr("EFI backup created at: " + backup() + "\n"));
    EXPECT_EQ(treeOf(backup()), old);
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(CopyCommands, SaveTheBackupBesideTheCurrentFolderForARelativePath)
{
    writeOldEFI();
    const auto old = treeOf(destination());
    QProcess process;
    process.setWorkingDirectory(QString::fromStdString(machine.root().string()));

    start(process, {"copy", "disk1s1", "disk2s1", "--backup", "backup"});

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(treeOf(backup()), old);
}

TEST_F(CopyCommands, OverwriteTheOldFolderWhereTheyAreToldTo)
{
    writeOldEFI();

    const Outcome copy = run({"copy", "disk1s1", "disk2s1", "--overwrite"});

    EXPECT_EQ(copy.status, 0);
    EXPECT_THAT(copy.output, HasSubstr("Preparing to overwrite existing EFI folder...\n"));
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(CopyCommands, RefuseAnOldFolderWithNobodyToAskAndChangeNothing)
{
    writeOldEFI();
    const auto old = treeOf(destination());

    const Outcome copy = run({"copy", "disk1s1", "disk2s1"});

    EXPECT_EQ(copy.status, 2);
    EXPECT_EQ(copy.output, "Preparing EFI copy operation...\nChecking destination...\n");
    EXPECT_EQ(copy.error, "brindlectl: disk2s1 has an EFI folder: say --backup PATH or --overwrite\n");
    EXPECT_EQ(treeOf(destination()), old);
}

TEST_F(CopyCommands, SayThatThereIsNothingToBackUp)
{
    const Outcome copy = run({"copy", "disk1s1", "disk2s1", "--backup", backup()});

    EXPECT_EQ(copy.status, 0);
    EXPECT_EQ(copy.error, "brindlectl: disk2s1 had no EFI folder: there was nothing to back up\n");
    EXPECT_FALSE(fs::exists(backup()));
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(CopyCommands, LeaveTheOldFolderWhereTheBackupsPlaceIsTaken)
{
    writeOldEFI();
    const auto old = treeOf(destination());
    writeFile(backup(), "a file of the user");

    const Outcome copy = run({"copy", "disk1s1", "disk2s1", "--backup", backup()});

    EXPECT_EQ(copy.status, 1);
    EXPECT_EQ(copy.error,
              fmt::format("brindlectl: Operation failed: Copy operation failed: {}: File exists\n", backup()));
    EXPECT_EQ(treeOf(destination()), old);
}

TEST_F(CopyCommands, TakeEitherABackupOrNone)
{
    EXPECT_EQ(run({"copy", "disk1s1", "disk2s1", "--backup", "x", "--overwrite"}).status, 2);
    EXPECT_EQ(run({"copy", "disk1s1"}).status, 2);
    EXPECT_EQ(run({"save", "disk1s1"}).status, 2);
    EXPECT_EQ(run({"verify", "disk1s1"}).status, 2);
    EXPECT_FALSE(fs::exists(destination()));
}

TEST_F(CopyCommands, SaveAFolderUnderTheGivenName)
{
    const Outcome save = run({"save", "disk1s1", backup()});

    EXPECT_EQ(save.status, 0);
    EXPECT_THAT(save.output, StartsWith("Preparing to copy EFI folder...\nCopying EFI folder from disk1s1 (OPENCORE)"));
    EXPECT_THAT(save.output, HasSubstr("\nEFI folder copied successfully\n"));
    EXPECT_EQ(treeOf(backup()), treeOf(source()));
}

TEST_F(CopyCommands, FailToSaveWhereThePlaceIsTaken)
{
    writeFile(backup(), "a file of the user");

    const Outcome save = run({"save", "disk1s1", backup()});

    EXPECT_EQ(save.status, 1);
    EXPECT_EQ(save.error, fmt::format("brindlectl: Copy operation failed: {}: File exists\n", backup()));
}

TEST_F(CopyCommands, NameAPartitionThatIsNotThere)
{
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{"copy", "disk9s1", "disk2s1"},
                                               {"copy", "disk1s1", "disk9s1"},
                                               {"save", "disk9s1", backup()},
                                               {"verify", "disk9s1", "disk1s1"}}) {
        const Outcome outcome = run(arguments);

        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.error, "brindlectl: There is no EFI partition \"disk9s1\"\n");
        EXPECT_THAT(outcome.output, IsEmpty());
    }
}

TEST_F(CopyCommands, SayWhichPartitionsAreOfNoUse)
{
    EXPECT_EQ(run({"copy", "disk1s1", "disk2s2"}).error, "brindlectl: EFI partition is not mounted\n");
    EXPECT_EQ(run({"copy", "disk1s1", "disk1s1"}).error, "brindlectl: Source and destination cannot be the same\n");
    fs::remove_all(source());

    const Outcome copy = run({"copy", "disk1s1", "disk2s1"});

    EXPECT_EQ(copy.status, 1);
    EXPECT_EQ(copy.error, "brindlectl: Source EFI folder not found\n");
}

TEST_F(CopyCommands, FindNoDifferenceInACopy)
{
    ASSERT_EQ(run({"copy", "disk1s1", "disk2s1"}).status, 0);

    const Outcome verify = run({"verify", "disk1s1", "disk2s1"});

    EXPECT_EQ(verify.status, 0);
    EXPECT_EQ(verify.output, "6 files, 16 KB: no difference\n");
}

TEST_F(CopyCommands, TellWhatDiffersBetweenAPartitionAndAFolder)
{
    ASSERT_EQ(run({"save", "disk1s1", backup()}).status, 0);
    writeFile(fs::path(backup()) / "OC/config.plist", "<plisT/>");
    writeFile(fs::path(backup()) / "OC/Drivers/\x1b[2J", "x");

    const Outcome verify = run({"verify", "disk1s1", backup()});

    EXPECT_EQ(verify.status, 1);
    EXPECT_EQ(verify.output, "only in B: OC/Drivers/<U+001B>[2J\n"
                             "of another content: OC/config.plist\n"
                             "6 files, 16 KB: 2 differences\n");
}

TEST_F(CopyCommands, FailToCompareWithAFolderThatIsNotThere)
{
    const Outcome verify = run({"verify", "disk1s1", backup()});

    EXPECT_EQ(verify.status, 1);
    EXPECT_EQ(verify.error, fmt::format("brindlectl: {}: No such file or directory\n", backup()));
}

/// A source whose copy takes long enough to be interrupted.
class InterruptedCopy : public CopyCommands {
protected:
    InterruptedCopy()
    {
        for (int i = 0; i < 3000; ++i)
            std::ofstream(source() / fmt::format("OC/file-{}", i)) << std::string(3000, 'x');
    }

    /// Starts a copy and waits until files are being copied.
    void startCopy(QProcess &process)
    {
        start(process, {"copy", "disk1s1", "disk2s1"});
        while (!output.contains("Copying files...")) {
            ASSERT_TRUE(process.waitForReadyRead(kPatienceMilliseconds));
            output += process.readAllStandardOutput();
        }
    }

    static void signal(const QProcess &process, int signalNumber)
    {
        ::kill(static_cast<pid_t>(process.processId()), signalNumber);
    }
    static void interrupt(const QProcess &process) { signal(process, SIGINT); }

    /// Waits until the copy has ended well by itself, and is whole.
    void expectWhole(QProcess &process)
    {
        ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0);
        EXPECT_EQ(treeOf(destination()), treeOf(source()));
    }

    QByteArray output;
};

TEST_F(InterruptedCopy, SaysThatItCannotBeStoppedAndTellsHowItEnded)
{
    QProcess process;
    startCopy(process);

    interrupt(process);

    expectWhole(process);
    EXPECT_EQ(
        process.readAllStandardError().toStdString(),
        "brindlectl: Files are being copied, which can't be stopped: waiting for the end. Interrupt again to leave "
        "at once.\n");
}

TEST_F(InterruptedCopy, GoesOnWhenItIsToldToEndMoreThanOnceByAnotherSignal)
{
    QProcess process;
    startCopy(process);

    for (const int signalNumber : {SIGHUP, SIGHUP, SIGTERM, SIGTERM})
        signal(process, signalNumber);

    expectWhole(process);
}

TEST_F(InterruptedCopy, GoesOnWhenNobodyReadsWhatItTells)
{
    QProcess process;
    Reader reader(process);
    start(process, {"copy", "disk1s1", "disk2s1"});
    ASSERT_TRUE(process.waitForStarted(kPatienceMilliseconds));
    reader.readUntil("Copying files...");

    reader.go();
    interrupt(process);

    expectWhole(process);
}

TEST_F(InterruptedCopy, GoesOnWhenItsTerminalIsClosed)
{
    TerminalProgram copy(BRINDLECTL, {"copy", "disk1s1", "disk2s1"},
                         {{"PATH", "/usr/bin:/bin"},
                          {"LANG", "C.UTF-8"},
                          {"HOME", machine.root().string()},
                          {"TMPDIR", temporary.string()},
                          {"BRINDLE_TOOL_ROOT", machine.root().string()}},
                         [] {});
    copy.awaitText("Copying files...");

    EXPECT_EQ(copy.endWithoutTerminal(), 0);
    EXPECT_EQ(treeOf(destination()), treeOf(source()));
}

TEST_F(InterruptedCopy, LeavesAtOnceAtTheSecondTime)
{
    QProcess process;
    startCopy(process);
    interrupt(process);
    QByteArray said;
    while (!said.contains("Interrupt again"))
        ASSERT_TRUE((process.waitForFinished(1) || true) && process.state() == QProcess::Running &&
                    (said += process.readAllStandardError(), true));

    while (process.state() == QProcess::Running) { // the first one may still be on its way
        interrupt(process);
        process.waitForFinished(5);
    }

    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGINT);
}

} // namespace
} // namespace brindle
