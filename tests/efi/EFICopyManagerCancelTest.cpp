#include "EFICopyManagerFixture.h"

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;

using Confirmation = EFICopyManager::ConfirmationData;

/// What the destination holds at the begin, and afterwards.
enum class Folder { none, old, replaced };

/// Who cancels when a status was published: a click, which comes from the event loop, or who is told of the status.
constexpr Qt::ConnectionType kByAClick = Qt::QueuedConnection;
constexpr Qt::ConnectionType kAtOnce = Qt::DirectConnection;

struct Stage {
    const char *name;
    const char *status; ///< What is published last before the cancellation.
    Qt::ConnectionType how;
    Folder before;
    Statuses later;
    Folder after;
};

class EFICopyManagerCancelTest : public EFICopyManagerTest {
protected:
    EFICopyManagerCancelTest()
    {
        writeSampleEFI(sourceEFI());
        writeOldEFI();
    }

    void cancelAfter(const std::string &status, Qt::ConnectionType how = kByAClick)
    {
        QObject::connect(&manager, &EFICopyManager::operationStatusChanged, [this, status, how] {
            if (manager.operationStatus() == status && !manager.isCancelled())
                QMetaObject::invokeMethod(
                    &manager, [this] { manager.cancelOperation(); }, how);
        });
    }
};

class CancelledAtAStage : public EFICopyManagerCancelTest, public testing::WithParamInterface<Stage> {};

/// The statuses of a copy from \a first on.
Statuses statusesFrom(std::string_view first)
{
    const Statuses all{"Copying EFI from disk1s1 (OPENCORE) to disk2s1...",
                       "Removing existing EFI folder...",
                       "Copying files...",
                       "Copy completed, verifying...",
                       "Verifying copied files...",
                       "Verification completed successfully",
                       "EFI copy completed successfully"};
    Statuses statuses{"Operation cancelled"};
    statuses.insert(statuses.end(), std::ranges::find(all, first), all.end());
    return statuses;
}

INSTANTIATE_TEST_SUITE_P(
    After, CancelledAtAStage,
    testing::Values(
        Stage{"Preparing",
              "Preparing EFI copy operation...",
              kByAClick,
              Folder::old,
              {"Operation cancelled", "Checking destination...", "Destination is ready...", "Operation cancelled"},
              Folder::old},
        Stage{"Checking",
              "Checking destination...",
              kAtOnce,
              Folder::old,
              {"Operation cancelled", "Destination is ready...", "Operation cancelled"},
              Folder::old},
        Stage{"FindingItFree", "Destination is ready...", kAtOnce, Folder::none, {"Operation cancelled"}, Folder::none},
        Stage{"PreparingToOverwrite",
              "Preparing to overwrite existing EFI folder...",
              kAtOnce,
              Folder::old,
              {"Operation cancelled"},
              Folder::old},
        Stage{"TheLastLook", "Copying EFI from disk1s1 (OPENCORE) to disk2s1...", kAtOnce, Folder::old,
              statusesFrom("Removing existing EFI folder..."), Folder::replaced},
        Stage{"Removing", "Removing existing EFI folder...", kByAClick, Folder::old, statusesFrom("Copying files..."),
              Folder::replaced},
        Stage{"Copying", "Copying files...", kByAClick, Folder::old, statusesFrom("Copy completed, verifying..."),
              Folder::replaced},
        Stage{"Copied", "Copy completed, verifying...", kAtOnce, Folder::none,
              statusesFrom("Verifying copied files..."), Folder::replaced},
        Stage{"Verifying", "Verifying copied files...", kByAClick, Folder::old,
              statusesFrom("Verification completed successfully"), Folder::replaced},
        Stage{"Verified", "Verification completed successfully", kAtOnce, Folder::old,
              statusesFrom("EFI copy completed successfully"), Folder::replaced},
        Stage{"Succeeding",
              "EFI copy completed successfully",
              kAtOnce,
              Folder::old,
              {"Operation cancelled"},
              Folder::replaced}),
    [](const auto &row) { return row.param.name; });

TEST_P(CancelledAtAStage, SeesItOnlyBeforeTheDestinationChanges)
{
    if (GetParam().before == Folder::none)
        std::filesystem::remove_all(destinationEFI());
    const auto before = treeOf(destinationEFI());
    cancelAfter(GetParam().status, GetParam().how);

    const auto error = copy(true);

    const auto cancelled = std::ranges::find(statuses, "Operation cancelled");
    ASSERT_NE(cancelled, statuses.end());
    EXPECT_EQ(*(cancelled - 1), GetParam().status);
    EXPECT_THAT(std::vector(cancelled, statuses.end()), ElementsAreArray(GetParam().later));
    EXPECT_EQ(treeOf(destinationEFI()), GetParam().after == Folder::replaced ? treeOf(sourceEFI()) : before);
    EXPECT_EQ(error.has_value(), GetParam().after != Folder::replaced);
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

TEST_F(EFICopyManagerCancelTest, LeavesACancelledCopyCancelledWhenAnotherOneBegins)
{
    const auto old = treeOf(destinationEFI());
    PhysicalDisk other = destination;
    other.identifier = "disk3";
    other.efiPartitions.front().identifier = "disk3s1";
    other.efiPartitions.front().mountPoint = (folder() / "other").string();
    std::filesystem::create_directories(folder() / "other");
    const auto copyTo = [this](const PhysicalDisk &disk) {
        return manager.copyEFI(source, source.efiPartitions.front(), disk, disk.efiPartitions.front(), true);
    };
    places.hold();
    auto first = copyTo(destination);
    waitUntil([this] { return places.isHolding(); });
    manager.cancelOperation();

    auto second = copyTo(other);
    places.release();

    EXPECT_THROW(blockOn(std::move(first), kPatience), EFICopyError);
    blockOn(std::move(second), kPatience);
    EXPECT_EQ(treeOf(destinationEFI()), old);
    EXPECT_EQ(treeOf(folder() / "other/EFI"), treeOf(sourceEFI()));
    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
}

} // namespace
} // namespace brindle
