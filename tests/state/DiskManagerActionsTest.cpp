#include "state/DiskActionsFixture.h"

#include "privileged/KeychainHelper.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::_;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

class DiskManagerActionsTest : public DiskActionsFixture {
protected:
    [[nodiscard]] const PhysicalDisk &disk() { return manager().disks().at(0); }
    [[nodiscard]] const EFIPartition &partition() { return disk().efiPartitions.at(0); }

    /// Lets disk2s1 be mounted by the next mount.
    void answerMount()
    {
        answerInfo("disk2s1", true);
        tools.answer(diskutil("info disk2s1"),
                     "   Not applicable\n" + fmt::format("   Mount Point: {}\n", mountPoint())); // mounts all the same
        answerSudo("mount disk2s1");
    }

    [[nodiscard]] std::vector<std::string> identifiers()
    {
        std::vector<std::string> result;
        for (const PhysicalDisk &each : manager().disks())
            result.push_back(each.identifier);
        return result;
    }

    [[nodiscard]] std::string opened(const std::string &path) const { return "open " + mountPoint() + path; }
};

// --- mountEFI

TEST_F(DiskManagerActionsTest, MountsTellsShowsAndOnlyThenRepairsTheRecord)
{
    answerMount();

    finished(manager().mountEFI("disk2s1", "Stick"));

    EXPECT_THAT(journal, ElementsAre(diskutil("info disk2s1"), sudo("mount disk2s1"), "mount of Stick (disk2s1) worked",
                                     diskutil("info disk2s1"), opened(""), diskutil("info disk2s1"), "disks changed"));
    EXPECT_TRUE(partition().isMounted);
    EXPECT_EQ(partition().mountPoint, mountPoint());
    EXPECT_THAT(manager().efiStates(), Contains(Pair("disk2", true)));
    EXPECT_THAT(log.lines(), IsSupersetOf({"🔄 Updating EFI partition state for disk2s1",
                                           "   🔍 Bootloader re-detection — OC: false, Clover: false",
                                           "✅ EFI state updated: disk2s1 mounted=true", "💾 Persisted disk state"}));
    EXPECT_EQ(log.lines().back(), "💾 Persisted disk state");
}

TEST_F(DiskManagerActionsTest, ChangesNothingWhenTheMountFails)
{
    answerInfo("disk2s1", false);
    refuseSudo("mount disk2s1", "no such thing");

    EXPECT_EQ(failureOf(manager().mountEFI("disk2s1", "Stick")), "no such thing");

    EXPECT_THAT(journal,
                ElementsAre(diskutil("info disk2s1"), sudo("mount disk2s1"), "mount of Stick (disk2s1) failed"));
    EXPECT_FALSE(partition().isMounted);
    EXPECT_THAT(log.lines(), Not(Contains("💾 Persisted disk state")));
}

TEST_F(DiskManagerActionsTest, MountsAPartitionWhoseDiskHasGoneFromTheListAndRepairsNothing)
{
    answerInfo("disk9s1", true);

    finished(manager().mountEFI("disk9s1", "Gone"));

    EXPECT_THAT(journal, Contains("mount of Gone (disk9s1) worked"));
    EXPECT_THAT(journal, Not(Contains("disks changed")));
    EXPECT_THAT(log.lines(), Contains("🔄 Updating EFI partition state for disk9s1"));
    EXPECT_THAT(log.lines(), Not(Contains(StartsWith("   🔍 Bootloader re-detection"))));
}

TEST_F(DiskManagerActionsTest, OpensNoConfigWhenTheSettingWasNeverWritten)
{
    answerMount();
    writeFile(mountPoint() + "/EFI/OC/config.plist", "");

    finished(manager().mountEFI("disk2s1", "Stick"));

    EXPECT_THAT(journal, Not(Contains(opened("/EFI/OC/config.plist"))));
}

TEST_F(DiskManagerActionsTest, OpensTheConfigAfterTheModelHasChangedWhenTheUserWantsIt)
{
    defaults.set(DefaultsKeys::kAutoOpenConfigOnMount, true);
    answerMount();
    writeFile(mountPoint() + "/EFI/OC/config.plist", "");

    finished(manager().mountEFI("disk2s1", "Stick"));

    EXPECT_EQ(journal.back(), opened("/EFI/OC/config.plist"));
    EXPECT_THAT(log.lines(), Contains("   📄 Auto-opening config.plist at " + mountPoint() + "/EFI/OC/config.plist"));
}

// --- openConfigPlist

struct ConfigCase {
    const char *name;
    std::vector<const char *> files;
    const char *opened; ///< Null where nothing is.
};

class ConfigToOpen : public DiskManagerActionsTest, public testing::WithParamInterface<ConfigCase> {};

TEST_P(ConfigToOpen, IsOpenCoresOrElseClovers)
{
    answerInfo("disk2s1", true);
    finished(manager().updateEFIPartitionState("disk2s1"));
    journal.clear();
    for (const char *file : GetParam().files)
        writeFile(mountPoint() + file, "");

    finished(manager().openConfigPlist("disk2s1"));

    if (GetParam().opened)
        EXPECT_THAT(journal, ElementsAre(opened(GetParam().opened)));
    else
        EXPECT_THAT(journal, IsEmpty());
    EXPECT_EQ(log.lines().back() == "   ⚠️ No config.plist found in OC or CLOVER folders for Stick",
              GetParam().opened == nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    DiskManagerActions, ConfigToOpen,
    testing::Values(ConfigCase{"Both", {"/EFI/OC/config.plist", "/EFI/CLOVER/config.plist"}, "/EFI/OC/config.plist"},
                    ConfigCase{"Clover", {"/EFI/CLOVER/config.plist"}, "/EFI/CLOVER/config.plist"},
                    ConfigCase{"Neither", {"/EFI/OC/OpenCore.efi"}, nullptr}),
    [](const auto &row) { return row.param.name; });

TEST_F(DiskManagerActionsTest, TellsTheLogWhenThereIsNoMountPointToOpenAConfigAt)
{
    finished(manager().openConfigPlist("disk2s1"));
    EXPECT_EQ(log.lines().back(), "   ⚠️ Auto-open config.plist: couldn't resolve mount point for disk2s1");
    finished(manager().openConfigPlist("disk9s1"));
    EXPECT_EQ(log.lines().back(), "   ⚠️ Auto-open config.plist: couldn't resolve mount point for disk9s1");

    EXPECT_THAT(journal, IsEmpty());
}

// --- updateEFIPartitionState

TEST_F(DiskManagerActionsTest, RepairsTheBootLoaderFlagsWithoutSortingTheListAgain)
{
    hold({other(), stick()});
    writeFile(mountPoint() + "/EFI/OC/OpenCore.efi", "");
    answerInfo("disk2s3", true);
    int changes = 0;
    QObject::connect(&manager(), &DiskManager::changed, [&] { ++changes; });

    finished(manager().updateEFIPartitionState("disk2s3"));

    EXPECT_THAT(identifiers(), ElementsAre("disk5", "disk2")); // the next scan puts OpenCore first
    const PhysicalDisk &repaired = manager().disks().at(1);
    EXPECT_TRUE(repaired.hasOpenCore);
    EXPECT_FALSE(repaired.efiPartitions[0].isMounted);
    EXPECT_TRUE(repaired.efiPartitions[1].isMounted);
    EXPECT_EQ(repaired.volumeName, stick().volumeName);
    EXPECT_EQ(changes, 1);
    EXPECT_THAT(log.lines(), Contains("   🔍 Bootloader re-detection — OC: true, Clover: false"));
}

TEST_F(DiskManagerActionsTest, LeavesTheRecordAsItIsWhenTheToolTellsNothing)
{
    finished(manager().updateEFIPartitionState("disk2s1"));

    EXPECT_THAT(journal, ElementsAre(diskutil("info disk2s1")));
    EXPECT_EQ(log.lines().back(), "🔄 Updating EFI partition state for disk2s1");
}

TEST_F(DiskManagerActionsTest, TakesADisksStateFromAllItsPartitions)
{
    answerInfo("disk2s1", true);
    finished(manager().updateEFIPartitionState("disk2s1"));
    answerInfo("disk2s3", false);

    finished(manager().updateEFIPartitionState("disk2s3"));
    EXPECT_THAT(manager().efiStates(), Contains(Pair("disk2", true)));
    answerInfo("disk2s1", false);
    finished(manager().updateEFIPartitionState("disk2s1"));
    EXPECT_THAT(manager().efiStates(), Contains(Pair("disk2", false)));
}

// --- ejectDisk

TEST_F(DiskManagerActionsTest, TakesAnEjectedDiskOffTheListBeforeAnyScan)
{
    tools.answer(diskutil("eject disk2"), "Disk disk2 ejected\n");
    manager().toggleExpanded("disk2");
    auto ejecting = manager().ejectDisk("disk2");
    clock.advance(0ms);

    EXPECT_THAT(identifiers(), ElementsAre("disk5"));
    EXPECT_THAT(manager().expandedDisks(), IsEmpty());
    EXPECT_THAT(manager().efiStates(), Not(Contains(Pair("disk2", _))));
    EXPECT_THAT(journal, ElementsAre(diskutil("eject disk2"), "disks changed"));
    EXPECT_EQ(finished(std::move(ejecting)), "Disk disk2 ejected\n");
}

TEST_F(DiskManagerActionsTest, RefreshesHalfASecondAfterAnEject)
{
    tools.answer(diskutil("eject disk2"), "");
    tools.answer(diskutil("list physical"), "");
    auto ejecting = manager().ejectDisk("disk2");

    clock.advance(499ms);
    EXPECT_THAT(journal, Not(Contains(diskutil("list physical"))));
    clock.advance(1ms);
    EXPECT_THAT(journal, Contains(diskutil("list physical")));
    finished(std::move(ejecting));
}

TEST_F(DiskManagerActionsTest, ThrottlesTheRefreshAfterAnEjectShortlyAfterAScan)
{
    defaults.set(DefaultsKeys::kLastRefreshTime, clock.date() - 1s);
    tools.answer(diskutil("eject disk2"), "");

    finished(manager().ejectDisk("disk2"));

    EXPECT_EQ(log.lines().back(), "⏸️ Throttling manual refresh");
    EXPECT_THAT(journal, Not(Contains(diskutil("list physical"))));
}

TEST_F(DiskManagerActionsTest, TellsTheLogWhenAMountedEFIPartitionWentWithItsDisk)
{
    constexpr const char *kLine = "   📢 Disk with mounted EFI ejected — forcing icon update";
    defaults.set(DefaultsKeys::kLastRefreshTime, clock.date()); // no scan empties the list
    tools.answer(diskutil("eject disk2"), "");
    tools.answer(diskutil("eject disk5"), "");
    answerInfo("disk2s1", true);
    finished(manager().updateEFIPartitionState("disk2s1"));

    finished(manager().ejectDisk("disk5"));
    EXPECT_THAT(log.lines(), Not(Contains(kLine)));
    finished(manager().ejectDisk("disk2"));
    EXPECT_THAT(log.lines(), Contains(kLine));
}

TEST_F(DiskManagerActionsTest, ChangesNothingWhenTheEjectFails)
{
    tools.fail(diskutil("eject disk2"), Error("CommandError", 1, "busy"));
    manager().toggleExpanded("disk2");
    journal.clear();

    try {
        (void)finished(manager().ejectDisk("disk2"));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error &error) {
        EXPECT_EQ(error.localizedDescription(), "busy");
    }

    EXPECT_THAT(identifiers(), ElementsAre("disk2", "disk5"));
    EXPECT_THAT(manager().expandedDisks(), ElementsAre("disk2"));
    EXPECT_THAT(journal, ElementsAre(diskutil("eject disk2")));
}

// --- erase

struct CarrierCase {
    const char *name;
    const char *info; ///< Nothing where the tool doesn't know the volume.
    std::string failure;
};

class VolumeOfADisk : public DiskManagerActionsTest, public testing::WithParamInterface<CarrierCase> {};

TEST_P(VolumeOfADisk, IsLookedForWhereItIsNow)
{
    if (GetParam().info)
        tools.answer(diskutil("info Work"), GetParam().info);

    EXPECT_EQ(failureOf(manager().requireVolumeOn("disk2", "Work")), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(
    DiskManagerActions, VolumeOfADisk,
    testing::Values(CarrierCase{"There", "   Part of Whole: disk2\n", ""},
                    CarrierCase{"InAContainerThere", "   Part of Whole: disk7\n   APFS Physical Store: disk2s2\n", ""},
                    CarrierCase{"OnAnotherDisk", "   Part of Whole: disk20\n", "\"Work\" is on disk20, not on disk2"},
                    CarrierCase{"InAContainerOfAnotherDisk",
                                "   APFS Physical Store: disk5s2\n   Part of Whole: disk2\n",
                                "\"Work\" is on disk5, not on disk2"},
                    CarrierCase{"NotTold", "   Volume Name: Work\n", ""}, CarrierCase{"Unknown", nullptr, ""}),
    [](const auto &row) { return row.param.name; });

struct EraseCase {
    const char *name;
    QCoro::Task<> (*erase)(DiskManager &manager);
    std::vector<std::string> arguments;
};

class EraseCommand : public DiskManagerActionsTest, public testing::WithParamInterface<EraseCase> {};

TEST_P(EraseCommand, HasExactlyTheseArgumentsAndAScanAfterAPause)
{
    answerSudo(fmt::format("{}", fmt::join(GetParam().arguments, " ")));
    tools.answer(diskutil("list physical"), "");
    auto erasing = GetParam().erase(manager());

    clock.advance(1499ms);
    ASSERT_EQ(launcher.commands.size(), 1U);
    std::vector<std::string> expected{"-S", "-k", root() + "/usr/sbin/diskutil"};
    expected.insert(expected.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    EXPECT_EQ(launcher.commands[0].arguments, expected);
    EXPECT_THAT(journal, Not(Contains(diskutil("list physical"))));
    clock.advance(1ms);
    EXPECT_THAT(journal, Contains(diskutil("list physical")));
    finished(std::move(erasing));
}

TEST_P(EraseCommand, ThrowsAFailureAndScansNothing)
{
    refuseSudo(fmt::format("{}", fmt::join(GetParam().arguments, " ")), "never");

    EXPECT_EQ(failureOf(GetParam().erase(manager())), "never");

    EXPECT_EQ(journal.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    DiskManagerActions, EraseCommand,
    testing::Values(EraseCase{"EFIPartition",
                              [](DiskManager &manager) { return manager.formatEFIPartition("disk2s1", "-rf / $(x)"); },
                              {"eraseVolume", "FAT32", "-rf / $(x)", "disk2s1"}},
                    EraseCase{"Volume",
                              [](DiskManager &manager) { return manager.eraseVolume("Work", "A B", "ExFAT"); },
                              {"eraseVolume", "ExFAT", "A B", "Work"}},
                    EraseCase{"Disk",
                              [](DiskManager &manager) { return manager.eraseDisk("disk2", "A B", "APFS"); },
                              {"eraseDisk", "APFS", "A B", "GPT", "disk2"}}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
