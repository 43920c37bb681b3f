#include "views/EFIDestinationSelectionPresenter.h"

#include "DestinationSelectionFixture.h"

#include <gmock/gmock.h>

#include <memory>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Content = EFIDestinationSelectionPresenter::Content;

class EFIDestinationSelectionPresenterTest : public DestinationSelectionFixture<EFIDestinationSelectionPresenter> {
protected:
    static std::vector<std::string> titlesOf(const QVariantList &boxes)
    {
        std::vector<std::string> titles;
        for (const QVariant &box : boxes)
            titles.push_back(box.value<BoxValue>().title.toStdString());
        return titles;
    }
};

TEST_F(EFIDestinationSelectionPresenterTest, BeginsWithTheSelection)
{
    const auto &dialog = open();

    EXPECT_EQ(dialog.content(), Content::Selection);
    EXPECT_EQ(dialog.sourceText(), u"Source: disk1s1 on Source");
    EXPECT_EQ(dialog.destinationCount(), 2);
    EXPECT_FALSE(dialog.hasIndicator());
    EXPECT_EQ(dialog.indicator(), SignValue());
    EXPECT_EQ(dialog.indicatorDescription(), u"");
    EXPECT_FALSE(dialog.offersClose());
    EXPECT_TRUE(dialog.offersCopy());
    EXPECT_FALSE(dialog.canCopy());
    EXPECT_THAT(dialog.selectionWarnings(), IsEmpty());
    EXPECT_THAT(dialog.confirmationOptions(), IsEmpty());
    EXPECT_THAT(dialog.confirmationWarnings(), IsEmpty());
}

TEST_F(EFIDestinationSelectionPresenterTest, TellsEachDestinationInSignsAndInWords)
{
    const auto rows = open().destinations();

    ASSERT_EQ(rows.size(), 2);
    const auto boot = rows[0].value<DestinationValue>();
    EXPECT_EQ(boot.diskName, u"Boot SSD");
    ASSERT_EQ(boot.details.size(), 5);
    EXPECT_EQ(boot.details[0].value<SignValue>(),
              (SignValue{QStringLiteral(""), QStringLiteral("disk2s1"), QStringLiteral("secondary")}));
    EXPECT_EQ(boot.details[2].value<SignValue>(),
              (SignValue{QStringLiteral("cpu"), QStringLiteral("OpenCore"), QStringLiteral("#00CCFF")}));
    ASSERT_EQ(boot.trailingSymbols.size(), 1);
    EXPECT_EQ(boot.trailingSymbols[0].value<SignValue>(), (SignValue{QStringLiteral("exclamationmark.triangle.fill"),
                                                                     QStringLiteral(""), QStringLiteral("orange")}));
    EXPECT_EQ(boot.description, u"Boot SSD, disk2s1, Boot Disk, OpenCore, Clover");
    EXPECT_EQ(rows[1].value<DestinationValue>().description, u"Plain, disk3s1, EFI");
}

TEST_F(EFIDestinationSelectionPresenterTest, MakesStrangersNamesVisibleText)
{
    source.name = "Sou\x1b[31mrce";
    source.efiPartitions[0].volumeName = "A\u202eB";

    const auto &dialog = open({{.diskIdentifier = "disk2",
                                .diskName = "Evil\nDisk",
                                .efiPartition = {.identifier = "disk2s1", .volumeName = "V\u202eN"}}});

    EXPECT_EQ(dialog.sourceText(), u"Source: disk1s1 (A<U+202E>B) on Sou<U+001B>[31mrce");
    EXPECT_EQ(dialog.destinations()[0].value<DestinationValue>().description, u"Evil<U+000A>Disk, disk2s1, V<U+202E>N");
}

TEST_F(EFIDestinationSelectionPresenterTest, HandsOnTheChoiceAndTheTick)
{
    auto &dialog = open();

    dialog.select(0);
    dialog.setOverwriteWithoutBackup(true);
    dialog.copyEFI();

    EXPECT_THAT(chosen, ElementsAre("disk2 overwritten"));
    EXPECT_TRUE(dialog.canCopy());
    EXPECT_TRUE(dialog.destinations()[0].value<DestinationValue>().isSelected);
    EXPECT_EQ(dialog.overwriteLabel(),
              (SignValue{QStringLiteral("exclamationmark.triangle.fill"), QStringLiteral("Overwrite without backup"),
                         QStringLiteral("orange")}));
    EXPECT_EQ(dialog.overwriteSymbolColor(), u"orange");
    EXPECT_THAT(titlesOf(dialog.selectionWarnings()), ElementsAre("No Backup Warning", "Boot Disk Warning"));
    EXPECT_EQ(changes, 2);
}

TEST_F(EFIDestinationSelectionPresenterTest, OffersTheOptionsOfTheConfirmation)
{
    writeOldEFI();
    destination.isBootDisk = true;
    const auto &dialog = open();

    copy();

    EXPECT_EQ(dialog.content(), Content::Confirmation);
    EXPECT_EQ(dialog.confirmationTitle(), u"EFI Folder Exists");
    EXPECT_EQ(dialog.confirmationText(), u"The destination already contains an EFI folder.");
    EXPECT_EQ(dialog.confirmationQuestion(), u"Choose how to proceed:");
    EXPECT_THAT(titlesOf(dialog.confirmationOptions()),
                ElementsAre("Create Backup & Continue", "Overwrite Without Backup", "Cancel"));
    EXPECT_EQ(dialog.confirmationOptions()[2].value<BoxValue>(),
              (BoxValue{QStringLiteral("xmark.circle"), QStringLiteral("Cancel"), QStringLiteral("Stop the operation"),
                        QStringLiteral("secondary")}));
    EXPECT_THAT(titlesOf(dialog.confirmationWarnings()), ElementsAre("Critical Warning"));
    EXPECT_EQ(dialog.progressEnds(), (QVariantList{QStringLiteral("From:"), QStringLiteral("disk1s1"),
                                                   QStringLiteral("To:"), QStringLiteral("disk2s1")}));
    EXPECT_FALSE(dialog.offersClose() || dialog.offersCopy());
}

TEST_F(EFIDestinationSelectionPresenterTest, IgnoresAnOptionThatIsNotOfferedAnyMore)
{
    auto &dialog = open();

    dialog.chooseOption(1);

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_FALSE(manager.isOperationInProgress());
}

TEST_F(EFIDestinationSelectionPresenterTest, TellsTheWholeReasonOfAFailureInWords)
{
    writeOldEFI();
    auto &dialog = open();
    copy();
    fs::remove_all(folder() / "source/EFI");

    dialog.chooseOption(1);
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_EQ(dialog.indicator(),
              (SignValue{QStringLiteral("xmark.circle"), QStringLiteral("Operation failed"), QStringLiteral("red")}));
    EXPECT_EQ(dialog.indicatorDescription().toStdString(), manager.operationStatus());
    EXPECT_TRUE(dialog.indicatorDescription().startsWith(u"Operation failed: Copy operation failed: "));
    EXPECT_TRUE(dialog.offersCopy());
}

TEST_F(EFIDestinationSelectionPresenterTest, TellsASuccessInTheIndicatorsOwnWords)
{
    auto &dialog = open();

    copy();

    EXPECT_EQ(dialog.indicatorDescription(), u"Operation completed successfully");
    EXPECT_TRUE(dialog.offersClose());
    EXPECT_EQ(dialog.progress(), 1.0);
    EXPECT_EQ(dialog.percentText(), u"100%");
    EXPECT_EQ(dialog.status(), u"EFI copy completed successfully");
    dialog.cancel();
    EXPECT_EQ(cancels, 1);
}

TEST_F(EFIDestinationSelectionPresenterTest, RaisesAndClosesTheAlert)
{
    auto &dialog = open({});

    dialog.appear();
    EXPECT_TRUE(dialog.showingAlert());
    EXPECT_EQ(dialog.alertMessage(),
              u"No available EFI destinations found. Make sure other EFI partitions are mounted.");
    dialog.escape();

    EXPECT_FALSE(dialog.showingAlert());
    EXPECT_EQ(cancels, 0) << "Escape closed the alert alone";
}

TEST_F(EFIDestinationSelectionPresenterTest, ClosesTheSelectionWithEscape)
{
    open().escape();

    EXPECT_EQ(cancels, 1);
}

TEST_F(EFIDestinationSelectionPresenterTest, CancelsTheConfirmationWithEscape)
{
    writeOldEFI();
    auto &dialog = open();
    copy();

    dialog.escape();
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_EQ(manager.operationStatus(), "Operation cancelled");
    EXPECT_EQ(dialog.content(), Content::Selection);
    EXPECT_EQ(cancels, 0);
    EXPECT_TRUE(fs::exists(folder() / "destination/EFI/old"));
}

TEST_F(EFIDestinationSelectionPresenterTest, LeavesACopyUnderWayAloneOnEscape)
{
    auto &dialog = open();
    fs::remove_all(folder() / "destination"); // a copy that fails hangs until it is cancelled
    copy();
    ASSERT_EQ(dialog.content(), Content::Progress);

    dialog.escape();
    EXPECT_EQ(dialog.content(), Content::Progress);
    EXPECT_EQ(cancels, 0);
    dialog.cancelOperation();

    EXPECT_EQ(dialog.content(), Content::Selection);
}

} // namespace
} // namespace brindle
