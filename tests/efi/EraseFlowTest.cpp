#include "efi/EraseFlow.h"

#include "support/FakeEraseOperations.h"
#include "support/LogCapture.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Stage = EraseOperationManager::Stage;

class EraseFlowTest : public testing::Test {
protected:
    EraseFlow::RowCallbacks row()
    {
        return {.onOperationStart = [this](const std::string &status) { rowCalls.push_back("start " + status); },
                .onOperationEnd =
                    [this] { rowCalls.emplace_back(manager.stage() == Stage::inProgress ? "end" : "end too late"); }};
    }

    void type(const std::string &input)
    {
        manager.setConfirmInput(input);
        manager.confirm();
        waitUntil([this] { return manager.stage() != Stage::inProgress; });
    }

    EraseOperationManager manager;
    FakeEraseOperations operations;
    EraseFlow flow{manager, operations};
    std::vector<std::string> rowCalls;
    LogCapture log;

    PhysicalDisk stick{
        .identifier = "disk2", .name = "Stick", .size = "16 GB", .mountPoint = "/Volumes/WORK", .volumeName = "Work"};
    EFIPartition efi{.identifier = "disk2s1", .volumeName = "BOOT"};
};

TEST_F(EraseFlowTest, AsksForTheNameOfADisksVolume)
{
    flow.openForDisk(stick, row());

    EXPECT_TRUE(manager.isActive());
    EXPECT_EQ(manager.dialogTitle(), "Erase Disk?");
    EXPECT_EQ(manager.diskName(), "Stick");
    EXPECT_EQ(manager.volumeName(), "Work");
    EXPECT_EQ(manager.confirmName(), "Work");
    EXPECT_EQ(manager.warningText(), "This will permanently erase data on Stick (16 GB) and cannot be undone. The disk "
                                     "will be reformatted and relabeled \"Work\".");
    EXPECT_EQ(manager.formatOptions().size(), 4U);
    EXPECT_TRUE(manager.allowPartitionScope());
    EXPECT_EQ(manager.eraseScope(), EraseScope::partition);
}

TEST_F(EraseFlowTest, AsksForTheNameOfADiskWithoutLabel)
{
    stick.volumeName = std::nullopt;

    flow.openForDisk(stick, row());

    EXPECT_EQ(manager.volumeName(), "No Volume Label");
    EXPECT_EQ(manager.confirmName(), "Stick");
}

TEST_F(EraseFlowTest, GoesThroughWithNothingTypedForADiskWhoseLabelIsEmpty)
{
    stick.volumeName = "";
    flow.openForDisk(stick, row());
    EXPECT_EQ(manager.volumeName(), "");
    EXPECT_EQ(manager.confirmName(), "");

    type("");

    EXPECT_THAT(operations.asked, ElementsAre("eraseVolume|/Volumes/WORK||ExFAT"));
}

TEST_F(EraseFlowTest, AsksForTheNameOfAnEFIPartition)
{
    flow.openForEFIPartition(stick, efi, row());

    EXPECT_TRUE(manager.isActive());
    EXPECT_EQ(manager.dialogTitle(), "Erase EFI Partition?");
    EXPECT_EQ(manager.diskName(), "Stick");
    EXPECT_EQ(manager.volumeName(), "BOOT");
    EXPECT_EQ(manager.confirmName(), "BOOT");
    EXPECT_EQ(manager.warningText(),
              "This will permanently erase the EFI partition (disk2s1) on Stick, including any bootloader "
              "(OpenCore/Clover) it contains. This cannot be undone.");
    EXPECT_THAT(manager.formatOptions(), IsEmpty());
    EXPECT_FALSE(manager.allowPartitionScope());
    EXPECT_EQ(manager.eraseScope(), EraseScope::partition);
}

TEST_F(EraseFlowTest, CallsAnEFIPartitionWithoutNameEFI)
{
    for (const auto &name : {std::optional<std::string>(), std::optional<std::string>("")}) {
        efi.volumeName = name;
        flow.openForEFIPartition(stick, efi, row());

        EXPECT_EQ(manager.volumeName(), "EFI");
        EXPECT_EQ(manager.confirmName(), "EFI");
    }
}

struct TargetCase {
    const char *name;
    std::optional<std::string> mountPoint;
    std::optional<std::string> volumeName;
    std::optional<std::string> target;
};

class PartitionTarget : public testing::TestWithParam<TargetCase> {};

INSTANTIATE_TEST_SUITE_P(Of, PartitionTarget,
                         testing::Values(TargetCase{"MountPoint", "/Volumes/A", "A", "/Volumes/A"},
                                         TargetCase{"MountPointOfSeveralVolumes", "/Volumes/A", "A • B", "/Volumes/A"},
                                         TargetCase{"EmptyMountPoint", "", "A", "A"},
                                         TargetCase{"LabelAlone", std::nullopt, "A", "A"},
                                         TargetCase{"SeveralVolumes", std::nullopt, "A • B", std::nullopt},
                                         TargetCase{"BulletWithoutBlanks", std::nullopt, "A•B", "A•B"},
                                         TargetCase{"EmptyLabel", std::nullopt, "", std::nullopt},
                                         TargetCase{"Nothing", std::nullopt, std::nullopt, std::nullopt}),
                         [](const auto &row) { return row.param.name; });

TEST_P(PartitionTarget, IsTheMountPointOrElseTheOnlyLabel)
{
    EXPECT_EQ(EraseFlow::partitionTarget({.mountPoint = GetParam().mountPoint, .volumeName = GetParam().volumeName}),
              GetParam().target);
}

TEST_F(EraseFlowTest, ErasesNothingWhereTheVolumeIsAnotherDisksByNow)
{
    operations.otherDisk = "disk9";
    flow.openForDisk(stick, row());

    type("Work");

    EXPECT_THAT(operations.asked, IsEmpty());
    EXPECT_EQ(manager.stage(), Stage::failed);
    EXPECT_EQ(manager.resultMessage(), "Stick could not be erased: \"/Volumes/WORK\" is on disk9, not on disk2");
    EXPECT_THAT(rowCalls, ElementsAre("start Erasing Stick...", "end"));
}

TEST_F(EraseFlowTest, PassesTheMountPointAsTheVolumesIdentifier)
{
    flow.openForDisk(stick, row());
    manager.setSelectedFormatIndex(1);

    type("Work");

    EXPECT_THAT(operations.asked, ElementsAre("eraseVolume|/Volumes/WORK|Work|FAT32"));
    EXPECT_THAT(rowCalls, ElementsAre("start Erasing Stick...", "end"));
    EXPECT_EQ(manager.stage(), Stage::completed);
    EXPECT_EQ(
        manager.resultMessage(),
        "The volume on Stick has been erased and reformatted as FAT32 (MS-DOS), relabeled \"Work\". The partition "
        "map and EFI partition were left untouched.");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(EraseFlowTest, ErasesTheWholeDiskByChoice)
{
    flow.openForDisk(stick, row());
    manager.setEraseScope(EraseScope::wholeDisk);
    manager.setSelectedFormatIndex(3);

    type("Work");

    EXPECT_THAT(operations.asked, ElementsAre("eraseDisk|disk2|Work|APFS"));
    EXPECT_EQ(manager.resultMessage(),
              "Stick has been erased and repartitioned as APFS, relabeled \"Work\". A fresh EFI system partition was "
              "also created — that's expected as part of the disk's GUID partition scheme, not leftover data.");
}

TEST_F(EraseFlowTest, ErasesTheDiskWithoutLabelAndMountPointAsAWhole)
{
    stick.mountPoint = std::nullopt;
    stick.volumeName = std::nullopt;
    flow.openForDisk(stick, row());
    EXPECT_FALSE(manager.allowPartitionScope());
    EXPECT_EQ(manager.eraseScope(), EraseScope::wholeDisk);

    type("Stick");

    EXPECT_THAT(operations.asked, ElementsAre("eraseDisk|disk2|Stick|ExFAT"));
}

TEST_F(EraseFlowTest, SaysThatADiskCouldNotBeErased)
{
    operations.failure = Error("SudoError", 1, "Resource busy");
    flow.openForDisk(stick, row());

    type("Work");

    EXPECT_EQ(manager.stage(), Stage::failed);
    EXPECT_EQ(manager.resultMessage(), "Stick could not be erased: Resource busy");
    EXPECT_THAT(log.lines(), ElementsAre("Erase failed: Resource busy"));
    EXPECT_THAT(rowCalls, ElementsAre("start Erasing Stick...", "end"));
}

TEST_F(EraseFlowTest, FormatsAnEFIPartition)
{
    flow.openForEFIPartition(stick, efi, row());

    type("BOOT");

    EXPECT_EQ(manager.statusMessage(), "Erasing and reformatting...");
    EXPECT_THAT(operations.asked, ElementsAre("formatEFIPartition|disk2s1|BOOT"));
    EXPECT_THAT(rowCalls, ElementsAre("start Erasing EFI partition of Stick...", "end"));
    EXPECT_EQ(manager.stage(), Stage::completed);
    EXPECT_EQ(manager.resultMessage(),
              "The EFI partition (disk2s1) on Stick has been erased and reformatted as FAT32.");
}

TEST_F(EraseFlowTest, SaysThatAnEFIPartitionCouldNotBeErased)
{
    operations.failure = Error("SudoError", 1, "Resource busy");
    flow.openForEFIPartition(stick, efi, row());

    type("BOOT");

    EXPECT_EQ(manager.stage(), Stage::failed);
    EXPECT_EQ(manager.resultMessage(), "The EFI partition on Stick could not be erased: Resource busy");
    EXPECT_THAT(log.lines(), ElementsAre("EFI erase failed: Resource busy"));
    EXPECT_THAT(rowCalls, ElementsAre("start Erasing EFI partition of Stick...", "end"));
}

} // namespace
} // namespace brindle
