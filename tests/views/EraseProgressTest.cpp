#include "views/EraseProgress.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using Buttons = EraseProgress::Buttons;
using Stage = EraseOperationManager::Stage;

class EraseProgressTest : public testing::Test {
protected:
    void open(std::string diskName = "Stick", std::string volumeName = "WORK")
    {
        manager.open({.dialogTitle = "Erase Disk?",
                      .diskName = std::move(diskName),
                      .volumeName = std::move(volumeName),
                      .confirmName = "WORK",
                      .eraseScope = EraseScope::partition});
    }

    EraseOperationManager manager;
    EraseProgress view{manager};
};

TEST_F(EraseProgressTest, AsksBeforeItErases)
{
    open();

    EXPECT_EQ(view.symbol(), (EraseProgress::Symbol{"exclamationmark.triangle.fill", Colors::kRed}));
    EXPECT_EQ(view.title(), "Erase Disk?");
    EXPECT_EQ(view.confirmPrompt(), "Type \"WORK\" to confirm");
    EXPECT_EQ(view.buttons(), Buttons::cancelAndErase);
    EXPECT_FALSE(view.mismatchText());
}

TEST_F(EraseProgressTest, SaysThatTheNameDoesNotMatch)
{
    open();

    manager.confirm();

    EXPECT_EQ(view.mismatchText(), "That doesn't match \"WORK\" — try again.");
}

TEST_F(EraseProgressTest, NamesTheVolumeAndItsDisk)
{
    open();

    EXPECT_EQ(view.name(), "WORK");
    EXPECT_EQ(view.line(), "on Stick");
    EXPECT_EQ(view.scopeNote(), "Reformats just this volume — the partition map and EFI partition are left untouched.");
}

TEST_F(EraseProgressTest, NamesTheDiskAndItsVolumeOnceTheWholeDiskIsChosen)
{
    open();

    manager.setEraseScope(EraseScope::wholeDisk);

    EXPECT_EQ(view.name(), "Stick");
    EXPECT_EQ(view.line(), "Volume: WORK");
    EXPECT_EQ(view.scopeNote(), "Repartitions the entire disk, including the EFI partition.");
}

TEST_F(EraseProgressTest, LeavesOutNamesThatAreEmpty)
{
    open("", "");

    EXPECT_EQ(view.name(), "");
    EXPECT_EQ(view.line(), "");
    manager.setEraseScope(EraseScope::wholeDisk);
    EXPECT_EQ(view.line(), "");
}

TEST_F(EraseProgressTest, OffersNoButtonWhileItErases)
{
    open();
    manager.setConfirmInput("WORK");

    manager.confirm();

    EXPECT_EQ(view.symbol(), (EraseProgress::Symbol{"externaldrive.fill.badge.minus", Colors::kRed}));
    EXPECT_EQ(view.title(), "Erasing...");
    EXPECT_EQ(view.buttons(), Buttons::none);
}

TEST_F(EraseProgressTest, ShowsTheResult)
{
    open();

    manager.finish(Stage::completed, "Done");
    EXPECT_EQ(view.symbol(), (EraseProgress::Symbol{"checkmark.circle.fill", Colors::kGreen}));
    EXPECT_EQ(view.title(), "Erase Complete");
    EXPECT_EQ(view.buttons(), Buttons::done);

    manager.finish(Stage::failed, "Failed");
    EXPECT_EQ(view.symbol(), (EraseProgress::Symbol{"xmark.circle.fill", Colors::kRed}));
    EXPECT_EQ(view.title(), "Erase Failed");
    EXPECT_EQ(view.buttons(), Buttons::done);
}

} // namespace
} // namespace brindle
