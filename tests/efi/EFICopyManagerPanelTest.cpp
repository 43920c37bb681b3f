#include "EFICopyManagerFixture.h"

#include <QStandardPaths>

#include <cstdlib>
#include <ctime>

namespace brindle {
namespace {

using testing::ElementsAre;

using Confirmation = EFICopyManager::ConfirmationData;

std::string desktop()
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation).toStdString();
}

class EFICopyManagerPanelTest : public EFICopyManagerTest {
protected:
    EFICopyManagerPanelTest()
    {
        writeSampleEFI(sourceEFI());
        ::setenv("TZ", "XYZ-05:30", 1); // east of Greenwich: the local time is ahead
        ::tzset();
    }
    ~EFICopyManagerPanelTest() override
    {
        ::unsetenv("TZ");
        ::tzset();
    }
};

TEST_F(EFICopyManagerPanelTest, ProposesABackupByDiskPartitionAndLocalTime)
{
    writeOldEFI();
    ASSERT_FALSE(copy());

    choose(&Confirmation::onBackup);

    ASSERT_EQ(dialogs.savePanels.size(), 1U);
    const SavePanel &panel = dialogs.savePanels.front();
    EXPECT_EQ(panel.title, "Save EFI Backup");
    EXPECT_EQ(panel.message, "Choose where to save the backup of the existing EFI folder");
    EXPECT_EQ(panel.proposedName, "EFI_Stick_ A_B_disk2s1_2024-01-01_05-30-00");
    EXPECT_EQ(panel.startFolder, desktop());
}

TEST_F(EFICopyManagerPanelTest, ProposesACopyByDiskAndPartition)
{
    copyToLocation();

    ASSERT_EQ(dialogs.savePanels.size(), 1U);
    const SavePanel &panel = dialogs.savePanels.front();
    EXPECT_EQ(panel.title, "Save EFI Folder");
    EXPECT_EQ(panel.message, "Choose where to save the EFI folder from Source Disk (disk1s1)");
    EXPECT_EQ(panel.proposedName, "EFI_Source Disk_disk1s1");
    EXPECT_EQ(panel.startFolder, desktop());
}

struct ProposedName {
    const char *name;
    const char *diskName;
    const char *proposed;
};

class ProposesAName : public EFICopyManagerPanelTest, public testing::WithParamInterface<ProposedName> {};

INSTANTIATE_TEST_SUITE_P(For, ProposesAName,
                         testing::Values(ProposedName{"ColonAndBlank", "A: B", "EFI_A_ B_disk1s1"},
                                         ProposedName{"Slash", "A/B", "EFI_A_B_disk1s1"},
                                         ProposedName{"EachForbidden", ":/\\?%*|\"<>", "EFI____________disk1s1"},
                                         ProposedName{"Others", "Ünï .,#'&", "EFI_Ünï .,#'&_disk1s1"},
                                         ProposedName{"Nothing", "", "EFI__disk1s1"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(ProposesAName, WithAnUnderscoreForEachForbiddenCharacter)
{
    source.name = GetParam().diskName;

    copyToLocation();

    ASSERT_EQ(dialogs.savePanels.size(), 1U);
    EXPECT_EQ(dialogs.savePanels.front().proposedName, GetParam().proposed);
}

TEST_F(EFICopyManagerPanelTest, LeavesThePartitionsIdentifierAsItIs)
{
    source.efiPartitions.front().identifier = "disk1:s/1";

    copyToLocation();

    EXPECT_EQ(dialogs.savePanels.front().proposedName, "EFI_Source Disk_disk1:s/1");
}

TEST_F(EFICopyManagerPanelTest, EndsACopyToAFolderWhosePanelIsClosed)
{
    const auto error = copyToLocation();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->localizedDescription(), "Operation cancelled by user");
    EXPECT_THAT(trace, ElementsAre("in progress", "status Preparing to copy EFI folder...", "ended",
                                   "status Operation cancelled"));
    EXPECT_EQ(clock.pendingTimers(), 0U) << "this status is not cleared by itself";
}

TEST_F(EFICopyManagerPanelTest, CallsTheClosedPanelOfABackupAFailure)
{
    writeOldEFI();
    const auto before = treeOf(destinationEFI());
    ASSERT_FALSE(copy());
    forget();

    choose(&Confirmation::onBackup);

    EXPECT_THAT(trace,
                ElementsAre("no dialog", "no data", "progress 0", "status Creating backup of existing EFI folder...",
                            "progress 0.1", "ended", "status Operation failed: Operation cancelled by user"));
    EXPECT_EQ(treeOf(destinationEFI()), before);
}

} // namespace
} // namespace brindle
