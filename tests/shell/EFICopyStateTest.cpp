#include "shell/EFICopyState.h"

#include "platform/linux/LinuxFileManager.h"
#include "support/FakeDialogs.h"
#include "support/FileTree.h"
#include "support/ManualClock.h"
#include "support/MountedPlaces.h"
#include "support/Patience.h"

#include "base/BlockOn.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>

namespace brindle {
namespace {

struct HeightCase {
    const char *name;
    EFICopyState state;
    double height;
};

class EFICopyStateHeight : public testing::TestWithParam<HeightCase> {};

INSTANTIATE_TEST_SUITE_P(Of, EFICopyStateHeight,
                         testing::Values(HeightCase{"Confirmation", EFICopyState::confirmation(), 578},
                                         HeightCase{"Progress", EFICopyState::inProgress(), 428},
                                         HeightCase{"NoDestination", EFICopyState::selection(0), 378},
                                         HeightCase{"OneDestination", EFICopyState::selection(1), 428},
                                         HeightCase{"TwoDestinations", EFICopyState::selection(2), 518},
                                         HeightCase{"ThreeDestinations", EFICopyState::selection(3), 608},
                                         HeightCase{"FourDestinations", EFICopyState::selection(4), 608}),
                         [](const auto &row) { return row.param.name; });

TEST_P(EFICopyStateHeight, GoesByTheScreen)
{
    EXPECT_EQ(GetParam().state.contentHeight(), GetParam().height);
}

class EFICopyStateTest : public testing::Test {
protected:
    EFICopyStateTest()
    {
        writeFile(folder() / "a/EFI/file", "x");
        writeFile(folder() / "b/EFI/file", "x");
    }

    [[nodiscard]] std::filesystem::path folder() const { return m_folder.path().toStdString(); }

    void raiseConfirmation()
    {
        const EFIPartition a{.identifier = "disk1s1", .mountPoint = (folder() / "a").string()};
        const EFIPartition b{.identifier = "disk2s1", .mountPoint = (folder() / "b").string()};
        blockOn(copyManager.copyEFI({.identifier = "disk1"}, a, {.identifier = "disk2"}, b, false), kPatience);
    }

    [[nodiscard]] std::optional<EFICopyState> state(bool showingDestinationSelection) const
    {
        return efiCopyState(eraseManager, copyManager, showingDestinationSelection, 2);
    }

    LinuxFileManager files;
    FakeDialogs dialogs;
    ManualClock clock;
    UnfinishedWork unfinishedWork;
    MountedPlaces places;
    EFICopyManager copyManager{files, dialogs, clock, unfinishedWork, places.look()};
    EraseOperationManager eraseManager;

private:
    QTemporaryDir m_folder;
};

TEST_F(EFICopyStateTest, IsAbsentWithoutADialog)
{
    raiseConfirmation();

    EXPECT_EQ(state(false), std::nullopt);
}

TEST_F(EFICopyStateTest, IsTheSelectionWhileNothingRuns)
{
    EXPECT_EQ(state(true), EFICopyState::selection(2));
}

TEST_F(EFICopyStateTest, IsTheConfirmationBeforeTheProgress)
{
    raiseConfirmation();
    ASSERT_TRUE(copyManager.isOperationInProgress());

    EXPECT_EQ(state(true), EFICopyState::confirmation());
}

TEST_F(EFICopyStateTest, IsTheProgressWhileACopyRuns)
{
    raiseConfirmation();
    auto copying = copyManager.copyEFIToLocation({.identifier = "disk1"},
                                                 {.identifier = "disk1s1", .mountPoint = (folder() / "a").string()});

    EXPECT_EQ(state(true), EFICopyState::inProgress());
    EXPECT_THROW(blockOn(std::move(copying), kPatience), Error); // its panel is cancelled
}

TEST_F(EFICopyStateTest, FollowsTheEraseDialogFirst)
{
    raiseConfirmation();
    copyManager.cancelOperation();
    eraseManager.open({});

    EXPECT_EQ(state(true), EFICopyState::confirmation());
    eraseManager.confirm();
    EXPECT_EQ(state(true), EFICopyState::inProgress());
    eraseManager.finish(EraseOperationManager::Stage::failed, "");
    EXPECT_EQ(state(false), EFICopyState::inProgress());
    eraseManager.dismiss();
    EXPECT_EQ(state(false), std::nullopt);
}

} // namespace
} // namespace brindle
