#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "state/AutoMountMarks.h"
#include "state/DiskManagerFixture.h"
#include "support/FileTree.h"
#include "support/Patience.h"

#include <QTemporaryDir>

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

/// A disk as the tools tell it.
struct Plugged {
    std::string identifier;
    std::string name;
    std::string mediaUUID;
    std::vector<std::string> efiPartitions = {};
    std::vector<std::string> mounted = {}; ///< Of those.
    std::string protocol = "USB";
};

/// A manager on a machine whose disks come and go between its scans, with a stored password.
class AutoMountTest : public DiskManagerFixture {
protected:
    AutoMountTest()
    {
        paths = ToolPaths::underRoot(root());
        writeFile(root() + "/usr/sbin/diskutil", "");
        (void)secretStore.add({KeychainHelper::kService, KeychainHelper::kAccount}, Secret("open sesame"));
        mark(stick());
    }

    [[nodiscard]] static Plugged stick() { return {"disk2", "Stick", "UUID-2", {"disk2s1"}}; }
    [[nodiscard]] static Plugged card() { return {"disk3", "Card", "UUID-3", {"disk3s1"}}; }
    [[nodiscard]] static Plugged internalDisk() { return {"disk0", "Drive", "UUID-0", {"disk0s1"}, {}, "SATA"}; }

    void mark(const Plugged &disk)
    {
        AutoMountMarks marks = autoMountMarks(defaults);
        marks[disk.mediaUUID] = disk.name;
        setAutoMountMarks(defaults, marks);
    }

    /// Scans while exactly \a disks are there, and lets all happen that follows.
    void scanWith(const std::vector<Plugged> &disks)
    {
        std::string list;
        for (const Plugged &disk : disks)
            list += plugged(disk);
        tools.answer(diskutil("list physical"), list);
        tools.answer(diskutil("list"), list);
        tools.answer(root() + "/bin/df -k", "");
        scan();
        drainEventLoop();
    }

    [[nodiscard]] std::string root() const { return m_folder.path().toStdString(); }
    [[nodiscard]] std::string diskutil(const std::string &arguments) const
    {
        return fmt::format("{}/usr/sbin/diskutil {}", root(), arguments);
    }
    [[nodiscard]] std::string mountLine(const std::string &partition) const
    {
        return fmt::format("{}/usr/bin/sudo -S -k {}", root(), diskutil("mount " + partition));
    }
    /// The runs of sudo that were to mount something.
    [[nodiscard]] std::vector<std::string> mounts() const { return launcher.commandLines(); }

    /// What the process before has left for one that a switch of the launch mode has started.
    void leaveBehind(const std::string &identifier)
    {
        const std::vector<PhysicalDisk> disks{{.identifier = identifier}};
        const std::string json = encodeDisks(disks);
        const auto bytes = std::as_bytes(std::span(json));
        defaults.set(DefaultsKeys::kPersistedDisks, PropertyValue::Data(bytes.begin(), bytes.end()));
        defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, true);
    }

private:
    /// Answers what a scan asks of \a disk; gives its section of the list.
    std::string plugged(const Plugged &disk)
    {
        std::string info =
            fmt::format("   Whole: Yes\n   Device / Media Name: {}\n   Protocol: {}\n", disk.name, disk.protocol);
        if (!disk.mediaUUID.empty())
            info += fmt::format("   Disk / Partition UUID: {}\n", disk.mediaUUID);
        tools.answer(diskutil("info " + disk.identifier), info);
        std::string section = fmt::format("/dev/{} (external, physical):\n", disk.identifier);
        for (const std::string &partition : disk.efiPartitions) {
            section += fmt::format("   1:   EFI EFI   209.7 MB   {}\n", partition);
            const bool isMounted = std::ranges::count(disk.mounted, partition) > 0;
            tools.answer(diskutil("info " + partition), isMounted
                                                            ? "   Volume Name: EFI\n   Mount Point: /nonexistent/EFI\n"
                                                            : "   Volume Name: EFI\n   Mounted: No\n");
            launcher.answer(mountLine(partition), {});
        }
        return section;
    }

    QTemporaryDir m_folder;
};

TEST_F(AutoMountTest, MountsAMarkedDiskThatWasNotThereBefore)
{
    scanWith({internalDisk()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1")));
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked"));
    EXPECT_THAT(log.lines(), IsSupersetOf({"   🏎️ Auto-mounting EFI for disk Stick (UUID-2)",
                                           "🔄 Updating EFI partition state for disk2s1",
                                           "   🏎️ ✅ Auto-mount successful for Stick"}));
}

TEST_F(AutoMountTest, LeavesADiskThatWasAttachedBeforeTheLaunchAloneUntilItIsPluggedInAgain)
{
    scanWith({stick()});
    EXPECT_THAT(mounts(), IsEmpty());

    scanWith({});
    scanWith({stick()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1")));
}

TEST_F(AutoMountTest, MountsInTheFirstScanAfterASwitchOfTheLaunchModeWhatCameMeanwhile)
{
    leaveBehind("disk3");
    mark(card());

    scanWith({stick(), card()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1")));
}

TEST_F(AutoMountTest, KnowsAMarkedDiskWhateverItsIdentifierIsNow)
{
    scanWith({internalDisk()});

    scanWith({internalDisk(), {"disk9", "Renamed", "UUID-2", {"disk9s1"}}});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk9s1")));
}

TEST_F(AutoMountTest, MountsTheFirstPartitionAlone)
{
    scanWith({internalDisk()});

    scanWith({internalDisk(), {"disk2", "Stick", "UUID-2", {"disk2s3", "disk2s1"}}});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s3")));
}

struct LeftAloneCase {
    const char *name;
    Plugged disk;
};

class AutoMountLeavesAlone : public AutoMountTest, public testing::WithParamInterface<LeftAloneCase> {};

TEST_P(AutoMountLeavesAlone, TheDisk)
{
    scanWith({internalDisk()});

    scanWith({internalDisk(), GetParam().disk});

    EXPECT_THAT(manager().disks(), testing::SizeIs(2));
    EXPECT_THAT(mounts(), IsEmpty());
    EXPECT_THAT(log.lines(), Not(Contains(StartsWith("   🏎️"))));
}

INSTANTIATE_TEST_SUITE_P(AutoMount, AutoMountLeavesAlone,
                         testing::Values(LeftAloneCase{"WithoutAMark", {"disk3", "Card", "UUID-3", {"disk3s1"}}},
                                         LeftAloneCase{"WithoutAUUID", {"disk2", "Stick", "", {"disk2s1"}}},
                                         LeftAloneCase{"WithoutAnEFIPartition", {"disk2", "Stick", "UUID-2"}},
                                         LeftAloneCase{"WhoseOnlyPartitionIsMounted",
                                                       {"disk2", "Stick", "UUID-2", {"disk2s1"}, {"disk2s1"}}},
                                         LeftAloneCase{
                                             "WhoseFirstPartitionIsMountedAndTheSecondIsNot",
                                             {"disk2", "Stick", "UUID-2", {"disk2s1", "disk2s3"}, {"disk2s1"}}}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(AutoMountTest, LeavesADiskThatItKnowsAlone)
{
    scanWith({internalDisk()});
    scanWith({internalDisk(), stick()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1")));
}

TEST_F(AutoMountTest, MountsADiskAgainThatAScanHasLostAndTheNextFinds)
{
    scanWith({internalDisk()});
    scanWith({internalDisk(), stick()});
    scanWith({internalDisk()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1"), mountLine("disk2s1")));
}

TEST_F(AutoMountTest, MountsADiskAgainThatWasEjectedAndComesBackBeforeAnyScan)
{
    scanWith({internalDisk()});
    scanWith({internalDisk(), stick()});
    tools.answer(diskutil("eject disk2"), "Disk disk2 ejected\n");
    auto ejecting = manager().ejectDisk("disk2");
    clock.advance(1s); // the refresh behind it is passed over: the last scan was just now
    blockOn(std::move(ejecting), kPatience);

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1"), mountLine("disk2s1")));
}

TEST_F(AutoMountTest, DoesNotMountADiskThatThePreferencesHide)
{
    manager(); // writes the first-run settings
    defaults.set(DefaultsKeys::kShowExternalDisks, false);
    defaults.set(DefaultsKeys::kShowRemovableDisks, false);
    scanWith({internalDisk()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), IsEmpty());
}

TEST_F(AutoMountTest, MountsNoDiskAtAllWhileAnyStoredNameIsANumber)
{
    defaults.set(DefaultsKeys::kAutoMountDiskUUIDs, PropertyValue::Dictionary{{"UUID-2", "Stick"}, {"UUID-9", 9}});
    scanWith({internalDisk()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(mounts(), IsEmpty());
}

TEST_F(AutoMountTest, ReadsTheMarksAtEachScan)
{
    scanWith({internalDisk()});
    setAutoMountMarks(defaults, {{"UUID-3", "Card"}});

    scanWith({internalDisk(), stick(), card()});

    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk3s1")));
}

TEST_F(AutoMountTest, MountsNothingInAProgramThatShallNot)
{
    DiskManager::Surroundings around = surroundings(systemInfo);
    around.mountsMarkedDisks = false;
    DiskManager other(around);
    tools.answer(diskutil("list physical"), "");
    blockOn(other.startScan(false), kPatience);
    ASSERT_TRUE(other.hasCompletedInitialScan());
    scanWith({stick()}); // prepares the answers

    blockOn(other.startScan(false), kPatience);
    drainEventLoop();

    EXPECT_THAT(other.disks(), testing::SizeIs(1));
    EXPECT_THAT(mounts(), IsEmpty());
}

// --- the published state

TEST_F(AutoMountTest, TellsOfTheMountWhileItIsUnderWayAndHoldsThePublishUpByNothing)
{
    scanWith({internalDisk()});
    std::vector<bool> states;
    std::vector<std::string> messages;
    QObject::connect(&manager(), &DiskManager::isAutoMountingChanged,
                     [&] { states.push_back(manager().isAutoMounting()); });
    QObject::connect(&manager(), &DiskManager::autoMountStatusMessageChanged,
                     [&] { messages.push_back(manager().autoMountStatusMessage()); });
    bool isMountingAtThePublish = true;
    QObject::connect(&manager(), &DiskManager::isLoadingDisksChanged,
                     [&] { isMountingAtThePublish = manager().isAutoMounting(); });
    launcher.hold(mountLine("disk2s1"));

    scanWith({internalDisk(), stick()});

    EXPECT_FALSE(isMountingAtThePublish);
    EXPECT_FALSE(manager().isLoadingDisks());
    EXPECT_TRUE(manager().isAutoMounting());
    EXPECT_EQ(manager().autoMountStatusMessage(), "Auto-mounting Stick...");
    launcher.release(mountLine("disk2s1"));
    drainEventLoop();
    EXPECT_THAT(states, ElementsAre(true, false));
    EXPECT_THAT(messages, ElementsAre("Auto-mounting Stick...", ""));
}

TEST_F(AutoMountTest, ShowsTheLastOfSeveralDisksAndClearsWhenTheFirstOneIsMounted)
{
    mark(card());
    scanWith({internalDisk()});
    launcher.hold(mountLine("disk2s1"));
    launcher.hold(mountLine("disk3s1"));

    scanWith({internalDisk(), stick(), card()});
    EXPECT_THAT(mounts(), ElementsAre(mountLine("disk2s1"), mountLine("disk3s1")));
    EXPECT_EQ(manager().autoMountStatusMessage(), "Auto-mounting Card...");

    launcher.release(mountLine("disk2s1"));
    drainEventLoop();
    EXPECT_FALSE(manager().isAutoMounting());
    EXPECT_EQ(manager().autoMountStatusMessage(), "");
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked"));

    launcher.release(mountLine("disk3s1"));
    drainEventLoop();
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) worked", "mount of Card (disk3s1) worked"));
}

TEST_F(AutoMountTest, AreAwaitedUntilTheLastOneHasEnded)
{
    mark(card());
    scanWith({internalDisk()});
    launcher.hold(mountLine("disk2s1"));
    launcher.hold(mountLine("disk3s1"));
    scanWith({internalDisk(), stick(), card()});
    bool hasEnded = false;
    const auto end = manager().autoMountsEnded().then([&hasEnded] { hasEnded = true; });

    launcher.release(mountLine("disk2s1"));
    drainEventLoop();
    EXPECT_FALSE(hasEnded);
    launcher.release(mountLine("disk3s1"));
    drainEventLoop();

    EXPECT_TRUE(hasEnded);
}

TEST_F(AutoMountTest, AreNotAwaitedWhereThereAreNone)
{
    EXPECT_TRUE(manager().autoMountsEnded().isReady());
}

// --- failures

TEST_F(AutoMountTest, LogsAFailureTellsTheUserOnceAndDoesNotTryAgain)
{
    scanWith({internalDisk()});
    launcher.hold(mountLine("disk2s1"));
    scanWith({internalDisk(), stick()});
    launcher.answer(mountLine("disk2s1"), {.terminationStatus = 1, .standardError = "no such file system"});
    launcher.release(mountLine("disk2s1"));
    drainEventLoop();

    EXPECT_THAT(log.lines(), Contains("   🏎️ ❌ Auto-mount failed: no such file system"));
    EXPECT_FALSE(manager().isAutoMounting());
    EXPECT_EQ(manager().autoMountStatusMessage(), "");
    scanWith({internalDisk(), stick()});
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) failed"));
    EXPECT_THAT(dialogs.alerts, IsEmpty());
}

TEST_F(AutoMountTest, AsksForAMissingPasswordAndLogsThatItWasNotGiven)
{
    secretStore.remove({KeychainHelper::kService, KeychainHelper::kAccount});
    scanWith({internalDisk()});

    scanWith({internalDisk(), stick()});

    EXPECT_THAT(dialogs.securePrompts, testing::SizeIs(1));
    EXPECT_THAT(log.lines(), Contains(StartsWith("   🏎️ ❌ Auto-mount failed: ")));
    EXPECT_THAT(journal, ElementsAre("mount of Stick (disk2s1) failed"));
}

} // namespace
} // namespace brindle
