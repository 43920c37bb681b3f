#include "views/EFICopyFlow.h"

#include "EFICopyViewFixture.h"
#include "support/LogCapture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class EFICopyFlowTest : public EFICopyViewFixture {
protected:
    EFICopyFlowTest()
    {
        QObject::connect(&flow, &EFICopyFlow::changed, [this] { ++changes; });
        QObject::connect(&manager, &EFICopyManager::isOperationInProgressChanged,
                         [this] { ends += manager.isOperationInProgress() ? 0 : 1; });
    }

    void openDialog() { flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]); }

    void copyToSecondDisk(bool overwriteWithoutBackup = false)
    {
        openDialog();
        flow.onDestinationSelected(flow.availableDestinations().at(0), overwriteWithoutBackup);
        waitUntil([this] { return ends == 1; });
    }

    std::vector<PhysicalDisk> disks{disk("disk1", "Source", "source"), disk("disk2", "Stick", "destination")};
    EFICopyFlow flow{manager, [this]() -> const std::vector<PhysicalDisk> & { return disks; }, clock};
    LogCapture log;
    int changes = 0;
    int ends = 0; ///< Of operations.
};

TEST_F(EFICopyFlowTest, OpensTheDialogWhereThereIsADestination)
{
    openDialog();

    EXPECT_TRUE(flow.showingDestinationSelection());
    EXPECT_EQ(flow.selectedSourceDisk()->identifier, "disk1");
    EXPECT_EQ(flow.selectedSourceEFI()->identifier, "disk1s1");
    ASSERT_EQ(flow.availableDestinations().size(), 1U);
    EXPECT_EQ(flow.availableDestinations()[0].diskName, "Stick");
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(manager.isOperationInProgress());
}

TEST_F(EFICopyFlowTest, AsksForAPlaceWhereThereIsNoDestination)
{
    disks.pop_back();
    dialogs.savePaths = {(folder() / "my copy").string()};

    openDialog();
    waitUntil([this] { return manager.operationStatus() == "EFI folder copied successfully"; });

    EXPECT_FALSE(flow.showingDestinationSelection());
    EXPECT_EQ(treeOf(folder() / "my copy"), treeOf(folder() / "source/EFI"));
}

TEST_F(EFICopyFlowTest, LogsACopyToAPlaceThatFails)
{
    disks.pop_back();

    openDialog();
    waitUntil([this] { return manager.operationStatus() == "Operation cancelled"; });

    EXPECT_THAT(log.lines(), ElementsAre("EFI copy to location failed: Operation cancelled by user"));
}

TEST_F(EFICopyFlowTest, DoesNothingForAPartitionThatIsNotMounted)
{
    disks[0].efiPartitions[0].isMounted = false;
    openDialog();
    flow.onCopyEFI({.identifier = "disk9"}, disks[1].efiPartitions[0]);

    EXPECT_EQ(changes, 0);
    clock.advance(1s);
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
}

TEST_F(EFICopyFlowTest, CopiesToTheChosenDestination)
{
    copyToSecondDisk();

    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    EXPECT_EQ(treeOf(folder() / "destination/EFI"), treeOf(folder() / "source/EFI"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EFICopyFlowTest, SkipsTheConfirmationAndTheBackupWithTheTickSet)
{
    writeOldEFI();

    copyToSecondDisk(true);

    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
    EXPECT_EQ(treeOf(folder() / "destination/EFI"), treeOf(folder() / "source/EFI"));
}

TEST_F(EFICopyFlowTest, LogsACopyThatFails)
{
    fs::remove_all(folder() / "source/EFI");

    copyToSecondDisk();
    waitUntil([this] { return !log.lines().empty(); });

    EXPECT_THAT(log.lines(), ElementsAre("EFI copy failed: Source EFI folder not found"));
    EXPECT_TRUE(flow.showingDestinationSelection());
}

TEST_F(EFICopyFlowTest, EndsInSilenceWhereTheChosenDiskHasGone)
{
    openDialog();
    const auto destination = flow.availableDestinations().at(0);
    disks.pop_back();

    flow.onDestinationSelected(destination, false);
    clock.advance(1s);

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EFICopyFlowTest, EndsInSilenceWithoutASource)
{
    openDialog();
    const auto destination = flow.availableDestinations().at(0);
    flow.onCancel();

    flow.onDestinationSelected(destination, false);
    clock.advance(1s);

    EXPECT_EQ(manager.operationStatus(), "");
}

TEST_F(EFICopyFlowTest, ForgetsAllWhenTheDialogCloses)
{
    openDialog();

    flow.onCancel();

    EXPECT_FALSE(flow.showingDestinationSelection());
    EXPECT_FALSE(flow.selectedSourceDisk());
    EXPECT_FALSE(flow.selectedSourceEFI());
    EXPECT_THAT(flow.availableDestinations(), IsEmpty());
}

TEST_F(EFICopyFlowTest, ClosesTheDialogTwoSecondsAfterASuccess)
{
    copyToSecondDisk();

    clock.advance(1999ms);
    EXPECT_TRUE(flow.showingDestinationSelection());
    clock.advance(1ms);

    EXPECT_FALSE(flow.showingDestinationSelection());
    EXPECT_THAT(flow.availableDestinations(), IsEmpty());
}

TEST_F(EFICopyFlowTest, StaysOpenWhereANewCopyHasStartedMeanwhile)
{
    copyToSecondDisk();
    clock.advance(1s);
    flow.onDestinationSelected(flow.availableDestinations().at(0),
                               false); // the folder is there now: a choice is awaited
    waitUntil([this] { return manager.showConfirmationDialog(); });

    clock.advance(1s);

    EXPECT_TRUE(flow.showingDestinationSelection());
}

TEST_F(EFICopyFlowTest, StaysOpenAfterACancellation)
{
    writeOldEFI();
    openDialog();
    flow.onDestinationSelected(flow.availableDestinations().at(0), false);
    waitUntil([this] { return manager.showConfirmationDialog(); });
    manager.confirmationData()->onCancel();

    clock.advance(1h);

    EXPECT_TRUE(manager.isCancelled());
    EXPECT_TRUE(flow.showingDestinationSelection());
}

TEST_F(EFICopyFlowTest, CancelsTheQuestionOfADialogThatIsClosed)
{
    writeOldEFI();
    openDialog();
    flow.onDestinationSelected(flow.availableDestinations().at(0), false);
    waitUntil([this] { return manager.showConfirmationDialog(); });

    flow.onCancel();
    waitUntil([this] { return !manager.showConfirmationDialog(); });

    EXPECT_FALSE(manager.isOperationInProgress());
    EXPECT_EQ(manager.operationStatus(), "Operation cancelled");
    EXPECT_TRUE(fs::exists(folder() / "destination/EFI/old"));
}

TEST_F(EFICopyFlowTest, CancelsAQuestionThatComesAfterItsDialogHasClosed)
{
    writeOldEFI();
    openDialog();
    flow.onDestinationSelected(flow.availableDestinations().at(0), false);
    waitUntil([this] { return manager.isOperationInProgress(); });
    flow.onCancel();
    ASSERT_TRUE(manager.isOperationInProgress());

    waitUntil([this] { return ends == 1; });

    EXPECT_TRUE(manager.isCancelled());
    EXPECT_FALSE(manager.showConfirmationDialog());
    EXPECT_FALSE(manager.confirmationData());
    EXPECT_TRUE(fs::exists(folder() / "destination/EFI/old"));
}

TEST_F(EFICopyFlowTest, BeginsOneCopyWhereItIsAskedForTwiceAtOnce)
{
    int starts = 0;
    QObject::connect(&manager, &EFICopyManager::operationStatusChanged,
                     [&] { starts += manager.operationStatus() == "Preparing EFI copy operation..." ? 1 : 0; });
    openDialog();

    for (int i = 0; i < 2; ++i)
        flow.onDestinationSelected(flow.availableDestinations().at(0), false);
    waitUntil([this] { return ends == 1; });

    EXPECT_EQ(starts, 1);
    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
}

TEST_F(EFICopyFlowTest, AsksForOnePlaceWhereItIsAskedForTwiceAtOnce)
{
    disks.pop_back();

    openDialog();
    openDialog();
    waitUntil([this] { return ends == 1; });
    clock.advance(1s);

    EXPECT_EQ(dialogs.savePanels.size(), 1U);
}

} // namespace
} // namespace brindle
