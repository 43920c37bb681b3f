#include "HeldFileManager.h"
#include "assembly/ShellFixture.h"

#include "base/Completion.h"
#include "base/Spawn.h"
#include "support/FakeDialogs.h"
#include "support/FakeLauncher.h"
#include "support/FileTree.h"

#include <QTemporaryDir>
#include <QTimer>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

using Confirmation = EFICopyManager::ConfirmationData;

/// Dialogs whose save panels stand, if they are to, until they are closed without an answer.
class StandingDialogs final : public FakeDialogs {
public:
    bool holdsPanels = false;

    void closePanels() { m_answer.complete({}); }

    QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override
    {
        if (!holdsPanels) {
            auto answered = FakeDialogs::savePanel(panel);
            co_return co_await answered;
        }
        savePanels.push_back(panel);
        co_return co_await m_answer;
    }

private:
    Completion<std::optional<std::string>> m_answer;
};

/// The application in the window mode without its pictures, whose file work and tools that change a disk go on only
/// when they are let.
class QuitTest : public ShellFixture {
protected:
    QuitTest()
    {
        machine.addDisk("disk2").withEFI("BOOT");
        Platform replaced = platform();
        m_paths = replaced.toolPaths;
        replaced.childProcesses = replacedBy(launcher);
        replaced.fileManager = replacedBy(files);
        replaced.dialogs = replacedBy(dialogs);
        (void)replaced.secretStore->add({"com.orlane.Brindle", "admin-password"}, Secret("open sesame"));
        start(std::move(replaced));
    }

    ~QuitTest() override { end(); } // before the work that it has begun

    Assembly &assembly() { return startedShell().assembly(); }

    [[nodiscard]] bool hasEnded() const { return std::ranges::find(journal, "quit") != journal.end(); }

    [[nodiscard]] std::string diskutil(const std::string &arguments) const
    {
        return fmt::format("{} {}", m_paths.diskutil(), arguments);
    }

    /// The command line by which the disk tool gets root's rights.
    [[nodiscard]] std::string sudo(const std::string &arguments) const
    {
        return fmt::format("{} -S -k {}", m_paths.sudo(), diskutil(arguments));
    }

    /// Lets the disk tool find \a partition at its mount point.
    void mount(const EFIPartition &partition)
    {
        launcher->answer(diskutil("info " + partition.identifier),
                         {.standardOutput = fmt::format("   Mount Point: {}\n", *partition.mountPoint)});
    }

    /// Begins \a work, whose failure is its own affair. It ends within the test.
    void begin(std::function<QCoro::Task<>()> work)
    {
        m_work = spawn(std::move(work));
        drainEventLoop();
    }

    [[nodiscard]] bool isOver() const { return m_work.isReady(); }

    /// Erases the EFI partition of disk2, and lets the tool run.
    void beginErase()
    {
        launcher->hold(sudo("eraseVolume FAT32 BOOT disk2s1"));
        const EFIPartition partition{.identifier = "disk2s1", .volumeName = "BOOT"};
        assembly().eraseFlow().openForEFIPartition({.identifier = "disk2", .name = "Stick"}, partition, {});
        assembly().eraseOperationManager().setConfirmInput("BOOT");
        assembly().eraseOperationManager().confirm();
        drainEventLoop();
        ASSERT_THAT(launcher->commandLines(), Contains(sudo("eraseVolume FAT32 BOOT disk2s1")));
    }

    FakeLauncher *launcher = nullptr;
    HeldFileManager *files = nullptr;
    StandingDialogs *dialogs = nullptr;

private:
    ToolPaths m_paths = ToolPaths::system();
    QCoro::Task<> m_work;
};

// --- a copy

/// How far a copy has got when the application is to quit.
struct CopyStage {
    const char *name;
    const char *held;                            ///< The file work that it stops at, with its number; null for none.
    std::function<void()> Confirmation::*choice; ///< Null where it is not asked, or doesn't answer.
    bool hasOldFolder;
    bool waits;
};

class QuitAmidACopy : public QuitTest, public testing::WithParamInterface<CopyStage> {
protected:
    QuitAmidACopy()
    {
        writeSampleEFI(folder() / "source/EFI");
        fs::create_directories(folder() / "destination");
        if (GetParam().hasOldFolder)
            writeFile(folder() / "destination/EFI/old", "old");
        dialogs->savePaths = {(folder() / "backup").string()};
        if (GetParam().held)
            files->hold(GetParam().held);
    }

    [[nodiscard]] fs::path folder() const { return m_folder.path().toStdString(); }

    [[nodiscard]] PhysicalDisk disk(std::string identifier, const char *mountPoint) const
    {
        return {
            .identifier = identifier,
            .name = "Disk " + identifier,
            .efiPartitions = {
                {.identifier = identifier + "s1", .isMounted = true, .mountPoint = (folder() / mountPoint).string()}}};
    }

    /// Copies up to the stage.
    void copy()
    {
        EFICopyManager &manager = assembly().efiCopyManager();
        const PhysicalDisk from = disk("disk1", "source");
        const PhysicalDisk to = disk("disk2", "destination");
        mount(from.efiPartitions[0]);
        mount(to.efiPartitions[0]);
        begin([&manager, from, to] {
            return manager.copyEFI(from, from.efiPartitions[0], to, to.efiPartitions[0], false);
        });
        if (const auto choice = GetParam().choice) {
            waitUntil([&] { return manager.showConfirmationDialog(); });
            ((*manager.confirmationData()).*choice)();
        }
        waitUntil([&] { return GetParam().held ? files->isHolding() : manager.showConfirmationDialog(); });
    }

    [[nodiscard]] bool isCopied() const
    {
        return treeOf(folder() / "source/EFI") == treeOf(folder() / "destination/EFI");
    }

private:
    QTemporaryDir m_folder{QStringLiteral("/dev/shm/brindle-XXXXXX")}; // in memory: each copy is flushed
};

INSTANTIATE_TEST_SUITE_P(
    At, QuitAmidACopy,
    testing::Values(CopyStage{"TheCheckOfTheSource", "list 1", nullptr, true, false},
                    CopyStage{"TheQuestion", nullptr, nullptr, true, false},
                    CopyStage{"TheBackup", "copy 1", &Confirmation::onBackup, true, true},
                    CopyStage{"TheRemovalAfterTheBackup", "remove 1", &Confirmation::onBackup, true, true},
                    CopyStage{"TheFilesAfterTheBackup", "copy 2", &Confirmation::onBackup, true, true},
                    CopyStage{"TheComparisonAfterTheBackup", "list 3", &Confirmation::onBackup, true, true},
                    CopyStage{"TheRemoval", "remove 1", &Confirmation::onOverwrite, true, true},
                    CopyStage{"TheFilesOverAnOldFolder", "copy 1", &Confirmation::onOverwrite, true, true},
                    CopyStage{"TheFiles", "copy 1", nullptr, false, true},
                    CopyStage{"TheComparison", "list 3", nullptr, false, true}),
    [](const auto &row) { return row.param.name; });

TEST_P(QuitAmidACopy, WaitsForItsEndOnceFilesAreChangedAndCancelsItBefore)
{
    copy();
    const auto before = treeOf(folder() / "destination");

    application.terminate();
    drainEventLoop();
    EXPECT_EQ(hasEnded(), !GetParam().waits);

    files->release();
    waitUntil([&] { return hasEnded() && isOver() && !assembly().efiCopyManager().isOperationInProgress(); });
    drainEventLoop();
    EXPECT_EQ(isCopied(), GetParam().waits);
    if (!GetParam().waits)
        EXPECT_EQ(treeOf(folder() / "destination"), before);
    EXPECT_EQ(fs::exists(folder() / "backup"), GetParam().choice == &Confirmation::onBackup);
    EXPECT_EQ(std::ranges::count(journal, "quit"), 1);
}

/// A copy to a folder, which asks where to before it changes anything.
class QuitAmidACopyToAFolder : public QuitTest {
protected:
    QuitAmidACopyToAFolder() { writeSampleEFI(folder() / "source/EFI"); }

    [[nodiscard]] fs::path folder() const { return m_folder.path().toStdString(); }

    QCoro::Task<> copyToFolder()
    {
        const EFIPartition partition{
            .identifier = "disk1s1", .isMounted = true, .mountPoint = (folder() / "source").string()};
        mount(partition);
        return assembly().efiCopyManager().copyEFIToLocation({.identifier = "disk1", .name = "Disk"}, partition);
    }

    /// Copies up to the work that is held.
    void copy()
    {
        begin([this] { return copyToFolder(); });
        waitUntil([&] { return files->isHolding(); });
    }

private:
    QTemporaryDir m_folder{QStringLiteral("/dev/shm/brindle-XXXXXX")};
};

TEST_F(QuitAmidACopyToAFolder, WaitsForItsEndOnceThePlaceIsChosen)
{
    dialogs->savePaths = {(folder() / "copy").string()};
    files->hold("copy 1");
    copy();

    application.terminate();
    drainEventLoop();
    EXPECT_FALSE(hasEnded());

    files->release();
    waitUntil([&] { return hasEnded() && isOver(); });
    EXPECT_EQ(treeOf(folder() / "copy"), treeOf(folder() / "source/EFI"));
}

TEST_F(QuitAmidACopyToAFolder, EndsAfterACopyThatFails)
{
    dialogs->savePaths = {"/proc/copy"};
    files->hold("copy 1");
    copy();
    application.terminate();
    std::vector<std::string> statuses;
    QObject::connect(&assembly().efiCopyManager(), &EFICopyManager::operationStatusChanged,
                     [&] { statuses.push_back(assembly().efiCopyManager().operationStatus()); });

    files->release();
    waitUntil([&] { return hasEnded() && isOver(); });

    EXPECT_THAT(statuses, Contains(testing::StartsWith("Copy failed: ")));
}

TEST_F(QuitAmidACopyToAFolder, EndsAtOnceAfterACopyThatHasFailedAndStands)
{
    dialogs->savePaths = {"/proc/copy"};
    files->hold("copy 1");
    copy();
    files->release();
    const EFICopyManager &manager = assembly().efiCopyManager();
    waitUntil([&] { return isOver(); });
    EXPECT_THAT(manager.operationStatus(), testing::StartsWith("Copy failed: "));
    EXPECT_TRUE(manager.isOperationInProgress());

    application.terminate();

    EXPECT_TRUE(hasEnded());
}

TEST_F(QuitAmidACopyToAFolder, EndsAtOnceWhereThePlaceIsNotChosenYet)
{
    dialogs->holdsPanels = true;
    begin([this] { return copyToFolder(); });
    waitUntil([&] { return dialogs->savePanels.size() == 1; });

    application.terminate();

    EXPECT_TRUE(hasEnded());
    dialogs->closePanels();
    drainEventLoop();
    EXPECT_EQ(assembly().efiCopyManager().operationStatus(), "Operation cancelled");
}

// --- what runs with root's rights

/// A tool that is asked for with root's rights.
struct Action {
    const char *name;
    const char *arguments;
    std::function<QCoro::Task<>(Assembly &)> run;
};

class QuitAmidAnAction : public QuitTest, public testing::WithParamInterface<Action> {
protected:
    /// Lets the partition be mounted where it is to be unmounted.
    QuitAmidAnAction()
    {
        const bool isMounted = std::string_view(GetParam().name) == "Unmount";
        launcher->answer(diskutil("info disk2s1"),
                         {.standardOutput = isMounted ? "   Mount Point:   /Volumes/BOOT\n" : ""});
    }
};

INSTANTIATE_TEST_SUITE_P(
    Such, QuitAmidAnAction,
    testing::Values(Action{"Mount", "mount disk2s1",
                           [](Assembly &all) { return all.efiOperations().mount("disk2s1", "Stick"); }},
                    Action{"Unmount", "unmount disk2s1",
                           [](Assembly &all) { return all.efiOperations().unmount("disk2s1", "Stick"); }},
                    Action{"Rename", "rename disk2s1 NEW",
                           [](Assembly &all) { return all.efiOperations().rename("disk2s1", "NEW"); }},
                    Action{"EraseOfAnEFIPartition", "eraseVolume FAT32 BOOT disk2s1",
                           [](Assembly &all) { return all.diskManager().formatEFIPartition("disk2s1", "BOOT"); }},
                    Action{"EraseOfAVolume", "eraseVolume ExFAT WORK WORK",
                           [](Assembly &all) { return all.diskManager().eraseVolume("WORK", "WORK", "ExFAT"); }},
                    Action{"EraseOfADisk", "eraseDisk APFS WORK GPT disk2",
                           [](Assembly &all) { return all.diskManager().eraseDisk("disk2", "WORK", "APFS"); }}),
    [](const auto &row) { return row.param.name; });

TEST_P(QuitAmidAnAction, WaitsForTheEndOfTheTool)
{
    const std::string commandLine = sudo(GetParam().arguments);
    launcher->hold(commandLine);
    launcher->answer(commandLine, {});
    begin([this] { return GetParam().run(assembly()); });
    ASSERT_THAT(launcher->commandLines(), Contains(commandLine));

    application.terminate();
    drainEventLoop();
    EXPECT_FALSE(hasEnded());

    launcher->release(commandLine);
    drainEventLoop();
    EXPECT_TRUE(hasEnded());
    EXPECT_EQ(launcher->terminations, 0);
    clock->advance(std::chrono::seconds(2)); // an erase pauses and scans after its tool
    EXPECT_TRUE(isOver());
}

TEST_F(QuitTest, WaitsForTheForcedUnmountThatFollowsARefusedOne)
{
    launcher->answer(diskutil("info disk2s1"), {.standardOutput = "   Mount Point:   /Volumes/BOOT\n"});
    launcher->hold(sudo("unmount disk2s1"));
    launcher->hold(sudo("unmount force disk2s1"));
    begin([this] { return assembly().efiOperations().unmount("disk2s1", "Stick"); });
    application.terminate();

    launcher->release(sudo("unmount disk2s1"));
    drainEventLoop();
    EXPECT_FALSE(hasEnded());

    launcher->release(sudo("unmount force disk2s1"));
    drainEventLoop();
    EXPECT_TRUE(hasEnded());
}

TEST_F(QuitTest, EndsAtOnceWhereAnEraseIsNotConfirmed)
{
    assembly().eraseFlow().openForDisk({.identifier = "disk2", .name = "Stick"}, {});

    application.terminate();
    drainEventLoop();

    EXPECT_TRUE(hasEnded());
    EXPECT_THAT(launcher->commandLines(), Not(Contains(testing::HasSubstr("erase"))));
}

TEST_F(QuitTest, TellsOfAnEraseThatFailsMeanwhile)
{
    beginErase();
    application.terminate();

    launcher->release(sudo("eraseVolume FAT32 BOOT disk2s1"));
    drainEventLoop();

    EXPECT_THAT(log.lines(), Contains(testing::StartsWith("EFI erase failed: ")));
    EXPECT_TRUE(hasEnded());
}

// --- an eject

/// A disk that is being let go when the application is to quit.
class QuitAmidAnEject : public QuitTest {
protected:
    QuitAmidAnEject()
    {
        launcher->hold(tool);
        launcher->answer(tool, {.standardOutput = "Disk disk2 ejected\n"});
        begin([this] { return eject(); });
        EXPECT_THAT(launcher->commandLines(), Contains(tool));
    }

    QCoro::Task<> eject()
    {
        auto ejecting = assembly().diskManager().ejectDisk("disk2");
        (void)co_await ejecting;
    }

    const std::string tool = diskutil("eject disk2");
};

TEST_F(QuitAmidAnEject, WaitsForTheEndOfTheTool)
{
    application.terminate();
    drainEventLoop();
    EXPECT_FALSE(hasEnded());

    launcher->release(tool);
    drainEventLoop();
    EXPECT_TRUE(hasEnded());
    EXPECT_EQ(launcher->terminations, 0);
    clock->advance(std::chrono::seconds(2)); // an eject pauses and scans after its tool
    drainEventLoop();
    EXPECT_TRUE(isOver());
}

TEST_F(QuitAmidAnEject, WaitsForItsEndAlsoWhereItFails)
{
    launcher->answer(tool, {.terminationStatus = 1, .standardError = "busy\n"});
    application.terminate();

    launcher->release(tool);
    drainEventLoop();

    EXPECT_TRUE(hasEnded());
    EXPECT_TRUE(isOver());
}

TEST_F(QuitAmidAnEject, LetsTheToolEndAlsoWhereTheEventLoopWasEndedByOthers)
{
    launcher->answer(tool, {.terminationStatus = 1, .standardError = "busy\n"}); // and nothing is to come after it
    std::optional<int> terminations;
    QTimer::singleShot(0, [&] {
        terminations = launcher->terminations;
        launcher->release(tool);
    });

    end();

    EXPECT_EQ(terminations, 0);
}

// --- by whatever way

TEST_F(QuitTest, IsRememberedFromTheMenuAlso)
{
    beginErase();

    application.menu.back().back().action();
    drainEventLoop();
    EXPECT_FALSE(hasEnded());

    launcher->release(sudo("eraseVolume FAT32 BOOT disk2s1"));
    drainEventLoop();
    EXPECT_TRUE(hasEnded());
}

TEST_F(QuitTest, EndsOnceHoweverOftenItIsAskedFor)
{
    beginErase();
    for (int i = 0; i < 3; ++i)
        application.terminate();

    launcher->release(sudo("eraseVolume FAT32 BOOT disk2s1"));
    drainEventLoop();

    EXPECT_EQ(std::ranges::count(journal, "quit"), 1);
}

TEST_F(QuitTest, LeavesAnApplicationAloneThatNobodyEnds)
{
    beginErase();

    launcher->release(sudo("eraseVolume FAT32 BOOT disk2s1"));
    drainEventLoop();

    EXPECT_FALSE(hasEnded());
}

TEST_F(QuitTest, WaitsAlsoWhereTheEventLoopWasEndedByOthers)
{
    beginErase();
    bool isReleased = false;
    QTimer::singleShot(0, [&] {
        isReleased = true;
        launcher->release(sudo("eraseVolume FAT32 BOOT disk2s1"));
    });

    end();

    EXPECT_TRUE(isReleased);
}

} // namespace
} // namespace brindle
