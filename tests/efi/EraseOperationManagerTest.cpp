#include "efi/EraseOperationManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Stage = EraseOperationManager::Stage;

class EraseOperationManagerTest : public testing::Test {
protected:
    EraseOperationManager::Request request()
    {
        return {.dialogTitle = "Title",
                .diskName = "Disk",
                .volumeName = "Volume",
                .warningText = "Warning",
                .confirmName = "Work",
                .formatOptions = eraseFormatOptions(),
                .allowPartitionScope = true,
                .eraseScope = EraseScope::partition,
                .onErase = [this](const std::string &format, EraseScope scope) {
                    erased.push_back(format + (scope == EraseScope::partition ? " partition" : " disk"));
                }};
    }

    void note(void (EraseOperationManager::*signal)(), const char *name)
    {
        QObject::connect(&manager, signal, [this, name] { signalled.emplace_back(name); });
    }

    void noteAll()
    {
        note(&EraseOperationManager::isActiveChanged, "isActive");
        note(&EraseOperationManager::stageChanged, "stage");
        note(&EraseOperationManager::dialogTitleChanged, "dialogTitle");
        note(&EraseOperationManager::diskNameChanged, "diskName");
        note(&EraseOperationManager::volumeNameChanged, "volumeName");
        note(&EraseOperationManager::warningTextChanged, "warningText");
        note(&EraseOperationManager::confirmNameChanged, "confirmName");
        note(&EraseOperationManager::confirmInputChanged, "confirmInput");
        note(&EraseOperationManager::confirmMismatchChanged, "confirmMismatch");
        note(&EraseOperationManager::formatOptionsChanged, "formatOptions");
        note(&EraseOperationManager::selectedFormatIndexChanged, "selectedFormatIndex");
        note(&EraseOperationManager::allowPartitionScopeChanged, "allowPartitionScope");
        note(&EraseOperationManager::eraseScopeChanged, "eraseScope");
        note(&EraseOperationManager::statusMessageChanged, "statusMessage");
        note(&EraseOperationManager::resultMessageChanged, "resultMessage");
    }

    EraseOperationManager manager;
    std::vector<std::string> erased;
    std::vector<std::string> signalled;
};

TEST_F(EraseOperationManagerTest, StartsClosedAndEmpty)
{
    EXPECT_FALSE(manager.isActive());
    EXPECT_EQ(manager.stage(), Stage::confirming);
    EXPECT_EQ(manager.eraseScope(), EraseScope::wholeDisk);
    EXPECT_THAT(manager.formatOptions(), IsEmpty());
    EXPECT_EQ(manager.confirmName(), "");
}

TEST_F(EraseOperationManagerTest, OffersFourFormatsInOrderMadeOnce)
{
    std::vector<std::string> labels;
    std::vector<std::string> formats;
    std::set<std::string> ids;
    for (const FormatOption &option : eraseFormatOptions()) {
        labels.push_back(option.label);
        formats.push_back(option.diskutilFormat);
        ids.insert(option.id);
        EXPECT_EQ(option.id.size(), 36U);
    }

    EXPECT_THAT(labels, ElementsAre("ExFAT", "FAT32 (MS-DOS)", "Mac OS Extended (Journaled)", "APFS"));
    EXPECT_THAT(formats, ElementsAre("ExFAT", "FAT32", "JHFS+", "APFS"));
    EXPECT_EQ(ids.size(), 4U);
    EXPECT_EQ(&eraseFormatOptions(), &eraseFormatOptions());
}

TEST_F(EraseOperationManagerTest, FillsAllFieldsAndShowsTheDialogLast)
{
    noteAll();

    manager.open(request());

    EXPECT_THAT(signalled, ElementsAre("dialogTitle", "diskName", "volumeName", "warningText", "confirmName",
                                       "formatOptions", "allowPartitionScope", "eraseScope", "isActive"));
    EXPECT_EQ(manager.dialogTitle(), "Title");
    EXPECT_EQ(manager.diskName(), "Disk");
    EXPECT_EQ(manager.volumeName(), "Volume");
    EXPECT_EQ(manager.warningText(), "Warning");
    EXPECT_EQ(manager.confirmName(), "Work");
    EXPECT_EQ(manager.formatOptions().size(), 4U);
    EXPECT_TRUE(manager.allowPartitionScope());
    EXPECT_EQ(manager.eraseScope(), EraseScope::partition);
    EXPECT_TRUE(manager.isActive());
}

TEST_F(EraseOperationManagerTest, FillsEveryFieldInOneOrderWhateverItHeldBefore)
{
    manager.open({.dialogTitle = "Old title",
                  .diskName = "Old disk",
                  .volumeName = "Old volume",
                  .warningText = "Old warning",
                  .confirmName = "Old",
                  .formatOptions = eraseFormatOptions(),
                  .allowPartitionScope = false,
                  .eraseScope = EraseScope::wholeDisk,
                  .onErase = {}});
    manager.setSelectedFormatIndex(3);
    manager.setConfirmInput("Old");
    manager.confirm();
    manager.setConfirmInput("wrong");
    manager.confirm();
    manager.dismiss();
    manager.finish(Stage::failed, "It failed");
    noteAll();

    manager.open(request());

    EXPECT_THAT(signalled,
                ElementsAre("dialogTitle", "diskName", "volumeName", "warningText", "confirmName", "confirmInput",
                            "confirmMismatch", "formatOptions", "selectedFormatIndex", "allowPartitionScope",
                            "eraseScope", "statusMessage", "resultMessage", "stage", "isActive"));
}

TEST_F(EraseOperationManagerTest, ForgetsTheFormerDialogAtAnOpening)
{
    manager.open(request());
    manager.setSelectedFormatIndex(3);
    manager.setConfirmInput("wrong");
    manager.confirm();
    manager.setConfirmInput("Work");
    manager.confirm();
    manager.finish(Stage::failed, "It failed");

    manager.open(request());

    EXPECT_EQ(manager.confirmInput(), "");
    EXPECT_FALSE(manager.confirmMismatch());
    EXPECT_EQ(manager.selectedFormatIndex(), 0U);
    EXPECT_EQ(manager.statusMessage(), "");
    EXPECT_EQ(manager.resultMessage(), "");
    EXPECT_EQ(manager.stage(), Stage::confirming);
}

struct WrongInput {
    const char *name;
    const char *input;
};

class RefusesTheInput : public EraseOperationManagerTest, public testing::WithParamInterface<WrongInput> {};

INSTANTIATE_TEST_SUITE_P(Of, RefusesTheInput,
                         testing::Values(WrongInput{"WrongCase", "work"}, WrongInput{"TrailingBlank", "Work "},
                                         WrongInput{"LeadingBlank", " Work"}, WrongInput{"Nothing", ""},
                                         WrongInput{"ABeginning", "Wor"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(RefusesTheInput, AndStartsNothing)
{
    manager.open(request());
    manager.setConfirmInput(GetParam().input);

    manager.confirm();

    EXPECT_TRUE(manager.confirmMismatch());
    EXPECT_EQ(manager.stage(), Stage::confirming);
    EXPECT_EQ(manager.statusMessage(), "");
    EXPECT_THAT(erased, IsEmpty());
}

TEST_F(EraseOperationManagerTest, TakesTheMismatchBackAtAnyEdit)
{
    manager.open(request());
    manager.confirm();
    ASSERT_TRUE(manager.confirmMismatch());

    manager.setConfirmInput("W");

    EXPECT_FALSE(manager.confirmMismatch());
}

TEST_F(EraseOperationManagerTest, TakesNothingTypedForAnEmptyName)
{
    auto withoutName = request();
    withoutName.confirmName = "";
    manager.open(withoutName);

    manager.confirm();

    EXPECT_EQ(manager.stage(), Stage::inProgress);
    EXPECT_THAT(erased, ElementsAre("ExFAT partition"));
}

struct StatusCase {
    const char *name;
    EraseScope scope;
    bool hasFormats;
    const char *status;
    const char *erased;
};

class TellsWhatItDoes : public EraseOperationManagerTest, public testing::WithParamInterface<StatusCase> {};

INSTANTIATE_TEST_SUITE_P(
    With, TellsWhatItDoes,
    testing::Values(StatusCase{"DiskAndFormat", EraseScope::wholeDisk, true,
                               "Erasing and repartitioning as Mac OS Extended (Journaled)...", "JHFS+ disk"},
                    StatusCase{"DiskAlone", EraseScope::wholeDisk, false, "Erasing and repartitioning...", " disk"},
                    StatusCase{"PartitionAndFormat", EraseScope::partition, true,
                               "Erasing and reformatting as Mac OS Extended (Journaled)...", "JHFS+ partition"},
                    StatusCase{"PartitionAlone", EraseScope::partition, false, "Erasing and reformatting...",
                               " partition"}),
    [](const auto &row) { return row.param.name; });

TEST_P(TellsWhatItDoes, AndHandsTheWorkBack)
{
    auto opened = request();
    if (!GetParam().hasFormats)
        opened.formatOptions.clear();
    manager.open(opened);
    manager.setSelectedFormatIndex(2);
    manager.setEraseScope(GetParam().scope);
    manager.setConfirmInput("Work");

    manager.confirm();

    EXPECT_EQ(manager.statusMessage(), GetParam().status);
    EXPECT_EQ(manager.stage(), Stage::inProgress);
    EXPECT_THAT(erased, ElementsAre(GetParam().erased));
}

TEST_F(EraseOperationManagerTest, KeepsTheFormatWhereAnotherIsNotThere)
{
    manager.open(request());
    manager.setSelectedFormatIndex(1);

    manager.setSelectedFormatIndex(4);

    EXPECT_EQ(manager.selectedFormatIndex(), 1U);
}

TEST_F(EraseOperationManagerTest, ClosesAndForgetsTheWork)
{
    manager.open(request());
    manager.setConfirmInput("Work");
    manager.finish(Stage::completed, "Done");

    manager.dismiss();
    manager.confirm();

    EXPECT_FALSE(manager.isActive());
    EXPECT_THAT(erased, IsEmpty());
}

TEST_F(EraseOperationManagerTest, GoesBackToTheFirstStageWhenItIsDismissed)
{
    manager.open(request());
    manager.finish(Stage::failed, "It failed");
    ASSERT_EQ(manager.stage(), Stage::failed);

    manager.dismiss();

    EXPECT_EQ(manager.stage(), Stage::confirming);
}

TEST_F(EraseOperationManagerTest, TakesAnAccentAsOneCharacterForTheSameAsTwo)
{
    auto ofAFileSystem = request();
    ofAFileSystem.confirmName = "Cafe\u0301";
    manager.open(ofAFileSystem);
    manager.setConfirmInput("Caf\u00e9");

    manager.confirm();

    EXPECT_FALSE(manager.confirmMismatch());
    EXPECT_EQ(manager.stage(), Stage::inProgress);
}

} // namespace
} // namespace brindle
