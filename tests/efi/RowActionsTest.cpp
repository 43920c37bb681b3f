#include "efi/RowActions.h"

#include "state/DiskActionsFixture.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The row of "Stick" and of its EFI partition disk2s1; what it tells its container stands in the journal too.
class RowActionsTest : public DiskActionsFixture {
protected:
    RowActionsTest() { disk.efiPartitions.resize(1); }

    RowActions row(RowActions::Row kind = RowActions::Row::disk)
    {
        return {kind,
                {.diskManager = manager(),
                 .efiOperations = efiOperations(),
                 .dialogs = dialogs,
                 .workspace = workspace,
                 .userDefaults = defaults},
                {.onOperationStart = [this](const std::string &status) { journal.push_back("start " + status); },
                 .onOperationEnd = [this] { journal.emplace_back("end"); },
                 .onEFIOpened = [this] { journal.emplace_back("opened"); },
                 .onDialogOpening = [this] { journal.emplace_back("dialog"); },
                 .onDialogClosed = [this] { journal.emplace_back("dialog over"); }}};
    }

    EFIPartition mountedPartition()
    {
        answerInfo("disk2s1", true);
        return {.identifier = "disk2s1", .isMounted = true, .mountPoint = mountPoint(), .volumeName = "BOOT"};
    }

    /// Lets disk2s1 be mounted by the next mount: its text looks unmounted to that, and mounted to a reader.
    void answerMount()
    {
        mountedPartition();
        tools.answer(diskutil("info disk2s1"), fmt::format("   Not applicable\n   Mount Point: {}\n", mountPoint()));
        answerSudo("mount disk2s1");
    }

    PhysicalDisk disk = stick();
    EFIPartition unmounted{.identifier = "disk2s1"};
};

// --- toggle

TEST_F(RowActionsTest, MountsAnUnmountedPartitionAndShowsIt)
{
    answerMount();
    RowActions actions = row();

    finished(actions.toggle(disk, unmounted));

    const std::string open = "open " + mountPoint();
    EXPECT_THAT(journal, ElementsAre("start Mounting EFI partition of Stick", diskutil("info disk2s1"),
                                     sudo("mount disk2s1"), "mount of Stick (disk2s1) worked", diskutil("info disk2s1"),
                                     open, diskutil("info disk2s1"), "disks changed", open, "opened", "end"));
    EXPECT_FALSE(actions.isLoading());
}

TEST_F(RowActionsTest, UnmountsAMountedPartitionAndReadsItsState)
{
    const EFIPartition mounted = mountedPartition();
    answerSudo("unmount disk2s1");
    RowActions actions = row();

    finished(actions.toggle(disk, mounted));

    EXPECT_THAT(journal, ElementsAre("start Unmounting EFI partition of Stick", diskutil("info disk2s1"),
                                     sudo("unmount disk2s1"), "unmount of Stick worked", diskutil("info disk2s1"),
                                     "disks changed", "end"));
    EXPECT_EQ(log.lines().back(), "💾 Persisted disk state");
}

TEST_F(RowActionsTest, NamesThePartitionInTheRowOfOne)
{
    RowActions actions = row(RowActions::Row::efiPartition);
    answerMount();
    answerSudo("unmount disk2s1");

    finished(actions.toggle(disk, unmounted));
    EXPECT_EQ(journal.front(), "start Mounting disk2s1");
    journal.clear();
    finished(actions.toggle(disk, mountedPartition()));
    EXPECT_EQ(journal.front(), "start Unmounting disk2s1");
}

TEST_F(RowActionsTest, ShowsNothingAfterAMountWhenTheUserDoesNotWantIt)
{
    defaults.set(DefaultsKeys::kAutoOpenFinderOnMount, false);
    answerMount();
    RowActions actions = row();

    finished(actions.toggle(disk, unmounted));

    EXPECT_THAT(journal, Not(Contains("open " + mountPoint())));
    EXPECT_THAT(journal, Not(Contains("opened")));
    EXPECT_EQ(journal.back(), "end");
}

TEST_F(RowActionsTest, EndsAndThrowsWhenAMountFails)
{
    answerInfo("disk2s1", false);
    refuseSudo("mount disk2s1", "no medium");
    RowActions actions = row();

    EXPECT_EQ(failureOf(actions.toggle(disk, unmounted)), "no medium");

    EXPECT_THAT(journal, ElementsAre("start Mounting EFI partition of Stick", diskutil("info disk2s1"),
                                     sudo("mount disk2s1"), "mount of Stick (disk2s1) failed", "end"));
    EXPECT_THAT(log.lines(), Contains("Mount failed: no medium"));
    EXPECT_FALSE(actions.isLoading());
}

TEST_F(RowActionsTest, EndsAndThrowsWhenAnUnmountFails)
{
    const EFIPartition mounted = mountedPartition();
    refuseSudo("unmount disk2s1", "busy");
    refuseSudo("unmount force disk2s1", "still busy");
    RowActions actions = row();

    EXPECT_EQ(failureOf(actions.toggle(disk, mounted)), "still busy");

    EXPECT_THAT(journal,
                ElementsAre("start Unmounting EFI partition of Stick", diskutil("info disk2s1"),
                            sudo("unmount disk2s1"), sudo("unmount force disk2s1"), "unmount of Stick failed", "end"));
    EXPECT_THAT(log.lines(), Contains("Unmount failed: still busy"));
}

TEST_F(RowActionsTest, TogglesNothingWhileAnActionOfTheRowIsUnderWay)
{
    answerMount();
    launcher.hold(sudo("mount disk2s1"));
    RowActions actions = row();
    auto first = actions.toggle(disk, unmounted);
    clock.advance({});
    ASSERT_TRUE(actions.isLoading());
    const std::vector<std::string> before = journal;

    finished(actions.toggle(disk, unmounted));

    EXPECT_EQ(journal, before);
    launcher.release(sudo("mount disk2s1"));
    finished(std::move(first));
}

TEST_F(RowActionsTest, TogglesNothingUntilTheLastOfTwoActionsOfTheRowHasEnded)
{
    answerMount();
    answerSudo("rename disk2s1 NEW");
    launcher.hold(sudo("mount disk2s1"));
    launcher.hold(sudo("rename disk2s1 NEW"));
    RowActions actions = row();
    auto mounting = actions.toggle(disk, unmounted);
    auto renaming = actions.renameEFI(disk, unmounted, "NEW");
    clock.advance({});
    launcher.release(sudo("mount disk2s1"));
    finished(std::move(mounting));
    const std::vector<std::string> before = journal;
    ASSERT_EQ(before.back(), "end");
    EXPECT_TRUE(actions.isLoading());

    finished(actions.toggle(disk, unmounted));

    EXPECT_EQ(journal, before);
    launcher.release(sudo("rename disk2s1 NEW"));
    finished(std::move(renaming));
    EXPECT_FALSE(actions.isLoading());
}

// --- open and quick edit

TEST_F(RowActionsTest, ShowsAMountPointThatIsThereAndTellsOfItInAnyCase)
{
    RowActions actions = row();
    const EFIPartition mounted = mountedPartition();
    EFIPartition gone = mounted;
    gone.mountPoint = root() + "/Volumes/Gone";

    finished(actions.open(mounted));
    finished(actions.open(gone));
    finished(actions.open(unmounted));

    EXPECT_THAT(journal, ElementsAre("open " + mountPoint(), "opened", "opened", "opened"));
}

TEST_F(RowActionsTest, OpensOpenCoresConfigOrElseCloversForAQuickEdit)
{
    RowActions actions = row();
    const EFIPartition mounted = mountedPartition();

    finished(actions.quickEdit(unmounted));
    finished(actions.quickEdit(mounted));
    EXPECT_THAT(journal, IsEmpty());
    writeFile(mountPoint() + "/EFI/CLOVER/config.plist", "");
    finished(actions.quickEdit(mounted));
    writeFile(mountPoint() + "/EFI/OC/config.plist", "");
    finished(actions.quickEdit(mounted));

    EXPECT_THAT(journal, ElementsAre("open " + mountPoint() + "/EFI/CLOVER/config.plist",
                                     "open " + mountPoint() + "/EFI/OC/config.plist"));
}

// --- rename

TEST_F(RowActionsTest, AsksForTheNewNameOfAPartitionAndReadsItsState)
{
    const EFIPartition mounted = mountedPartition();
    dialogs.textAnswers.emplace_back("  OPENCORE \n");
    answerSudo("rename disk2s1 OPENCORE");
    RowActions actions = row();

    finished(actions.askToRenameEFI(disk, mounted));

    ASSERT_EQ(dialogs.textPrompts.size(), 1U);
    const TextPrompt &prompt = dialogs.textPrompts.front();
    EXPECT_EQ(prompt.alert.messageText, "Rename EFI Partition");
    EXPECT_EQ(prompt.alert.informativeText, "Enter a new name for the EFI partition on Stick.");
    EXPECT_EQ(prompt.alert.style, AlertStyle::informational);
    EXPECT_THAT(prompt.alert.buttons, ElementsAre("Rename", "Cancel"));
    EXPECT_EQ(prompt.placeholder, "New name");
    EXPECT_EQ(prompt.text, "BOOT");
    EXPECT_THAT(journal, ElementsAre("dialog", "start Renaming EFI partition of Stick", sudo("rename disk2s1 OPENCORE"),
                                     diskutil("info disk2s1"), "disks changed", "end", "dialog over"));
}

TEST_F(RowActionsTest, KeepsTheNewStateOfAPartitionThatWasRenamed)
{
    mountedPartition();
    answerSudo("rename disk2s1 OPENCORE");
    RowActions actions = row();

    finished(actions.renameEFI(disk, unmounted, "OPENCORE"));

    EXPECT_EQ(log.lines().back(), "💾 Persisted disk state");
}

TEST_F(RowActionsTest, ThrowsWhatARenameWithoutAQuestionFailsWith)
{
    refuseSudo("rename disk2s1 NEW", "read-only");
    refuseSudo("rename Work NEW", "locked");
    RowActions actions = row();

    EXPECT_EQ(failureOf(actions.renameEFI(disk, unmounted, "NEW")), "read-only");
    EXPECT_EQ(failureOf(actions.renameVolume(disk, "NEW")), "locked");
}

TEST_F(RowActionsTest, ProposesTheIdentifierOfAPartitionWithoutAName)
{
    unmounted.volumeName = "";
    RowActions actions = row();

    finished(actions.askToRenameEFI(disk, unmounted));

    EXPECT_EQ(dialogs.textPrompts.at(0).text, "disk2s1");
}

TEST_F(RowActionsTest, RenamesNothingWithoutANewName)
{
    RowActions actions = row();
    dialogs.textAnswers = {std::nullopt, " \n"};

    finished(actions.askToRenameEFI(disk, unmounted));
    finished(actions.askToRenameVolume(disk));

    EXPECT_THAT(journal, ElementsAre("dialog", "dialog over", "dialog", "dialog over"));
}

TEST_F(RowActionsTest, LogsWhyAPartitionWasNotRenamedAndLeavesTheRowAsItWas)
{
    dialogs.textAnswers.emplace_back("NEW");
    refuseSudo("rename disk2s1 NEW", "read-only");
    RowActions actions = row();

    finished(actions.askToRenameEFI(disk, unmounted));

    EXPECT_EQ(log.lines().back(), "EFI rename failed: read-only");
    EXPECT_THAT(journal, ElementsAre("dialog", "start Renaming EFI partition of Stick", sudo("rename disk2s1 NEW"),
                                     "end", "dialog over"));
}

TEST_F(RowActionsTest, RenamesTheVolumeOfADiskByItsLabelAndScans)
{
    dialogs.textAnswers.emplace_back("Play");
    answerSudo("rename Work Play");
    tools.answer(diskutil("list physical"), "");
    RowActions actions = row();

    finished(actions.askToRenameVolume(disk));

    const TextPrompt &prompt = dialogs.textPrompts.at(0);
    EXPECT_EQ(prompt.alert.messageText, "Rename Volume");
    EXPECT_EQ(prompt.alert.informativeText, "Enter a new name for \"Work\".");
    EXPECT_EQ(prompt.text, "Work");
    EXPECT_THAT(journal, ElementsAre("dialog", "start Renaming Work", diskutil("info Work"), sudo("rename Work Play"),
                                     diskutil("list physical"), "disks changed", "end", "dialog over"));
}

TEST_F(RowActionsTest, RenamesNoVolumeThatIsAnotherDisksByNow)
{
    tools.answer(diskutil("info Work"), "   Part of Whole: disk5\n");
    RowActions actions = row();

    EXPECT_EQ(failureOf(actions.renameVolume(disk, "Play")), "\"Work\" is on disk5, not on disk2");

    EXPECT_EQ(log.lines().back(), "Rename failed: \"Work\" is on disk5, not on disk2");
    EXPECT_THAT(journal, ElementsAre("start Renaming Work", diskutil("info Work"), "end"));
}

TEST_F(RowActionsTest, LogsWhyAVolumeWasNotRenamed)
{
    disk.mountPoint = "/Volumes/Work";
    dialogs.textAnswers.emplace_back("Play");
    refuseSudo("rename /Volumes/Work Play", "locked");
    RowActions actions = row();

    finished(actions.askToRenameVolume(disk));

    EXPECT_EQ(log.lines().back(), "Rename failed: locked");
    EXPECT_THAT(journal, ElementsAre("dialog", "start Renaming Work", diskutil("info /Volumes/Work"),
                                     sudo("rename /Volumes/Work Play"), "end", "dialog over"));
}

TEST_F(RowActionsTest, RenamesNoVolumeWhereTheLabelStandsForSeveral)
{
    disk.volumeName = "System • Work";
    RowActions actions = row();

    finished(actions.askToRenameVolume(disk));
    finished(actions.renameVolume(disk, "Play"));

    EXPECT_THAT(dialogs.textPrompts, IsEmpty());
    EXPECT_THAT(journal, IsEmpty());
}

// --- eject

TEST_F(RowActionsTest, EjectsADisk)
{
    defaults.set(DefaultsKeys::kLastRefreshTime, clock.date());
    tools.answer(diskutil("eject disk2"), "Disk disk2 ejected\n");
    RowActions actions = row();

    EXPECT_EQ(finished(actions.eject(disk)), "Disk disk2 ejected\n");

    EXPECT_THAT(journal, ElementsAre("start Ejecting Stick", diskutil("eject disk2"), "disks changed", "end"));
}

TEST_F(RowActionsTest, EjectsNothingWhileAnActionOfTheRowIsUnderWay)
{
    defaults.set(DefaultsKeys::kLastRefreshTime, clock.date());
    tools.answer(diskutil("eject disk2"), "Disk disk2 ejected\n");
    tools.hold(diskutil("eject disk2"));
    RowActions actions = row();
    auto first = actions.eject(disk);

    EXPECT_TRUE(actions.isLoading());
    EXPECT_EQ(finished(actions.eject(disk)), "");

    tools.release(diskutil("eject disk2"));
    EXPECT_EQ(finished(std::move(first)), "Disk disk2 ejected\n");
    EXPECT_FALSE(actions.isLoading());
    EXPECT_THAT(journal, ElementsAre("start Ejecting Stick", diskutil("eject disk2"), "disks changed", "end"));
}

TEST_F(RowActionsTest, LogsWhyADiskWasNotEjectedAndLeavesItInTheList)
{
    tools.fail(diskutil("eject disk2"), Error("CommandError", 1, "disk2 is busy"));
    RowActions actions = row();

    EXPECT_EQ(failureOf(actions.eject(disk)), "disk2 is busy");

    EXPECT_EQ(log.lines().back(), "Eject failed: disk2 is busy");
    EXPECT_THAT(journal, ElementsAre("start Ejecting Stick", diskutil("eject disk2"), "end"));
    EXPECT_FALSE(actions.isLoading());
}

TEST_F(RowActionsTest, OffersNoEjectForABuiltInDiskAndForTheBootDisk)
{
    EXPECT_TRUE(RowActions::canEject(disk));
    disk.isBootDisk = true;
    EXPECT_FALSE(RowActions::canEject(disk));
    EXPECT_FALSE(RowActions::canEject(other()));
}

TEST_F(RowActionsTest, OffersNoEraseOfAnEFIPartitionOfTheBootDiskAlone)
{
    EXPECT_TRUE(RowActions::canEraseEFI(disk));
    EXPECT_TRUE(RowActions::canEraseEFI(other()));
    disk.isBootDisk = true;
    EXPECT_FALSE(RowActions::canEraseEFI(disk));
}

// --- names

/// A stranger's names reach the tool as one argument, byte by byte.
class HostileName : public RowActionsTest, public testing::WithParamInterface<std::pair<const char *, std::string>> {
protected:
    [[nodiscard]] const std::string &name() const { return GetParam().second; }

    /// The arguments of the only command that was started.
    std::vector<std::string> argumentsOfSudo()
    {
        return launcher.commands.size() == 1 ? launcher.commands[0].arguments : std::vector<std::string>{};
    }
};

TEST_P(HostileName, IsOneArgumentOfEachPrivilegedAction)
{
    RowActions actions = row();
    disk.volumeName = name();
    const std::string program = root() + "/usr/sbin/diskutil";

    const std::vector<std::pair<std::function<QCoro::Task<>()>, std::vector<std::string>>> acts{
        {[&] { return actions.renameEFI(disk, unmounted, name()); }, {"rename", "disk2s1", name()}},
        {[&] { return actions.renameVolume(disk, name()); }, {"rename", name(), name()}},
        {[&] { return manager().formatEFIPartition("disk2s1", name()); }, {"eraseVolume", "FAT32", name(), "disk2s1"}},
        {[&] { return manager().eraseVolume(name(), name(), "ExFAT"); }, {"eraseVolume", "ExFAT", name(), name()}},
        {[&] { return manager().eraseDisk("disk2", name(), "APFS"); }, {"eraseDisk", "APFS", name(), "GPT", "disk2"}},
    };
    for (const auto &[act, arguments] : acts) {
        launcher.commands.clear();
        EXPECT_NE(failureOf(act()), ""); // the fake has no answer

        std::vector<std::string> expected{"-S", "-k", program};
        expected.insert(expected.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(argumentsOfSudo(), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(RowActions, HostileName,
                         testing::Values(std::pair{"Option", "-rf"}, std::pair{"Substitution", "$(reboot)"},
                                         std::pair{"Path", "../../etc"}, std::pair{"Semicolon", "a;b"},
                                         std::pair{"Long", std::string(255, 'x')}, std::pair{"NoUtf8", "\xff\xfe\x80"},
                                         std::pair{"Newline", "one\ntwo"}),
                         [](const auto &row) { return row.param.first; });

} // namespace
} // namespace brindle
