#include "ui/CopyDialogFixture.h"
#include "ui/EraseDialogFixture.h"
#include "views/WindowContentFixture.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using Words = std::vector<std::string>;

/// All that can be read, in the order of the screen; what is disabled stands in brackets.
Words wordsOf(QmlWindow &window)
{
    waitForStillness(window);
    Words words;
    forEachVisible(*window.window().contentItem(), [&words](const QQuickItem &item) {
        const std::string text = item.inherits("QQuickText") ? item.property("text").toString().toStdString() : "";
        if (!text.empty())
            words.push_back(item.isEnabled() ? text : "(" + text + ")");
    });
    return words;
}

// --- the list

class ListWords : public WindowContentFixture {
protected:
    Words words()
    {
        QmlWindow window("WindowContentView { width: 500; height: 600 }", 600,
                         QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        return wordsOf(window);
    }
};

TEST_F(ListWords, OfRowsAndOfWhatLiesBeneathThem)
{
    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    PhysicalDisk boot = externalDisk("disk1", {{.identifier = "disk1s1"}});
    boot.isBootDisk = boot.hasOpenCore = true;
    boot.volumeName = "System";
    boot.totalSpaceBytes = 1'000'000'000'000;
    boot.usedSpaceBytes = 905'000'000'000;
    PhysicalDisk stick =
        externalDisk("disk2", {{.identifier = "disk2s1", .volumeName = "EFI"}, {.identifier = "disk2s3"}});
    stick.hasWindows = stick.hasLinux = true;
    stick.smartStatus = SMARTStatus::failing;
    hold({boot, stick});
    manager().toggleExpanded("disk2");

    EXPECT_THAT(words(), ElementsAre("Brindle", "Disk disk1", "System", "16.0 GB", "•", "External", "•", "Boot Disk",
                                     "•", "OC", "905 GB of 1 TB used", "91%", "EFI", "Disk disk2", "No Volume Label",
                                     "16.0 GB", "•", "External", "•", "Windows", "•", "Linux", "•", "SMART Failing",
                                     "2", "EFI", "disk2s1", "EFI", "disk2s3", "Ready"));
}

TEST_F(ListWords, BeforeTheFirstScanIsOver)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);

    EXPECT_THAT(words(), ElementsAre("Brindle", "Scanning disks...", "Verifying current state", "Ready"));
}

TEST_F(ListWords, WithoutADisk)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    paths = ToolPaths::system();
    plugIn({});
    scan();

    EXPECT_THAT(words(), ElementsAre("Brindle", "No disks found", "Ready"));
}

// --- the copy dialog

class CopyWords : public CopyDialogFixture {
protected:
    static constexpr const char *kHeader = "Copy EFI Folder";
    static constexpr const char *kTitle = "Select Destination";
    static constexpr const char *kQuestion = "Choose which EFI partition to copy to:";
    static constexpr const char *kSource = "Source: disk1s1 on Source";
    static constexpr const char *kTick = "Overwrite without backup";
    static constexpr const char *kWarning =
        "This is your boot disk! Proceeding could prevent your system from starting.";

    /// The selection of the one destination, above its footer.
    static Words selectionWith(Words footer)
    {
        Words words{kHeader, kTitle, kQuestion, kSource, "Target", "disk2s1", kTick};
        words.insert(words.end(), footer.begin(), footer.end());
        return words;
    }
};

TEST_F(CopyWords, OfTheSelectionBeforeAndAfterADestinationIsPicked)
{
    open();

    EXPECT_EQ(wordsOf(window()), selectionWith({"Cancel", "(Copy EFI)"}));
    presenter.dialog()->select(0);
    EXPECT_EQ(wordsOf(window()), selectionWith({"Cancel", "Copy EFI"}));
}

TEST_F(CopyWords, OfTheBootDiskWithBothWarnings)
{
    disks[1].isBootDisk = disks[1].hasOpenCore = disks[1].hasClover = true;
    disks[1].efiPartitions[0].volumeName = "BOOT";
    open(608);
    presenter.dialog()->select(0);
    presenter.dialog()->setOverwriteWithoutBackup(true);

    EXPECT_THAT(wordsOf(window()),
                ElementsAre(kHeader, kTitle, kQuestion, kSource, "Target", "disk2s1", "•", "BOOT", "Boot Disk",
                            "OpenCore", "🍀", "Clover", kTick, "No Backup Warning",
                            "Existing EFI files will be permanently deleted without creating a backup.",
                            "Boot Disk Warning",
                            "This is your system boot disk. Copying EFI files here could prevent your system from "
                            "starting.",
                            "Cancel", "Copy EFI"));
}

TEST_F(CopyWords, WithoutADestination)
{
    EFIDestinationSelectionPresenter empty(
        disks[0], disks[0].efiPartitions[0], {}, {}, [] {}, manager);
    QmlWindow shown(R"(EFIDestinationSelectionView { anchors.fill: parent; focus: true })", 378,
                    QVariantMap{{QStringLiteral("dialog"), QVariant::fromValue(&empty)}});
    const Words beneath{kHeader,
                        kTitle,
                        kQuestion,
                        kSource,
                        "No Available Destinations",
                        "No other EFI partitions are currently mounted. Mount additional EFI partitions to use as "
                        "destinations.",
                        "Refresh",
                        kTick,
                        "Cancel"};
    Words withAlert;
    for (const std::string &word : beneath)
        withAlert.push_back("(" + word + ")");
    for (const char *word : {"(Copy EFI)", "Operation Status",
                             "No available EFI destinations found. Make sure other EFI partitions are mounted.", "OK"})
        withAlert.emplace_back(word);
    EXPECT_EQ(wordsOf(shown), withAlert);

    shown.click(QStringLiteral("alertOKButton"));

    Words withoutAlert = beneath;
    withoutAlert.emplace_back("(Copy EFI)");
    EXPECT_EQ(wordsOf(shown), withoutAlert);
}

TEST_F(CopyWords, OfTheConfirmation)
{
    writeOldEFI();
    disks[1].isBootDisk = true;
    open(578);
    copyUntilConfirmation();

    EXPECT_THAT(wordsOf(window()),
                ElementsAre(kHeader, "EFI Folder Exists", "The destination already contains an EFI folder.",
                            "Choose how to proceed:", "Create Backup & Continue",
                            "Backup existing EFI folder before copying", "Overwrite Without Backup",
                            "Replace existing files directly", "Cancel", "Stop the operation", "Critical Warning",
                            kWarning, "Operation in progress..."));
}

TEST_F(CopyWords, OfACopyThatHangs)
{
    open();
    copyUntilItHangs();

    EXPECT_THAT(wordsOf(window()), ElementsAre(kHeader, "Copying EFI Folder", StartsWith("Copy failed: "), "Progress",
                                               "70%", "Cancel Operation", "Operation in progress..."));
}

TEST_F(CopyWords, OfASuccess)
{
    open();
    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("copyButton"));
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitForEnd();

    EXPECT_EQ(wordsOf(window()), selectionWith({"Operation completed successfully", "Close"}));
}

TEST_F(CopyWords, OfAFailure)
{
    copyUntilFailure();

    EXPECT_EQ(wordsOf(window()), selectionWith({"Operation failed", "Cancel", "Copy EFI"}));
}

// --- the erase dialog

class EraseWords : public EraseDialogFixture {
protected:
    static constexpr const char *kDiskWarning =
        "This will permanently erase data on Stick (16 GB) and cannot be undone. The disk will be reformatted and "
        "relabeled \"WORK\".";
};

TEST_F(EraseWords, OfAVolumeAndOfTheWholeDisk)
{
    openForDisk();
    EXPECT_THAT(wordsOf(window()),
                ElementsAre("Erase Disk?", "WORK", "on Stick", kDiskWarning, "Erase", "This Partition Only",
                            "Whole Disk",
                            "Reformats just this volume — the partition map and EFI partition are left untouched.",
                            "Format", "ExFAT", "Type \"WORK\" to confirm", "Cancel", "Erase"));

    presenter.setIsWholeDisk(true);

    EXPECT_THAT(wordsOf(window()),
                ElementsAre("Erase Disk?", "Stick", "Volume: WORK", kDiskWarning, "Erase", "This Partition Only",
                            "Whole Disk", "Repartitions the entire disk, including the EFI partition.", "Format",
                            "ExFAT", "Type \"WORK\" to confirm", "Cancel", "Erase"));
}

TEST_F(EraseWords, OfAnEFIPartitionAndOfAMismatch)
{
    openForEFIPartition();
    window().click(QStringLiteral("eraseButton"));

    EXPECT_THAT(wordsOf(window()),
                ElementsAre("Erase EFI Partition?", "BOOT", "on Stick",
                            "This will permanently erase the EFI partition (disk2s1) on Stick, including any "
                            "bootloader (OpenCore/Clover) it contains. This cannot be undone.",
                            "Type \"BOOT\" to confirm", "That doesn't match \"BOOT\" — try again.", "Cancel", "Erase"));
}

TEST_F(EraseWords, OfTheWork)
{
    openForDisk(428);
    window().type(QStringLiteral("WORK"));
    window().click(QStringLiteral("eraseButton"));
    manager.finish(EraseOperationManager::Stage::inProgress, "");

    EXPECT_THAT(wordsOf(window()), ElementsAre("Erasing...", "WORK", "on Stick", "Erasing and reformatting as ExFAT...",
                                               "Do not disconnect the disk"));
}

TEST_F(EraseWords, OfTheResult)
{
    openForDisk(428);
    window().type(QStringLiteral("WORK"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(wordsOf(window()),
                ElementsAre("Erase Complete", "WORK", "on Stick",
                            "The volume on Stick has been erased and reformatted as ExFAT, relabeled \"WORK\". The "
                            "partition map and EFI partition were left untouched.",
                            "Done"));
}

TEST_F(EraseWords, OfAFailure)
{
    operations.failure = Error("SudoError", 1, "Resource busy");
    openForEFIPartition(428);
    window().type(QStringLiteral("BOOT"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(wordsOf(window()),
                ElementsAre("Erase Failed", "BOOT", "on Stick",
                            "The EFI partition on Stick could not be erased: Resource busy", "Done"));
}

} // namespace
} // namespace brindle
