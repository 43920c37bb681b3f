#include "EFICopyManagerFixture.h"

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;

using Confirmation = EFICopyManager::ConfirmationData;

/// What the destination holds afterwards.
enum class Folder { old, replaced };

struct Stage {
    const char *name;
    const char *status; ///< The cancellation comes from the event loop after this was published.
    Statuses later;
    Folder folder;
};

class EFICopyManagerCancelTest : public EFICopyManagerTest {
protected:
    EFICopyManagerCancelTest()
    {
        writeSampleEFI(sourceEFI());
        writeOldEFI();
    }

    void cancelAfter(const std::string &status)
    {
        QObject::connect(&manager, &EFICopyManager::operationStatusChanged, [this, status] {
            if (manager.operationStatus() == status && !manager.isCancelled())
                QMetaObject::invokeMethod(
                    &manager, [this] { manager.cancelOperation(); }, Qt::QueuedConnection);
        });
    }
};

class CancelledAtAStage : public EFICopyManagerCancelTest, public testing::WithParamInterface<Stage> {};

INSTANTIATE_TEST_SUITE_P(
    After, CancelledAtAStage,
    testing::Values(
        Stage{"Preparing",
              "Preparing EFI copy operation...",
              {"Operation cancelled", "Checking destination...", "Destination is ready...", "Operation cancelled"},
              Folder::old},
        Stage{"Removing",
              "Removing existing EFI folder...",
              {"Operation cancelled", "Copying files...", "Copy completed, verifying...", "Verifying copied files...",
               "Verification completed successfully", "EFI copy completed successfully"},
              Folder::replaced},
        Stage{"Copying",
              "Copying files...",
              {"Operation cancelled", "Copy completed, verifying...", "Verifying copied files...",
               "Verification completed successfully", "EFI copy completed successfully"},
              Folder::replaced},
        Stage{"Verifying",
              "Verifying copied files...",
              {"Operation cancelled", "Verification completed successfully", "EFI copy completed successfully"},
              Folder::replaced}),
    [](const auto &row) { return row.param.name; });

TEST_P(CancelledAtAStage, SeesItOnlyBeforeTheDestinationChanges)
{
    const auto old = treeOf(destinationEFI());
    cancelAfter(GetParam().status);

    const auto error = copy(true);

    const auto cancelled = std::ranges::find(statuses, "Operation cancelled");
    EXPECT_EQ(*(cancelled - 1), GetParam().status);
    EXPECT_THAT(std::vector(cancelled, statuses.end()), ElementsAreArray(GetParam().later));
    EXPECT_EQ(treeOf(destinationEFI()), GetParam().folder == Folder::old ? old : treeOf(sourceEFI()));
    EXPECT_EQ(error.has_value(), GetParam().folder == Folder::old);
    EXPECT_FALSE(manager.isOperationInProgress());
    EXPECT_TRUE(manager.isCancelled());
}

TEST_F(EFICopyManagerCancelTest, ThrowsWhatSaysSo)
{
    cancelAfter("Preparing EFI copy operation...");

    const auto error = copy();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->localizedDescription(), "Operation cancelled by user");
    EXPECT_EQ(manager.operationProgress(), 0.2) << "as it was at the last step";
    EXPECT_FALSE(manager.showConfirmationDialog());
}

TEST_F(EFICopyManagerCancelTest, GoesOnAfterAChoice)
{
    ASSERT_FALSE(copy());
    dialogs.savePaths = {backup().string()};
    const auto old = treeOf(destinationEFI());
    cancelAfter("Creating backup of existing EFI folder...");

    manager.confirmationData()->onBackup();
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });

    EXPECT_TRUE(manager.isCancelled());
    EXPECT_EQ(treeOf(backup()), old);
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerCancelTest, IsNotSeenByACopyToAFolder)
{
    dialogs.savePaths = {(folder() / "my copy").string()};
    cancelAfter("Preparing to copy EFI folder...");

    EXPECT_FALSE(copyToLocation());

    EXPECT_EQ(manager.operationStatus(), "EFI folder copied successfully");
    EXPECT_EQ(treeOf(folder() / "my copy"), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerCancelTest, LeavesTheDestinationUntouchedFromTheDialogAndClearsTheStatusAfterTwoSeconds)
{
    const auto old = treeOf(destinationEFI());
    ASSERT_FALSE(copy());
    forget();

    choose(&Confirmation::onCancel);

    EXPECT_THAT(trace,
                ElementsAre("cancelled", "ended", "status Operation cancelled", "progress 0", "no dialog", "no data"));
    EXPECT_EQ(treeOf(destinationEFI()), old);
    clock.advance(1999ms);
    EXPECT_EQ(manager.operationStatus(), "Operation cancelled");
    clock.advance(1ms);
    EXPECT_EQ(manager.operationStatus(), "");
}

TEST_F(EFICopyManagerCancelTest, IsForgottenByTheNextStart)
{
    manager.cancelOperation();
    ASSERT_TRUE(manager.isCancelled());

    EXPECT_FALSE(copy(true));

    EXPECT_FALSE(manager.isCancelled());
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

} // namespace
} // namespace brindle
