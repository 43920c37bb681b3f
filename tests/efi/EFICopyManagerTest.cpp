#include "EFICopyManagerFixture.h"

#include "support/Patience.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using enum EFICopyError::Case;

using Confirmation = EFICopyManager::ConfirmationData;

TEST_F(EFICopyManagerTest, PublishesACopyToAFreeDestinationStepByStep)
{
    writeSampleEFI(sourceEFI());

    EXPECT_FALSE(copy());

    EXPECT_THAT(trace,
                ElementsAre("in progress", "status Preparing EFI copy operation...", "status Checking destination...",
                            "progress 0.1", "status Destination is ready...", "progress 0.2",
                            "status Copying EFI from disk1s1 (OPENCORE) to disk2s1...", "progress 0.4",
                            "status Copying files...", "progress 0.6", "progress 0.7",
                            "status Copy completed, verifying...", "progress 0.85", "status Verifying copied files...",
                            "progress 0.9", "progress 0.95", "status Verification completed successfully", "progress 1",
                            "status EFI copy completed successfully", "ended"));
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, NeverRaisesTheConfirmationForAFreeDestination)
{
    writeSampleEFI(sourceEFI());

    for (const bool overwriteWithoutBackup : {false, true}) {
        forget();
        fs::remove_all(destinationEFI());

        EXPECT_FALSE(copy(overwriteWithoutBackup));

        EXPECT_THAT(trace, Not(Contains("dialog")));
        EXPECT_THAT(progresses, Contains(0.2));
        EXPECT_TRUE(dialogs.savePanels.empty());
    }
}

TEST_F(EFICopyManagerTest, OverwritesWithoutAskingWhereItIsToldTo)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();

    EXPECT_FALSE(copy(true));

    EXPECT_THAT(progresses, ElementsAre(0.1, 0.3, 0.4, 0.5, 0.6, 0.7, 0.85, 0.9, 0.95, 1.0));
    EXPECT_THAT(statuses,
                ElementsAre("Preparing EFI copy operation...", "Checking destination...",
                            "Preparing to overwrite existing EFI folder...",
                            "Copying EFI from disk1s1 (OPENCORE) to disk2s1...", "Removing existing EFI folder...",
                            "Copying files...", "Copy completed, verifying...", "Verifying copied files...",
                            "Verification completed successfully", "EFI copy completed successfully"));
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, WaitsForAChoiceWhereTheDestinationHoldsAFolder)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    const auto before = treeOf(destinationEFI());

    EXPECT_FALSE(copy());

    EXPECT_THAT(trace, ElementsAre("in progress", "status Preparing EFI copy operation...",
                                   "status Checking destination...", "progress 0.1", "data", "dialog"));
    EXPECT_TRUE(manager.isOperationInProgress());
    ASSERT_TRUE(manager.confirmationData());
    EXPECT_EQ(manager.confirmationData()->sourceDisk.name, "Source Disk");
    EXPECT_EQ(manager.confirmationData()->sourceEFI.identifier, "disk1s1");
    EXPECT_EQ(manager.confirmationData()->destinationDisk.name, "Stick: A/B");
    EXPECT_EQ(manager.confirmationData()->destinationEFI.identifier, "disk2s1");
    clock.advance(1h);
    EXPECT_EQ(manager.operationStatus(), "Checking destination...");
    EXPECT_EQ(treeOf(destinationEFI()), before);
}

TEST_F(EFICopyManagerTest, GoesBackwardsOnceAfterABackup)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    const auto old = treeOf(destinationEFI());
    dialogs.savePaths = {backup().string()};
    ASSERT_FALSE(copy());
    forget();

    choose(&Confirmation::onBackup);

    EXPECT_THAT(progresses, ElementsAre(0.0, 0.1, 0.7, 0.85, 0.3, 0.4, 0.5, 0.6, 0.7, 0.85, 0.9, 0.95, 1.0));
    EXPECT_THAT(trace,
                ElementsAre("no dialog", "no data", "progress 0", "status Creating backup of existing EFI folder...",
                            "progress 0.1", "status Copying files...", "progress 0.7",
                            "status Copy completed, verifying...", "progress 0.85", "progress 0.3",
                            "status Copying EFI from disk1s1 (OPENCORE) to disk2s1...", "progress 0.4",
                            "status Removing existing EFI folder...", "progress 0.5", "status Copying files...",
                            "progress 0.6", "progress 0.7", "status Copy completed, verifying...", "progress 0.85",
                            "status Verifying copied files...", "progress 0.9", "progress 0.95",
                            "status Verification completed successfully", "progress 1",
                            "status EFI copy completed successfully", "ended"));
    EXPECT_THAT(log.lines(), ElementsAre("EFI backup created at: " + backup().string()));
    EXPECT_EQ(treeOf(backup()), old);
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, SavesTheOldFolderBeforeItRemovesIt)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    dialogs.savePaths = {backup().string()};
    ASSERT_FALSE(copy());

    choose(&Confirmation::onBackup);

    EXPECT_THAT(files.asked, ElementsAre("list " + sourceEFI().string(),
                                         "copy " + destinationEFI().string() + " " + backup().string(),
                                         "remove " + destinationEFI().string(),
                                         "copy " + sourceEFI().string() + " " + destinationEFI().string(),
                                         "list " + sourceEFI().string(), "list " + destinationEFI().string()));
}

TEST_F(EFICopyManagerTest, OverwritesByChoice)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    ASSERT_FALSE(copy());
    forget();

    choose(&Confirmation::onOverwrite);

    EXPECT_THAT(trace, ElementsAre("no dialog", "no data", "progress 0.3", "status Preparing to copy EFI folder...",
                                   "status Copying EFI from disk1s1 (OPENCORE) to disk2s1...", "progress 0.4",
                                   "status Removing existing EFI folder...", "progress 0.5", "status Copying files...",
                                   "progress 0.6", "progress 0.7", "status Copy completed, verifying...",
                                   "progress 0.85", "status Verifying copied files...", "progress 0.9", "progress 0.95",
                                   "status Verification completed successfully", "progress 1",
                                   "status EFI copy completed successfully", "ended"));
    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EFICopyManagerTest, CopiesToAFolderUnderTheNameThatTheUserGave)
{
    writeSampleEFI(sourceEFI());
    dialogs.savePaths = {(folder() / "my copy").string()};

    EXPECT_FALSE(copyToLocation());

    EXPECT_THAT(trace, ElementsAre("in progress", "status Preparing to copy EFI folder...",
                                   "status Copying EFI folder from disk1s1 (OPENCORE)...", "progress 0.3",
                                   "status Copying files...", "progress 0.7", "status Copy completed, verifying...",
                                   "progress 0.85", "progress 0.9", "status Verifying copied files...", "progress 0.95",
                                   "status Verification completed successfully", "progress 1", "ended",
                                   "status EFI folder copied successfully"));
    EXPECT_EQ(treeOf(folder() / "my copy"), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, TakesASourceWithOneHiddenFileForNotEmpty)
{
    writeFile(sourceEFI() / ".hidden", "x");

    EXPECT_FALSE(copy());

    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, CopiesBetweenTwoPartitionsOfOneDisk)
{
    writeSampleEFI(sourceEFI());
    destination.identifier = source.identifier;

    EXPECT_FALSE(copy());

    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, CopiesBetweenPartitionsOfEqualIdentifierOnTwoDisks)
{
    writeSampleEFI(sourceEFI());
    destination.efiPartitions.front().identifier = source.efiPartitions.front().identifier;

    EXPECT_FALSE(copy());

    EXPECT_EQ(treeOf(destinationEFI()), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, ShowsTheIdentifierAloneWhereTheVolumeNameIsEmpty)
{
    writeSampleEFI(sourceEFI());
    source.efiPartitions.front().volumeName = "";
    destination.efiPartitions.front().volumeName = std::nullopt;

    EXPECT_FALSE(copy());

    EXPECT_THAT(statuses, Contains("Copying EFI from disk1s1 to disk2s1..."));
}

TEST_F(EFICopyManagerTest, ClearsTheStatusThreeSecondsAfterASuccess)
{
    writeSampleEFI(sourceEFI());
    ASSERT_FALSE(copy());

    clock.advance(2999ms);
    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    clock.advance(1ms);

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_EQ(manager.operationProgress(), 1.0);
}

TEST_F(EFICopyManagerTest, ClearsTheStatusThreeSecondsAfterACopyToAFolder)
{
    writeSampleEFI(sourceEFI());
    dialogs.savePaths = {(folder() / "my copy").string()};
    ASSERT_FALSE(copyToLocation());

    clock.advance(2999ms);
    EXPECT_EQ(manager.operationStatus(), "EFI folder copied successfully");
    clock.advance(1ms);

    EXPECT_EQ(manager.operationStatus(), "");
}

TEST_F(EFICopyManagerTest, BlanksALaterStatusByTheDelayOfAnEarlierOperation)
{
    writeSampleEFI(sourceEFI());
    ASSERT_FALSE(copy(true));
    clock.advance(2s);
    ASSERT_FALSE(copy());
    ASSERT_EQ(manager.operationStatus(), "Checking destination...");

    clock.advance(1s);

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_TRUE(manager.showConfirmationDialog());
}

TEST_F(EFICopyManagerTest, StartsASecondOperationWhileOneRuns)
{
    writeSampleEFI(sourceEFI());
    writeOldEFI();
    ASSERT_FALSE(copy());
    dialogs.savePaths = {(folder() / "my copy").string()};

    EXPECT_FALSE(copyToLocation());

    EXPECT_FALSE(manager.showConfirmationDialog());
    EXPECT_EQ(treeOf(folder() / "my copy"), treeOf(sourceEFI()));
}

TEST_F(EFICopyManagerTest, VerifiesADestinationThatDiffersOnlyDeepInside)
{
    writeSampleEFI(sourceEFI());
    ASSERT_FALSE(copy());
    fs::remove(destinationEFI() / "OC/Drivers/OpenRuntime.efi");
    writeFile(destinationEFI() / ".hidden", "other bytes");
    forget();

    EXPECT_NO_THROW(blockOn(manager.verifyEFICopy(sourceEFI(), destinationEFI()), kPatience));

    EXPECT_THAT(statuses, ElementsAre("Verifying copied files...", "Verification completed successfully"));
}

TEST_F(EFICopyManagerTest, VerifiesNamesThatTheFileSystemsListInAnotherOrder)
{
    for (const char *name : {"a", "b", "c"})
        writeFile(sourceEFI() / name, "");
    for (const char *name : {"c", "a", "b"})
        writeFile(destinationEFI() / name, "");
    ASSERT_NE(blockOn(files.contentsOfDirectory(sourceEFI()), kPatience),
              blockOn(files.contentsOfDirectory(destinationEFI()), kPatience));

    EXPECT_NO_THROW(blockOn(manager.verifyEFICopy(sourceEFI(), destinationEFI()), kPatience));
}

TEST(EFICopyManager, OffersEveryOtherMountedPartitionInTheOrderOfTheList)
{
    const auto mounted = [](std::string identifier) {
        return EFIPartition{.identifier = std::move(identifier), .isMounted = true, .mountPoint = "/EFI"};
    };
    const PhysicalDisk first{.identifier = "disk9",
                             .name = "First",
                             .efiPartitions = {mounted("disk9s1"), {.identifier = "disk9s2"}, mounted("disk9s3")},
                             .hasClover = true};
    const PhysicalDisk boot{.identifier = "disk0",
                            .name = "Boot",
                            .efiPartitions = {mounted("disk0s1")},
                            .diskType = PhysicalDisk::DiskType::diskImage,
                            .isBootDisk = true,
                            .hasOpenCore = true};
    const PhysicalDisk unmounted{.identifier = "disk3", .name = "None", .efiPartitions = {{.identifier = "disk3s1"}}};

    const auto destinations =
        EFICopyManager::availableDestinations({first, unmounted, boot}, first, first.efiPartitions.front());

    ASSERT_EQ(destinations.size(), 2U);
    EXPECT_EQ(destinations[0].diskIdentifier, "disk9");
    EXPECT_EQ(destinations[0].diskName, "First");
    EXPECT_EQ(destinations[0].efiPartition.identifier, "disk9s3");
    EXPECT_TRUE(destinations[0].hasClover);
    EXPECT_FALSE(destinations[0].isBootDisk);
    EXPECT_EQ(destinations[1].efiPartition.identifier, "disk0s1");
    EXPECT_TRUE(destinations[1].isBootDisk);
    EXPECT_TRUE(destinations[1].hasOpenCore);
    EXPECT_FALSE(destinations[1].hasClover);
}

} // namespace
} // namespace brindle
