#include "views/EFIDestinationSelection.h"

#include "DestinationSelectionFixture.h"

#include <gmock/gmock.h>

#include <memory>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Content = EFIDestinationSelection::Content;
using Buttons = EFIDestinationSelection::Buttons;

class EFIDestinationSelectionTest : public DestinationSelectionFixture<EFIDestinationSelection> {
protected:
    static std::vector<std::string> titlesOf(const std::vector<WarningBox> &warnings)
    {
        std::vector<std::string> titles;
        for (const WarningBox &warning : warnings)
            titles.emplace_back(warning.title);
        return titles;
    }
};

TEST_F(EFIDestinationSelectionTest, BeginsWithTheSelectionAndNothingChosen)
{
    source.efiPartitions[0].volumeName = "BOOT";
    const auto &dialog = open();

    EXPECT_EQ(dialog.content(), Content::selection);
    EXPECT_EQ(dialog.sourceText(), "Source: disk1s1 (BOOT) on Source");
    EXPECT_FALSE(dialog.canCopy());
    EXPECT_FALSE(dialog.overwriteWithoutBackup());
    EXPECT_THAT(dialog.selectionWarnings(), IsEmpty());
    EXPECT_FALSE(dialog.footerIndicator());
    EXPECT_EQ(dialog.footerButtons(), Buttons::cancelAndCopy);
    EXPECT_THAT(dialog.progressEnds(), IsEmpty());
    EXPECT_THAT(dialog.confirmationOptions(), IsEmpty());
    EXPECT_FALSE(dialog.confirmationWarning());
}

TEST_F(EFIDestinationSelectionTest, TellsWhatEachDestinationHolds)
{
    const auto rows = open().rows();

    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].diskName, "Boot SSD");
    EXPECT_THAT(rows[0].details, ElementsAre(Sign{"", "disk2s1", Colors::kSecondary},
                                             Sign{"exclamationmark.triangle.fill", "Boot Disk", Colors::kOrange},
                                             Sign{"cpu", "OpenCore", Colors::kOpenCore}, Sign{"", "🍀", Colors::kGreen},
                                             Sign{"", "Clover", Colors::kGreen}));
    EXPECT_THAT(rows[0].trailingSymbols, ElementsAre(Sign{"exclamationmark.triangle.fill", "", Colors::kOrange}));
    EXPECT_THAT(rows[1].details, ElementsAre(Sign{"", "disk3s1", Colors::kSecondary}, Sign{"", "•", Colors::kSecondary},
                                             Sign{"", "EFI", Colors::kSecondary}));
    EXPECT_THAT(rows[1].trailingSymbols, IsEmpty());
    EXPECT_FALSE(rows[0].isSelected || rows[1].isSelected);
}

TEST_F(EFIDestinationSelectionTest, LeavesOutAVolumeNameThatIsEmpty)
{
    destination.efiPartitions[0].volumeName = "";

    EXPECT_EQ(open().rows()[0].details[1].text, "Boot Disk");
}

TEST_F(EFIDestinationSelectionTest, HandsOnTheChoiceAndTheTick)
{
    auto &dialog = open();
    dialog.copyEFI();
    EXPECT_THAT(chosen, IsEmpty());

    dialog.select(1);
    EXPECT_TRUE(dialog.canCopy());
    dialog.copyEFI();
    dialog.select(0);
    dialog.setOverwriteWithoutBackup(true);
    dialog.copyEFI();

    EXPECT_THAT(chosen, ElementsAre("disk3", "disk2 overwritten"));
    EXPECT_EQ(changes, 3);
}

TEST_F(EFIDestinationSelectionTest, MarksEachRowOfTheChosenPartitionsIdentifier)
{
    destination.efiPartitions[0].identifier = "disk3s1";
    auto &dialog = open();

    dialog.select(1);

    const auto rows = dialog.rows();
    EXPECT_TRUE(rows[0].isSelected);
    EXPECT_TRUE(rows[1].isSelected);
    EXPECT_THAT(rows[0].trailingSymbols, ElementsAre(Sign{"checkmark.circle.fill", "", Colors::kBlue},
                                                     Sign{"exclamationmark.triangle.fill", "", Colors::kOrange}));
}

TEST_F(EFIDestinationSelectionTest, ShowsNoOtherWarningThanNoBackupWithTheTickSet)
{
    auto &dialog = open();
    dialog.select(1);

    dialog.setOverwriteWithoutBackup(true);

    EXPECT_THAT(titlesOf(dialog.selectionWarnings()), ElementsAre("No Backup Warning"));
    EXPECT_EQ(dialog.selectionWarnings()[0].color, Colors::kOrange);
    EXPECT_EQ(dialog.selectionWarnings()[0].message,
              "Existing EFI files will be permanently deleted without creating a backup.");
    copy(true);
    EXPECT_EQ(dialog.content(), Content::selection) << "the copy has ended without a confirmation";
    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
}

TEST_F(EFIDestinationSelectionTest, WarnsOfTheBootDiskAndBlocksNothing)
{
    writeOldEFI();
    destination.isBootDisk = true;
    auto &dialog = open();

    dialog.select(0);
    EXPECT_THAT(titlesOf(dialog.selectionWarnings()), ElementsAre("Boot Disk Warning"));
    EXPECT_EQ(dialog.selectionWarnings()[0].color, Colors::kRed);
    EXPECT_TRUE(dialog.canCopy());
    copy();

    ASSERT_TRUE(dialog.confirmationWarning());
    EXPECT_EQ(dialog.confirmationWarning()->title, "Critical Warning");
    EXPECT_EQ(dialog.confirmationWarning()->message,
              "This is your boot disk! Proceeding could prevent your system from starting.");
    EXPECT_EQ(dialog.confirmationOptions().size(), 3U);
}

TEST_F(EFIDestinationSelectionTest, ShowsTheTickInOrange)
{
    auto &dialog = open();
    EXPECT_EQ(dialog.overwriteLabel(), (Sign{"doc.badge.plus", "Overwrite without backup", Colors::kPrimary}));
    EXPECT_EQ(dialog.overwriteSymbolColor(), Colors::kBlue);

    dialog.setOverwriteWithoutBackup(true);

    EXPECT_EQ(dialog.overwriteLabel(),
              (Sign{"exclamationmark.triangle.fill", "Overwrite without backup", Colors::kOrange}));
    EXPECT_EQ(dialog.overwriteSymbolColor(), Colors::kOrange);
}

TEST_F(EFIDestinationSelectionTest, AsksWhatBecomesOfAnOldFolder)
{
    writeOldEFI();
    const auto &dialog = open();

    copy();

    EXPECT_EQ(dialog.content(), Content::confirmation);
    EXPECT_EQ(dialog.footerButtons(), Buttons::none);
    EXPECT_EQ(dialog.footerIndicator(), (Sign{"clock", "Operation in progress...", Colors::kBlue}));
    EXPECT_THAT(dialog.progressEnds(), ElementsAre(testing::Pair("From:", "disk1s1"), testing::Pair("To:", "disk2s1")));
    EXPECT_FALSE(dialog.confirmationWarning());
    const auto options = dialog.confirmationOptions();
    ASSERT_EQ(options.size(), 3U);
    EXPECT_EQ(options[0].title, "Create Backup & Continue");
    EXPECT_EQ(options[0].subtitle, "Backup existing EFI folder before copying");
    EXPECT_EQ(options[1].title, "Overwrite Without Backup");
    EXPECT_EQ(options[1].subtitle, "Replace existing files directly");
    EXPECT_EQ(options[2].title, "Cancel");
    EXPECT_EQ(options[2].subtitle, "Stop the operation");
}

struct OptionCase {
    const char *name;
    std::size_t option;
    const char *status;
};

class ConfirmationOption : public EFIDestinationSelectionTest, public testing::WithParamInterface<OptionCase> {};

INSTANTIATE_TEST_SUITE_P(
    Of, ConfirmationOption,
    testing::Values(OptionCase{"Backup", 0, "Operation failed: Operation cancelled by user"}, // its panel is cancelled
                    OptionCase{"Overwrite", 1, "EFI copy completed successfully"},
                    OptionCase{"Cancel", 2, "Operation cancelled"}),
    [](const auto &row) { return row.param.name; });

TEST_P(ConfirmationOption, GoesOnAsItSays)
{
    writeOldEFI();
    const auto &dialog = open();
    copy();

    const auto action = dialog.confirmationOptions()[GetParam().option].action;
    action();
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_EQ(manager.operationStatus(), GetParam().status);
    EXPECT_EQ(dialog.content(), Content::selection);
    EXPECT_EQ(dialogs.savePanels.size(), GetParam().option == 0 ? 1U : 0U);
}

TEST_F(EFIDestinationSelectionTest, OffersCloseAfterASuccessUntilTheStatusIsCleared)
{
    auto &dialog = open();
    copy();

    EXPECT_EQ(dialog.footerIndicator(), (Sign{"checkmark.circle", "Operation completed successfully", Colors::kGreen}));
    EXPECT_EQ(dialog.footerButtons(), Buttons::close);
    clock.advance(3s);
    EXPECT_FALSE(dialog.footerIndicator());
    EXPECT_EQ(dialog.footerButtons(), Buttons::cancelAndCopy);
    dialog.cancel();

    EXPECT_EQ(cancels, 1);
}

TEST_F(EFIDestinationSelectionTest, ShowsProgressAndOneWayOutWhileAFailedCopyHangs)
{
    auto &dialog = open();
    fs::remove_all(folder() / "destination");
    copy();

    EXPECT_EQ(dialog.content(), Content::progress);
    EXPECT_EQ(dialog.percentText(), "70%");
    EXPECT_EQ(dialog.footerButtons(), Buttons::none);
    dialog.cancelOperation();

    EXPECT_EQ(dialog.content(), Content::selection);
    EXPECT_EQ(dialog.footerIndicator(), (Sign{"stop.circle", "Operation cancelled", Colors::kOrange}));
    EXPECT_EQ(dialog.percentText(), "0%");
}

TEST_F(EFIDestinationSelectionTest, KeepsTheChoiceAndTheTickOverACancellation)
{
    auto &dialog = open();
    dialog.select(0);
    dialog.setOverwriteWithoutBackup(true);

    manager.cancelOperation();

    EXPECT_TRUE(dialog.canCopy());
    EXPECT_TRUE(dialog.overwriteWithoutBackup());
    EXPECT_TRUE(dialog.footerIndicator());
    clock.advance(2s);
    EXPECT_FALSE(dialog.footerIndicator());
}

TEST_F(EFIDestinationSelectionTest, ShowsAFailureAfterAChoice)
{
    writeOldEFI();
    const auto &dialog = open();
    copy();
    fs::remove_all(folder() / "source/EFI");

    manager.confirmationData()->onOverwrite();
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_EQ(dialog.footerIndicator(), (Sign{"xmark.circle", "Operation failed", Colors::kRed}));
    EXPECT_EQ(dialog.footerButtons(), Buttons::cancelAndCopy);
}

TEST_F(EFIDestinationSelectionTest, HasNoWordForAStatusThatNamesNoResult)
{
    fs::remove_all(folder() / "source/EFI");
    fs::create_directory(folder() / "source/EFI");
    const auto &dialog = open();

    copy();

    EXPECT_EQ(manager.operationStatus(), "Source EFI folder is empty - nothing to copy");
    EXPECT_FALSE(dialog.footerIndicator());
    EXPECT_EQ(dialog.content(), Content::selection);
    EXPECT_EQ(dialog.footerButtons(), Buttons::cancelAndCopy);
}

TEST_F(EFIDestinationSelectionTest, ShowsEveryPercentageOfACopy)
{
    writeOldEFI();
    dialogs.savePaths = {(folder() / "backup").string()};
    copy();
    const auto &dialog = open();
    std::vector<std::string> percents;
    QObject::connect(&manager, &EFICopyManager::operationProgressChanged,
                     [&] { percents.push_back(dialog.percentText()); });

    manager.confirmationData()->onBackup();
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_THAT(percents,
                ElementsAre("0%", "10%", "70%", "85%", "30%", "40%", "50%", "60%", "70%", "85%", "90%", "95%", "100%"));
}

TEST_F(EFIDestinationSelectionTest, RaisesAnAlertWhereThereIsNothingToPick)
{
    auto &dialog = open({});
    EXPECT_FALSE(dialog.showingAlert());

    dialog.appear();

    EXPECT_TRUE(dialog.showingAlert());
    EXPECT_EQ(dialog.alertMessage(),
              "No available EFI destinations found. Make sure other EFI partitions are mounted.");
    dialog.closeAlert();
    EXPECT_FALSE(dialog.showingAlert());
}

TEST_F(EFIDestinationSelectionTest, RaisesNoAlertWhereThereIs)
{
    auto &dialog = open();

    dialog.appear();

    EXPECT_FALSE(dialog.showingAlert());
}

} // namespace
} // namespace brindle
