#include "EFICopyManagerFixture.h"

#include "support/Patience.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using enum EFICopyError::Case;

using Confirmation = EFICopyManager::ConfirmationData;

const Error kDiskFull("POSIXError", 28, "No space left");

EFICopyError::Case caseOf(const std::optional<Error> &error)
{
    EXPECT_TRUE(error);
    EXPECT_EQ(error->domain(), "EFICopyError");
    return static_cast<EFICopyError::Case>(error->code());
}

class EFICopyManagerFailureTest : public EFICopyManagerTest {
protected:
    /// Raises the dialog for a destination with an old folder, and forgets what was published.
    void raiseDialog()
    {
        writeSampleEFI(sourceEFI());
        writeOldEFI();
        ASSERT_FALSE(copy());
        forget();
    }
};

TEST_F(EFICopyManagerFailureTest, ChangesNoFieldWhereAPartitionIsNotMounted)
{
    source.efiPartitions.front().mountPoint = std::nullopt;
    EXPECT_EQ(caseOf(copy()), efiNotMounted);
    EXPECT_EQ(caseOf(copyToLocation()), efiNotMounted);
    source.efiPartitions.front().mountPoint = "/somewhere";
    destination.efiPartitions.front().mountPoint = std::nullopt;

    EXPECT_EQ(caseOf(copy()), efiNotMounted);

    EXPECT_THAT(trace, IsEmpty());
    EXPECT_THAT(files.asked, IsEmpty());
}

TEST_F(EFICopyManagerFailureTest, RefusesOnePartitionAsSourceAndDestinationWithoutChangingAField)
{
    writeSampleEFI(sourceEFI());
    destination = source;

    EXPECT_EQ(caseOf(copy(true)), sameSourceAndDestination);

    EXPECT_THAT(trace, IsEmpty());
    EXPECT_FALSE(treeOf(sourceEFI()).empty());
}

TEST_F(EFICopyManagerFailureTest, EndsWhereTheSourceIsMissing)
{
    for (const bool toLocation : {false, true}) {
        forget();

        EXPECT_EQ(caseOf(toLocation ? copyToLocation() : copy()), sourceEFINotFound);

        EXPECT_FALSE(manager.isOperationInProgress());
        EXPECT_EQ(manager.operationStatus(), "Source EFI folder not found");
        EXPECT_EQ(trace[trace.size() - 2], "ended");
    }
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
}

TEST_F(EFICopyManagerFailureTest, CannotReadASourceThatIsAFile)
{
    writeFile(sourceEFI(), "a file");

    for (const bool toLocation : {false, true}) {
        EXPECT_EQ(caseOf(toLocation ? copyToLocation() : copy()), sourceEFINotFound);

        EXPECT_FALSE(manager.isOperationInProgress());
        EXPECT_EQ(manager.operationStatus(), "Cannot read source EFI folder");
    }
}

TEST_F(EFICopyManagerFailureTest, EndsWhereTheSourceIsEmpty)
{
    fs::create_directory(sourceEFI());

    for (const bool toLocation : {false, true}) {
        EXPECT_EQ(caseOf(toLocation ? copyToLocation() : copy()), sourceEFIEmpty);

        EXPECT_FALSE(manager.isOperationInProgress());
        EXPECT_EQ(manager.operationStatus(), "Source EFI folder is empty - nothing to copy");
    }
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST_F(EFICopyManagerFailureTest, StaysInProgressAfterAFailedCopyThatNobodyWasAskedAbout)
{
    writeSampleEFI(sourceEFI());
    files.failures["copy"] = {kDiskFull};

    const auto error = copy();

    EXPECT_EQ(caseOf(error), copyFailed);
    EXPECT_EQ(error->localizedDescription(), "Copy operation failed: No space left");
    EXPECT_TRUE(manager.isOperationInProgress());
    EXPECT_EQ(manager.operationStatus(), "Copy failed: No space left");
    EXPECT_EQ(manager.operationProgress(), 0.7);
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST_F(EFICopyManagerFailureTest, ThrowsAFailedRemovalOnAsItIs)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    const auto old = treeOf(destinationEFI());
    files.failures["remove"] = {kDiskFull};

    const auto error = copy(true);

    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "POSIXError");
    EXPECT_TRUE(manager.isOperationInProgress());
    EXPECT_EQ(manager.operationStatus(), "Removing existing EFI folder...");
    EXPECT_EQ(manager.operationProgress(), 0.5);
    EXPECT_EQ(treeOf(destinationEFI()), old);
}

TEST_F(EFICopyManagerFailureTest, StaysInProgressAfterAFailedVerification)
{
    writeSampleEFI(sourceEFI());
    files.failures["list"] = {std::nullopt, kDiskFull};

    EXPECT_EQ(caseOf(copy()), verificationFailed);

    EXPECT_TRUE(manager.isOperationInProgress());
    EXPECT_EQ(manager.operationStatus(), "Verification failed");
    EXPECT_EQ(manager.operationProgress(), 0.95);
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI())) << "the new folder stays";
}

TEST_F(EFICopyManagerFailureTest, FailsTheVerificationWhoseSecondListingFails)
{
    writeSampleEFI(sourceEFI());
    files.failures["list"] = {std::nullopt, std::nullopt, kDiskFull};

    EXPECT_EQ(caseOf(copy()), verificationFailed);

    EXPECT_EQ(manager.operationStatus(), "Verification failed");
}

TEST_F(EFICopyManagerFailureTest, ShowsAMismatchOfACopyToAFolder)
{
    writeSampleEFI(sourceEFI());
    dialogs.savePaths = {(folder() / "my copy").string()};
    QObject::connect(&manager, &EFICopyManager::operationProgressChanged, [this] {
        if (manager.operationProgress() == 0.9)
            writeFile(folder() / "my copy/extra", "x");
    });

    EXPECT_EQ(caseOf(copyToLocation()), verificationFailed);

    EXPECT_EQ(manager.operationStatus(), "Verification failed - file mismatch");
    EXPECT_TRUE(manager.isOperationInProgress());
}

struct Mismatch {
    const char *name;
    const char *removed;
    const char *added;
};

class MismatchTest : public EFICopyManagerTest, public testing::WithParamInterface<Mismatch> {};

INSTANTIATE_TEST_SUITE_P(Of, MismatchTest,
                         testing::Values(Mismatch{"AMissingName", "OC", nullptr},
                                         Mismatch{"AMissingHiddenName", ".hidden", nullptr},
                                         Mismatch{"AnotherNameInItsPlace", "OC", "oc"},
                                         Mismatch{"OneMore", nullptr, "zzz"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(MismatchTest, FailsTheVerification)
{
    writeSampleEFI(sourceEFI());
    ASSERT_FALSE(copy());
    if (GetParam().removed)
        fs::remove_all(destinationEFI() / GetParam().removed);
    if (GetParam().added)
        writeFile(destinationEFI() / GetParam().added, "x");

    EXPECT_THROW(blockOn(manager.verifyEFICopy(sourceEFI(), destinationEFI()), kPatience), Error);

    EXPECT_EQ(manager.operationStatus(), "Verification failed - file mismatch");
}

TEST_F(EFICopyManagerFailureTest, RefusesATargetThatExists)
{
    writeSampleEFI(sourceEFI());
    writeFile(folder() / "my copy", "a file of the user");
    dialogs.savePaths = {(folder() / "my copy").string()};

    const auto error = copyToLocation();

    EXPECT_EQ(caseOf(error), copyFailed);
    EXPECT_EQ(manager.operationStatus(), "Copy failed: " + (folder() / "my copy").string() + ": File exists");
    EXPECT_TRUE(manager.isOperationInProgress());
}

TEST_F(EFICopyManagerFailureTest, LeavesTheDestinationAloneWhereTheBackupsPlaceIsTaken)
{
    raiseDialog();
    const auto old = treeOf(destinationEFI());
    writeFile(backup(), "a file of the user");
    dialogs.savePaths = {backup().string()};

    choose(&Confirmation::onBackup);

    EXPECT_EQ(manager.operationStatus(),
              "Operation failed: Copy operation failed: " + backup().string() + ": File exists");
    EXPECT_EQ(treeOf(destinationEFI()), old);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EFICopyManagerFailureTest, EndsAFailedCopyAfterAChoiceAndKeepsTheBackup)
{
    raiseDialog();
    const auto old = treeOf(destinationEFI());
    dialogs.savePaths = {backup().string()};
    files.failures["copy"] = {std::nullopt, kDiskFull};

    choose(&Confirmation::onBackup);

    EXPECT_EQ(manager.operationStatus(), "Operation failed: Copy operation failed: No space left");
    EXPECT_THAT(std::vector(statuses.end() - 2, statuses.end()),
                ElementsAre("Copy failed: No space left", "Operation failed: Copy operation failed: No space left"));
    EXPECT_EQ(treeOf(backup()), old);
    EXPECT_FALSE(fs::exists(destinationEFI())) << "nothing is rolled back";
}

TEST_F(EFICopyManagerFailureTest, LeavesAloneWhatIsMountedThereInsteadByTheTimeOfTheChoice)
{
    for (const auto choice : {&Confirmation::onBackup, &Confirmation::onOverwrite}) {
        raiseDialog();
        const fs::path mountPoint = destinationEFI().parent_path();
        fs::remove_all(folder() / "unplugged");
        fs::rename(mountPoint, folder() / "unplugged");
        writeFile(destinationEFI() / "OTHER/other.efi", "of another stick");
        const auto other = treeOf(destinationEFI());
        dialogs.savePaths = {backup().string()};

        choose(choice);

        EXPECT_EQ(manager.operationStatus(), "Operation failed: Copy operation failed: What is mounted at " +
                                                 mountPoint.string() + " is not what it was when it was asked about");
        EXPECT_EQ(treeOf(destinationEFI()), other);
    }
}

TEST_F(EFICopyManagerFailureTest, RefusesAPartitionInWhosePlaceAnotherOneIsMountedByNow)
{
    const std::vector<std::pair<PhysicalDisk, std::string>> cases{{source, "disk1s1 (OPENCORE)"},
                                                                  {destination, "disk2s1"}};
    for (const auto &[disk, name] : cases) {
        for (const bool overwriteWithoutBackup : {false, true}) {
            writeSampleEFI(sourceEFI());
            writeOldEFI();
            const auto old = treeOf(destinationEFI());
            places.gone = {disk.efiPartitions.front().identifier};

            const auto error = copy(overwriteWithoutBackup);

            const std::string words = fmt::format("Copy operation failed: {} is not mounted at {} any more", name,
                                                  *disk.efiPartitions.front().mountPoint);
            EXPECT_EQ(error.value().localizedDescription(), words);
            EXPECT_EQ(manager.operationStatus(), "Operation failed: " + words);
            EXPECT_FALSE(manager.isOperationInProgress());
            EXPECT_FALSE(manager.showConfirmationDialog());
            EXPECT_EQ(treeOf(destinationEFI()), old);
            clock.advance(5s);
            EXPECT_EQ(manager.operationStatus(), "");
        }
    }
}

TEST_F(EFICopyManagerFailureTest, AsksForNoPlaceForThePartitionInWhosePlaceAnotherOneIsMounted)
{
    writeSampleEFI(sourceEFI());
    places.gone = {"disk1s1"};

    EXPECT_TRUE(copyToLocation());

    EXPECT_THAT(manager.operationStatus(), StartsWith("Operation failed: Copy operation failed: disk1s1 (OPENCORE)"));
    EXPECT_FALSE(manager.isOperationInProgress());
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
}

TEST_F(EFICopyManagerFailureTest, TouchesNothingWhereAPartitionWasReplacedWhileItAsked)
{
    for (const auto choice : {&Confirmation::onBackup, &Confirmation::onOverwrite}) {
        for (const char *partition : {"disk1s1", "disk2s1"}) {
            places.gone.clear();
            raiseDialog();
            const auto old = treeOf(destinationEFI());
            fs::remove_all(backup());
            dialogs.savePaths = {backup().string()};
            places.gone = {partition};

            choose(choice);

            EXPECT_THAT(manager.operationStatus(), EndsWith(" any more"));
            EXPECT_EQ(treeOf(destinationEFI()), old);
        }
    }
}

TEST_F(EFICopyManagerFailureTest, GoesOnOnceWhicheverOptionsAreChosenAtOnce)
{
    raiseDialog();
    dialogs.savePaths = {backup().string()};
    const EFICopyManager::ConfirmationData data = *manager.confirmationData();

    data.onBackup();
    data.onBackup();
    data.onOverwrite();
    data.onCancel();
    waitUntil([this] { return !manager.showConfirmationDialog() && !manager.isOperationInProgress(); });

    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    EXPECT_THAT(dialogs.savePanels, SizeIs(1));
    EXPECT_FALSE(manager.isCancelled());
}

TEST_F(EFICopyManagerFailureTest, EndsAFailedRemovalAfterAChoice)
{
    raiseDialog();
    files.failures["remove"] = {kDiskFull};

    choose(&Confirmation::onOverwrite);

    EXPECT_EQ(manager.operationStatus(), "Operation failed: No space left");
    EXPECT_EQ(trace[trace.size() - 2], "ended");
}

TEST_F(EFICopyManagerFailureTest, EndsAFailedVerificationAfterAChoice)
{
    raiseDialog();
    files.failures["list"] = {kDiskFull};

    choose(&Confirmation::onOverwrite);

    EXPECT_EQ(manager.operationStatus(), "Operation failed: Failed to verify copied files");
}

TEST_F(EFICopyManagerFailureTest, ClearsTheStatusFiveSecondsAfterAFailure)
{
    raiseDialog();
    files.failures["remove"] = {kDiskFull};
    choose(&Confirmation::onOverwrite);

    clock.advance(4999ms);
    EXPECT_EQ(manager.operationStatus(), "Operation failed: No space left");
    clock.advance(1ms);

    EXPECT_EQ(manager.operationStatus(), "");
}

TEST_F(EFICopyManagerFailureTest, LeavesAFailedOperationByCancelling)
{
    writeSampleEFI(sourceEFI());
    files.failures["copy"] = {kDiskFull};
    copy();
    ASSERT_TRUE(manager.isOperationInProgress());

    manager.cancelOperation();

    EXPECT_FALSE(manager.isOperationInProgress());
    EXPECT_EQ(manager.operationStatus(), "Operation cancelled");
    EXPECT_EQ(manager.operationProgress(), 0.0);
}

TEST_F(EFICopyManagerFailureTest, SavesNothingOfAnotherPartitionThatCameWhileItAskedForAPlace)
{
    writeSampleEFI(sourceEFI());
    dialogs.savePaths = {backup().string()};
    places.hold();
    auto copy = manager.copyEFIToLocation(source, source.efiPartitions.front());
    waitUntil([this] { return places.isHolding(); });
    places.release();
    places.gone = {"disk1s1"}; // by the next look

    EXPECT_THROW(blockOn(std::move(copy), kPatience), EFICopyError);

    EXPECT_THAT(dialogs.savePanels, SizeIs(1));
    EXPECT_FALSE(fs::exists(backup()));
    EXPECT_THAT(manager.operationStatus(), EndsWith(" any more"));
    EXPECT_FALSE(manager.isOperationInProgress());
}

} // namespace
} // namespace brindle
