#include "privileged/EFIOperations.h"

#include "privileged/KeychainFixture.h"
#include "support/FakeMountNotifier.h"
#include "support/FakeToolRunner.h"
#include "support/FakeWorkspace.h"
#include "support/Patience.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kUnmounted = "   Volume Name:               EFI\n   Mounted:                   No\n";

/// EFI operations with a stored password, on a folder that stands for a machine with a `diskutil`.
class EFIOperationsTest : public KeychainFixture {
protected:
    EFIOperationsTest()
    {
        std::filesystem::create_directories(root() + "/usr/sbin");
        std::ofstream(diskutil()) << "";
        (void)store.add(kPasswordKey, Secret("open sesame"));
        answerInfo(kUnmounted);
    }

    std::string root() { return m_folder.path().toStdString(); }
    std::string diskutil() { return root() + "/usr/sbin/diskutil"; }
    std::string infoLine() { return diskutil() + " info disk2s1"; }
    std::string sudoLine(const std::string &arguments)
    {
        return fmt::format("{}/usr/bin/sudo -S -k {} {}", root(), diskutil(), arguments);
    }

    void answerInfo(const std::string &text) { tools.answer(infoLine(), text); }
    std::string mounted() { return fmt::format("   Mounted: Yes\n   Mount Point:               {}\n", root()); }
    std::string opened() { return "open " + root(); }

    void answerSudo(const std::string &arguments) { launcher.answer(sudoLine(arguments), {}); }
    void refuseSudo(const std::string &arguments, const std::string &words)
    {
        launcher.answer(sudoLine(arguments), {.terminationStatus = 1, .standardError = words});
    }

    QCoro::Task<> mount() { return operations.mount("disk2s1", "Stick"); }
    /// A mount whose command runs and waits to be released, to work then.
    QCoro::Task<> startedMount()
    {
        answerSudo("mount disk2s1");
        launcher.hold(sudoLine("mount disk2s1"));
        auto mounting = mount();
        clock.advance({}); // does what the event loop has to do
        return mounting;
    }
    QCoro::Task<> unmount() { return operations.unmount("disk2s1", "Stick"); }

    static Error failureOf(QCoro::Task<> task)
    {
        try {
            blockOn(std::move(task), kPatience);
            return {"NoError", 0, ""};
        } catch (const Error &error) {
            return error;
        }
    }

    QTemporaryDir m_folder;
    std::vector<std::string> journal;
    FakeToolRunner tools;
    FakeMountNotifier notifier{journal};
    FakeWorkspace workspace{journal};
    EFIOperations operations = makeOperations();

private:
    EFIOperations makeOperations()
    {
        paths = ToolPaths::underRoot(root()); // the keychain helper has a reference to them
        return EFIOperations(tools, paths, keychain(), notifier, workspace, defaults);
    }
};

// --- mount

TEST_F(EFIOperationsTest, MountsThenNotifiesThenOpensTheFolder)
{
    auto mounting = startedMount();
    answerInfo(mounted());
    const bool isToldMeanwhile = !journal.empty();
    launcher.release(sudoLine("mount disk2s1"));
    blockOn(std::move(mounting), kPatience);

    EXPECT_FALSE(isToldMeanwhile);
    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudoLine("mount disk2s1")));
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked", opened()));
}

TEST_F(EFIOperationsTest, NeedsNoPasswordForAMountedPartitionAndStillNotifiesAndOpensIt)
{
    store.remove(kPasswordKey);
    answerInfo(mounted());

    blockOn(mount(), kPatience);

    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked", opened()));
}

TEST_F(EFIOperationsTest, MountsWhereNotApplicableStandsInAnyOtherField)
{
    answerSudo("mount disk2s1");
    answerInfo(mounted() + "   Volume UUID: Not applicable\n");

    blockOn(mount(), kPatience);

    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudoLine("mount disk2s1")));
}

TEST_F(EFIOperationsTest, MountsWhatCouldNotBeFoundAndTellsWhatTheToolSays)
{
    answerInfo("Mount Point: disk2s1 could not be found");
    refuseSudo("mount disk2s1", "Could not find disk: disk2s1\n");

    const Error error = failureOf(mount());

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.localizedDescription(), "Could not find disk: disk2s1\n");
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) failed"));
}

TEST_F(EFIOperationsTest, NotifiesOfAFailedMountAndThrowsItUnchanged)
{
    refuseSudo("mount disk2s1", "the volume is damaged\n");

    const Error error = failureOf(mount());

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(), "the volume is damaged\n");
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) failed"));
}

TEST_F(EFIOperationsTest, CountsAFailedQuestionAsAFailedMount)
{
    tools.fail(infoLine(), Error("CommandError", 1, "Could not find disk: disk2s1"));

    const Error error = failureOf(mount());

    EXPECT_EQ(error.domain(), "CommandError");
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) failed"));
}

TEST_F(EFIOperationsTest, OpensTheFolderOfAMountWhereTheSettingWasNeverWritten)
{
    defaults.remove(DefaultsKeys::kAutoOpenFinderOnMount);
    answerInfo(mounted());

    blockOn(mount(), kPatience);

    EXPECT_EQ(journal.back(), opened());
}

TEST_F(EFIOperationsTest, OpensNothingWhereTheSettingIsFalse)
{
    defaults.set(DefaultsKeys::kAutoOpenFinderOnMount, false);
    answerInfo(mounted());

    blockOn(mount(), kPatience);

    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked"));
}

TEST_F(EFIOperationsTest, TakesOnlyABooleanFalseAsASettingThatIsOff)
{
    defaults.set(DefaultsKeys::kAutoOpenFinderOnMount, 0);
    answerInfo(mounted());

    blockOn(mount(), kPatience);

    EXPECT_EQ(journal.back(), opened());
}

TEST_F(EFIOperationsTest, IgnoresThatTheFolderOfAMountCannotBeOpened)
{
    auto mounting = startedMount();
    tools.fail(infoLine(), Error("CommandError", 1, "gone"));
    launcher.release(sudoLine("mount disk2s1"));

    EXPECT_EQ(failureOf(std::move(mounting)).domain(), "NoError");
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked"));
}

// --- unmount

TEST_F(EFIOperationsTest, UnmountsAndNotifies)
{
    answerInfo(mounted());
    answerSudo("unmount disk2s1");

    blockOn(unmount(), kPatience);

    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudoLine("unmount disk2s1")));
    EXPECT_THAT(journal, ElementsAre("unmount of Stick worked"));
}

struct UnmountedCase {
    const char *name;
    const char *info;
};

class CountsAsUnmounted : public EFIOperationsTest, public testing::WithParamInterface<UnmountedCase> {};

TEST_P(CountsAsUnmounted, AndIssuesNoCommand)
{
    answerInfo(GetParam().info);

    blockOn(unmount(), kPatience);

    EXPECT_THAT(launcher.commandLines(), IsEmpty());
    EXPECT_THAT(journal, ElementsAre("unmount of Stick worked"));
}

INSTANTIATE_TEST_SUITE_P(EFIOperations, CountsAsUnmounted,
                         testing::Values(UnmountedCase{"NoMountPoint", kUnmounted},
                                         UnmountedCase{"MountPointNotApplicable", "Mount Point: Not applicable"},
                                         UnmountedCase{"NotApplicableInAnyOtherField",
                                                       "Mount Point: /Volumes/EFI\nVolume UUID: Not applicable"},
                                         UnmountedCase{"IdentifierUnknownToTheTool",
                                                       "Mount Point: disk2s1 could not be found"},
                                         UnmountedCase{"Nothing", ""}),
                         [](const auto &row) { return row.param.name; });

TEST_F(EFIOperationsTest, ForcesARefusedUnmountAtOnce)
{
    answerInfo(mounted());
    refuseSudo("unmount disk2s1", "in use by process 42\n");
    answerSudo("unmount force disk2s1");

    blockOn(unmount(), kPatience);

    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudoLine("unmount disk2s1"), sudoLine("unmount force disk2s1")));
    EXPECT_EQ(clock.date(), ManualClock().date());
    EXPECT_THAT(journal, ElementsAre("unmount of Stick worked"));
}

TEST_F(EFIOperationsTest, ThrowsTheSecondFailureOfAnUnmount)
{
    answerInfo(mounted());
    refuseSudo("unmount disk2s1", "first\n");
    refuseSudo("unmount force disk2s1", "second\n");

    const Error error = failureOf(unmount());

    EXPECT_EQ(error.localizedDescription(), "second\n");
    EXPECT_THAT(journal, ElementsAre("unmount of Stick failed"));
}

TEST_F(EFIOperationsTest, CountsAFailedQuestionAsAFailedUnmount)
{
    tools.fail(infoLine(), Error("CommandError", 1, "no"));

    EXPECT_EQ(failureOf(unmount()).domain(), "CommandError");
    EXPECT_THAT(journal, ElementsAre("unmount of Stick failed"));
}

// --- rename

TEST_F(EFIOperationsTest, RenamesInOneArgumentAndNotifiesNobody)
{
    answerSudo("rename disk2s1 -rf; $(reboot)");

    blockOn(operations.rename("disk2s1", "-rf; $(reboot)"), kPatience);

    EXPECT_EQ(launcher.commands.at(0).arguments.back(), "-rf; $(reboot)");
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(EFIOperationsTest, ThrowsAFailedRename)
{
    refuseSudo("rename disk2s1 NEW", "no\n");

    EXPECT_EQ(failureOf(operations.rename("disk2s1", "NEW")).localizedDescription(), "no\n");
    EXPECT_THAT(journal, IsEmpty());
}

// --- opening

TEST_F(EFIOperationsTest, OpensTheFirstMountPointThatTheToolTells)
{
    answerInfo(fmt::format("Mount Point: {}\nMount Point: /\n", root()));

    blockOn(operations.openMountPoint("disk2s1"), kPatience);

    EXPECT_THAT(journal, ElementsAre(opened()));
}

struct NothingToOpenCase {
    const char *name;
    const char *info;
};

class OpensNothing : public EFIOperationsTest, public testing::WithParamInterface<NothingToOpenCase> {};

TEST_P(OpensNothing, WithoutAFolder)
{
    answerInfo(GetParam().info);

    blockOn(operations.openMountPoint("disk2s1"), kPatience);

    EXPECT_THAT(journal, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(EFIOperations, OpensNothing,
                         testing::Values(NothingToOpenCase{"NoLine", kUnmounted},
                                         NothingToOpenCase{"EmptyValue", "Mount Point:\nMount Point: /"},
                                         NothingToOpenCase{"NotApplicable", "Mount Point: Not applicable"},
                                         NothingToOpenCase{"FolderIsGone", "Mount Point: /nonexistent/EFI"}),
                         [](const auto &row) { return row.param.name; });

TEST_F(EFIOperationsTest, ThrowsAFailedQuestionForTheMountPoint)
{
    tools.fail(infoLine(), Error("CommandError", 1, "no"));

    EXPECT_EQ(failureOf(operations.openMountPoint("disk2s1")).localizedDescription(), "no");
}

// --- side by side

TEST_F(EFIOperationsTest, RunsSeveralOperationsAtOnce)
{
    answerInfo(mounted());
    launcher.hold(sudoLine("unmount disk2s1"));
    answerSudo("rename disk3s1 NEW");
    auto unmounting = unmount();

    blockOn(operations.rename("disk3s1", "NEW"), kPatience);
    const bool isUnmountedMeanwhile = !journal.empty();
    answerSudo("unmount force disk2s1");
    clock.advance(std::chrono::seconds(45));
    blockOn(std::move(unmounting), kPatience);

    EXPECT_FALSE(isUnmountedMeanwhile);
    EXPECT_THAT(journal, ElementsAre("unmount of Stick worked"));
}

} // namespace
} // namespace brindle
