#include "ui/EraseDialogFixture.h"
#include "ui/ReadAloud.h"

#include <QToolTip>

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Stage = EraseOperationManager::Stage;

using EraseDialogTest = EraseDialogFixture;

TEST_F(EraseDialogTest, AsksForTheNameWithTheKeyboardInItsField)
{
    openForDisk();

    EXPECT_EQ(window().focused(), "nameField");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Disk?");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseName")), "WORK");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseLine")), "on Stick");
    EXPECT_EQ(window().textOf(QStringLiteral("warningText")),
              "This will permanently erase data on Stick (16 GB) and cannot be undone. The disk will be reformatted "
              "and relabeled \"WORK\".");
    EXPECT_EQ(readAloud(window().item(QStringLiteral("nameField"))).name, "Type \"WORK\" to confirm");
    EXPECT_FALSE(window().shows(QStringLiteral("mismatchText")));
}

TEST_F(EraseDialogTest, IsNotScrolledWhereAllOfItHasRoom)
{
    for (const int height : {kHeightOfConfirmation, QmlWindow::kHeightOn600Points}) {
        openForDisk(height);
        waitForStillness(window());

        EXPECT_FALSE(window().valueOf<bool>(QStringLiteral("eraseBody"), "interactive")) << height;
        EXPECT_EQ(window().valueOf<double>(QStringLiteral("eraseBody"), "contentY"), 0) << height;
    }
}

TEST_F(EraseDialogTest, KeepsItsHeadInPlaceFromStageToStage)
{
    openForDisk();
    const auto placeOfHead = [this] { return window().item(QStringLiteral("eraseSymbol")).mapToScene({}); };
    const QPointF place = placeOfHead();
    EXPECT_EQ(place.y(), 32);

    for (const Stage stage : {Stage::inProgress, Stage::completed, Stage::failed}) {
        window().window().resize(QmlWindow::kWidth, kHeightOfLaterStages);
        manager.finish(stage, "The end.");
        waitForStillness(window());

        EXPECT_EQ(placeOfHead(), place);
    }
}

TEST_F(EraseDialogTest, KeepsHeadAndButtonsInSightOnALowScreen)
{
    stick.volumeName = stick.name = std::string(255, 'W');
    openForDisk(QmlWindow::kHeightOn600Points);
    window().click(QStringLiteral("eraseButton"));
    waitForStillness(window());

    const QRectF frame(QPointF(), window().window().size());
    for (const char *name : {"eraseSymbol", "eraseTitle", "eraseName", "eraseLine", "cancelButton", "eraseButton"}) {
        const QQuickItem &item = window().item(QString::fromLatin1(name));
        EXPECT_TRUE(frame.contains(item.mapRectToScene(item.boundingRect()))) << name;
    }
    const QQuickItem &body = window().item(QStringLiteral("eraseBody"));
    const QRectF bodyFrame = body.mapRectToScene(body.boundingRect());
    const QQuickItem &mismatch = window().item(QStringLiteral("mismatchText"));
    EXPECT_TRUE(bodyFrame.contains(mismatch.mapRectToScene(mismatch.boundingRect())));
}

TEST_F(EraseDialogTest, CutsANameThatIsTooLongAndTellsAllOfIt)
{
    stick.volumeName = stick.name = std::string(255, 'W');

    openForDisk();

    for (const char *name : {"eraseName", "eraseLine"}) {
        EXPECT_TRUE(window().valueOf<bool>(QString::fromLatin1(name), "truncated")) << name;
        EXPECT_THAT(readAloud(window().item(QString::fromLatin1(name))).name, HasSubstr(std::string(255, 'W')));
    }
    window().hover(QStringLiteral("eraseName"));
    waitUntil([] { return QToolTip::text().contains(QString(255, QLatin1Char('W'))); });
}

TEST_F(EraseDialogTest, ErasesTheVolumeOnceItsNameIsTyped)
{
    openForDisk();

    window().type(QStringLiteral("WORK"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("eraseVolume|/Volumes/WORK|WORK|ExFAT"));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Complete");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseResult")), manager.resultMessage());
    EXPECT_EQ(window().focused(), "doneButton");
    window().press(Qt::Key_Return);
    EXPECT_FALSE(manager.isActive());
}

TEST_F(EraseDialogTest, ErasesTheWholeDiskInTheFormatThatWasPicked)
{
    openForDisk();

    window().click(QStringLiteral("scopePicker1"));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseName")), "Stick");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseLine")), "Volume: WORK");
    EXPECT_EQ(window().textOf(QStringLiteral("scopeNote")),
              "Repartitions the entire disk, including the EFI partition.");
    window().click(QStringLiteral("formatPicker"));
    window().click(QStringLiteral("formatPickerEntry1"));
    window().click(QStringLiteral("nameField"));
    window().type(QStringLiteral("WORK"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("eraseDisk|disk2|WORK|FAT32"));
}

TEST_F(EraseDialogTest, ErasesByTheKeyboardAlone)
{
    openForDisk();

    window().type(QStringLiteral("WORK"));
    window().tabTo("scopePicker");
    window().press(Qt::Key_Right);
    EXPECT_TRUE(presenter.isWholeDisk());
    window().tabTo("formatPicker");
    window().press(Qt::Key_Down);
    EXPECT_EQ(presenter.selectedFormatIndex(), 1);
    window().tabTo("eraseButton");
    window().press(Qt::Key_Return);
    window().press(Qt::Key_Enter);
    EXPECT_THAT(operations.asked, IsEmpty()) << "Return must not erase";
    window().press(Qt::Key_Space);
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("eraseDisk|disk2|WORK|FAT32"));
}

TEST_F(EraseDialogTest, ErasesTheEFIPartitionWithoutAnyChoice)
{
    openForEFIPartition();
    EXPECT_FALSE(window().shows(QStringLiteral("scopePicker")));
    EXPECT_FALSE(window().shows(QStringLiteral("formatPicker")));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase EFI Partition?");

    window().type(QStringLiteral("BOOT"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("formatEFIPartition|disk2s1|BOOT"));
}

TEST_F(EraseDialogTest, SaysThatTheNameDoesNotMatchUntilItIsEdited)
{
    openForDisk();
    window().type(QStringLiteral("work"));

    window().click(QStringLiteral("eraseButton"));
    EXPECT_EQ(window().textOf(QStringLiteral("mismatchText")), "That doesn't match \"WORK\" — try again.");
    window().click(QStringLiteral("nameField"));
    window().type(QStringLiteral("x"));

    EXPECT_FALSE(window().shows(QStringLiteral("mismatchText")));
    EXPECT_THAT(operations.asked, IsEmpty());
}

TEST_F(EraseDialogTest, ErasesADiskWhoseLabelIsEmptyWithNothingTyped)
{
    stick.volumeName = "";
    openForDisk();
    EXPECT_EQ(window().textOf(QStringLiteral("confirmPrompt")), "Type \"\" to confirm");

    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("eraseVolume|/Volumes/WORK||ExFAT"));
}

TEST_F(EraseDialogTest, HasNoChoiceOfScopeForADiskWithoutLabelAndMountPoint)
{
    stick.mountPoint = std::nullopt;
    stick.volumeName = std::nullopt;

    openForDisk();

    EXPECT_FALSE(window().shows(QStringLiteral("scopePicker")));
    EXPECT_TRUE(window().shows(QStringLiteral("formatPicker")));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseLine")), "Volume: No Volume Label");
}

TEST_F(EraseDialogTest, ShowsMarkupInANameAsItIs)
{
    stick.volumeName = "<b>W</b>";

    openForDisk();

    EXPECT_EQ(window().valueOf<int>(QStringLiteral("eraseName"), "textFormat"), Qt::PlainText);
    EXPECT_EQ(window().textOf(QStringLiteral("eraseName")), "<b>W</b>");
}

/// A way to leave the dialog with the right name typed.
struct Dismissal {
    const char *name;
    std::function<void(QmlWindow &)> dismiss;
    bool closes;
};

class EraseDialogDismissed : public EraseDialogTest, public testing::WithParamInterface<Dismissal> {};

INSTANTIATE_TEST_SUITE_P(
    By, EraseDialogDismissed,
    testing::Values(Dismissal{"Escape", [](QmlWindow &window) { window.press(Qt::Key_Escape); }, true},
                    Dismissal{"Cancel", [](QmlWindow &window) { window.click(QStringLiteral("cancelButton")); }, true},
                    Dismissal{"WindowClosed", [](QmlWindow &window) { window.window().close(); }, false},
                    Dismissal{"ReturnInTheField",
                              [](QmlWindow &window) {
                                  window.press(Qt::Key_Return);
                                  window.press(Qt::Key_Enter);
                              },
                              false},
                    Dismissal{"ReturnOnErase",
                              [](QmlWindow &window) {
                                  window.tabTo("eraseButton");
                                  window.press(Qt::Key_Return);
                                  window.press(Qt::Key_Enter);
                              },
                              false},
                    Dismissal{"ReturnOnCancel",
                              [](QmlWindow &window) {
                                  window.tabTo("cancelButton");
                                  window.press(Qt::Key_Return);
                              },
                              true},
                    Dismissal{"SpaceOnCancel",
                              [](QmlWindow &window) {
                                  window.tabTo("cancelButton");
                                  window.press(Qt::Key_Space);
                              },
                              true},
                    Dismissal{"FocusLost",
                              [](QmlWindow &window) {
                                  QQuickWindow other;
                                  other.show();
                                  other.requestActivate();
                                  QmlWindow::settle();
                                  ASSERT_FALSE(window.window().isActive());
                              },
                              false}),
    [](const auto &row) { return row.param.name; });

TEST_P(EraseDialogDismissed, ErasesNoDisk)
{
    openForDisk();
    window().type(QStringLiteral("WORK"));

    GetParam().dismiss(window());
    QmlWindow::settle();

    EXPECT_THAT(operations.asked, IsEmpty());
    EXPECT_EQ(manager.stage(), Stage::confirming);
    EXPECT_EQ(manager.isActive(), !GetParam().closes);
}

TEST_P(EraseDialogDismissed, ErasesNoEFIPartition)
{
    openForEFIPartition();
    window().type(QStringLiteral("BOOT"));

    GetParam().dismiss(window());
    QmlWindow::settle();

    EXPECT_THAT(operations.asked, IsEmpty());
    EXPECT_EQ(manager.isActive(), !GetParam().closes);
}

TEST_F(EraseDialogTest, ClosesTheListOfFormatsWithEscapeAndNotItself)
{
    openForDisk();
    window().click(QStringLiteral("formatPicker"));
    ASSERT_TRUE(window().shows(QStringLiteral("formatPickerEntry0")));

    window().press(Qt::Key_Escape);

    EXPECT_FALSE(window().shows(QStringLiteral("formatPickerEntry0")));
    EXPECT_TRUE(manager.isActive());
}

TEST_F(EraseDialogTest, StandsUntilTheEraseOfADiskThatHasGoneFails)
{
    operations.failure = Error("SudoError", 1, "Could not find disk: disk2s1");
    openForEFIPartition();
    window().type(QStringLiteral("BOOT"));

    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Failed");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseResult")),
              "The EFI partition on Stick could not be erased: Could not find disk: disk2s1");
    window().press(Qt::Key_Escape);
    EXPECT_FALSE(manager.isActive());
}

TEST_F(EraseDialogTest, CannotBeLeftWhileItErases)
{
    openForEFIPartition();
    manager.open({.confirmName = "BOOT", .eraseScope = EraseScope::partition}); // its work never ends
    window().type(QStringLiteral("BOOT"));
    window().click(QStringLiteral("eraseButton"));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erasing...");
    EXPECT_EQ(window().textOf(QStringLiteral("eraseStatus")), "Erasing and reformatting...");
    for (const char16_t *button : {u"cancelButton", u"eraseButton", u"doneButton"})
        EXPECT_FALSE(window().shows(QString::fromUtf16(button)));

    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space})
        window().press(key);

    EXPECT_TRUE(manager.isActive());
    EXPECT_EQ(manager.stage(), Stage::inProgress);
}

} // namespace
} // namespace brindle
