#include "ui/CopyDialogFixture.h"
#include "ui/ReadAloud.h"

#include "support/LogCapture.h"

#include <QToolTip>

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CopyDialogTest : public CopyDialogFixture {
protected:
    LogCapture log;
};

TEST_F(CopyDialogTest, OffersToCopyOnceADestinationIsPicked)
{
    open();
    EXPECT_EQ(window().textOf(QStringLiteral("sourceText")), "Source: disk1s1 on Source");
    EXPECT_FALSE(window().valueOf<bool>(QStringLiteral("copyButton"), "enabled"));
    EXPECT_FALSE(window().shows(QStringLiteral("indicator")));

    window().click(QStringLiteral("destination0"));

    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("copyButton"), "enabled"));
}

TEST_F(CopyDialogTest, CopiesToTheDestinationThatWasPickedAndClosesByItself)
{
    open();

    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("copyButton"));
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitForEnd();

    EXPECT_TRUE(std::filesystem::exists(folder() / "destination/EFI"));
    EXPECT_TRUE(window().shows(QStringLiteral("doneButton")));
    EXPECT_EQ(window().focused(), "doneButton");
    EXPECT_FALSE(window().shows(QStringLiteral("cancelButton")));
    EXPECT_FALSE(window().shows(QStringLiteral("copyButton")));
    EXPECT_EQ(readAloud(window().item(QStringLiteral("indicator"))).name, "Operation completed successfully");
    clock.advance(EFICopyFlow::kAutoClose);
    QmlWindow::settle();
    EXPECT_FALSE(flow.showingDestinationSelection());
    EXPECT_FALSE(window().shows(QStringLiteral("doneButton")));
}

TEST_F(CopyDialogTest, CopiesByTheKeyboardAlone)
{
    disks.push_back(disk("disk3", "Other", "other"));
    open(518);
    waitForStillness(window());
    EXPECT_EQ(window().focused(), "destination0");

    window().press(Qt::Key_Down);
    EXPECT_EQ(window().focused(), "destination1");
    window().press(Qt::Key_Up);
    window().press(Qt::Key_Return);
    EXPECT_TRUE(presenter.dialog()->canCopy());
    window().tabTo("copyButton");
    window().press(Qt::Key_Return);
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });

    EXPECT_TRUE(std::filesystem::exists(folder() / "destination/EFI"));
}

TEST_F(CopyDialogTest, SavesABackupBeforeItReplacesTheOldFolder)
{
    writeOldEFI();
    dialogs.savePaths = {(folder() / "backup").string()};
    open();
    copyUntilConfirmation();

    window().click(QStringLiteral("option0"));
    waitForEnd();

    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    EXPECT_TRUE(std::filesystem::exists(folder() / "backup/old"));
    EXPECT_FALSE(oldEFIIsThere());
}

TEST_F(CopyDialogTest, OverwritesWithoutBackupOnceThatIsTicked)
{
    writeOldEFI();
    open();

    window().click(QStringLiteral("overwriteCheckBox"));
    EXPECT_TRUE(window().shows(QStringLiteral("warning0")));
    EXPECT_FALSE(window().shows(QStringLiteral("warning1")));
    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("copyButton"));
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });

    EXPECT_FALSE(oldEFIIsThere());
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
}

TEST_F(CopyDialogTest, WarnsOfTheBootDiskInItsRowInTheSelectionAndInTheConfirmation)
{
    writeOldEFI();
    disks[1].isBootDisk = true;
    open(578);
    EXPECT_EQ(readAloud(window().item(QStringLiteral("destination0"))).name, "Target, disk2s1, Boot Disk");
    EXPECT_FALSE(window().shows(QStringLiteral("warning0")));

    window().click(QStringLiteral("destination0"));
    EXPECT_TRUE(window().shows(QStringLiteral("warning0")));
    EXPECT_EQ(readAloud(window().item(QStringLiteral("warning0"))).name, "Boot Disk Warning");
    copyUntilConfirmation();

    EXPECT_EQ(readAloud(window().item(QStringLiteral("criticalWarning"))).name, "Critical Warning");
}

TEST_F(CopyDialogTest, KeepsTheChoiceAndTheTickAfterACancellation)
{
    writeOldEFI();
    open();
    copyUntilConfirmation();

    window().click(QStringLiteral("option2"));
    waitForEnd();

    EXPECT_EQ(readAloud(window().item(QStringLiteral("indicator"))).name, "Operation cancelled");
    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("copyButton"), "enabled"));
    EXPECT_EQ(window().focused(), "destination0");
    clock.advance(std::chrono::seconds(2));
    QmlWindow::settle();
    EXPECT_FALSE(window().shows(QStringLiteral("indicator")));
}

TEST_F(CopyDialogTest, ReadsTheWholeReasonOfAFailureAloud)
{
    copyUntilFailure();

    EXPECT_THAT(readAloud(window().item(QStringLiteral("indicator"))).name,
                StartsWith("Operation failed: Copy operation failed: "));
    EXPECT_TRUE(window().shows(QStringLiteral("copyButton")));
}

TEST_F(CopyDialogTest, LeavesACopyThatHangsByItsOneButton)
{
    open();
    copyUntilItHangs();
    EXPECT_EQ(window().textOf(QStringLiteral("copyPercent")), "70%");
    EXPECT_THAT(window().textOf(QStringLiteral("copyStatus")), StartsWith("Copy failed: "));

    window().click(QStringLiteral("cancelOperationButton"));
    waitForEnd();

    EXPECT_EQ(manager.operationStatus(), "Operation cancelled");
    EXPECT_TRUE(window().shows(QStringLiteral("copyButton")));
}

TEST_F(CopyDialogTest, GivesNoButtonTheKeyboardWhileItCopies)
{
    open();
    copyUntilItHangs();

    window().press(Qt::Key_Return);
    window().press(Qt::Key_Space);
    EXPECT_TRUE(manager.isOperationInProgress());
    window().press(Qt::Key_Tab);
    EXPECT_EQ(window().focused(), "closeButton");
}

TEST_F(CopyDialogTest, GivesTheKeyboardBackToTheChoiceAfterACopyThatFailsAtOnce)
{
    open();
    window().press(Qt::Key_Space);
    std::filesystem::remove_all(folder() / "source/EFI");
    window().tabTo("copyButton");

    window().press(Qt::Key_Return);
    waitUntil([this] { return manager.operationStatus() == "Source EFI folder not found"; });
    waitForStillness(window());
    QmlWindow::settle();

    EXPECT_EQ(window().focused(), "destination0");
    window().press(Qt::Key_Tab);
    EXPECT_EQ(window().focused(), "overwriteCheckBox");
}

TEST_F(CopyDialogTest, ShowsTheAlertWhereThereIsNothingToPick)
{
    EFIDestinationSelectionPresenter empty(
        disks[0], disks[0].efiPartitions[0], {}, {}, [] {}, manager);
    QmlWindow shown(R"(EFIDestinationSelectionView { anchors.fill: parent; focus: true })", 378,
                    QVariantMap{{QStringLiteral("dialog"), QVariant::fromValue(&empty)}});
    waitForStillness(shown);
    EXPECT_EQ(shown.textOf(QStringLiteral("alertMessage")),
              "No available EFI destinations found. Make sure other EFI partitions are mounted.");
    EXPECT_EQ(shown.focused(), "alertOKButton");

    shown.press(Qt::Key_Return);

    EXPECT_FALSE(shown.shows(QStringLiteral("alertMessage")));
    EXPECT_TRUE(shown.shows(QStringLiteral("refreshButton")));
}

/// A way to leave the dialog or a screen of it.
struct Dismissal {
    const char *name;
    std::function<void(QmlWindow &)> dismiss;
};

const auto kDismissals = {
    Dismissal{"Escape", [](QmlWindow &window) { window.press(Qt::Key_Escape); }},
    Dismissal{"Cross", [](QmlWindow &window) { window.click(QStringLiteral("closeButton")); }},
    Dismissal{"WindowClosed", [](QmlWindow &window) { window.window().close(); }},
    Dismissal{"FocusLost",
              [](QmlWindow &window) {
                  QQuickWindow other;
                  other.show();
                  other.requestActivate();
                  QmlWindow::settle();
                  ASSERT_FALSE(window.window().isActive());
              }},
};

const auto nameOf = [](const auto &row) { return row.param.name; };

class CopySelectionDismissed : public CopyDialogTest, public testing::WithParamInterface<Dismissal> {};

INSTANTIATE_TEST_SUITE_P(By, CopySelectionDismissed, testing::ValuesIn(kDismissals), nameOf);
INSTANTIATE_TEST_SUITE_P(ByButton, CopySelectionDismissed,
                         testing::Values(Dismissal{
                             "Cancel", [](QmlWindow &window) { window.click(QStringLiteral("cancelButton")); }}),
                         nameOf);

TEST_P(CopySelectionDismissed, TouchesNothing)
{
    writeOldEFI();
    open();
    window().click(QStringLiteral("overwriteCheckBox"));
    window().click(QStringLiteral("destination0"));

    GetParam().dismiss(window());
    clock.advance(std::chrono::seconds(10));
    QmlWindow::settle();

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_TRUE(oldEFIIsThere());
}

class CopyConfirmationDismissed : public CopyDialogTest, public testing::WithParamInterface<Dismissal> {};

INSTANTIATE_TEST_SUITE_P(By, CopyConfirmationDismissed, testing::ValuesIn(kDismissals), nameOf);
INSTANTIATE_TEST_SUITE_P(
    ByButton, CopyConfirmationDismissed,
    testing::Values(Dismissal{"Cancel", [](QmlWindow &window) { window.click(QStringLiteral("option2")); }},
                    Dismissal{"SpaceAtFirst", [](QmlWindow &window) { window.press(Qt::Key_Space); }},
                    Dismissal{"ReturnAtFirst", [](QmlWindow &window) { window.press(Qt::Key_Return); }},
                    Dismissal{"ReturnOnOverwrite",
                              [](QmlWindow &window) {
                                  window.press(Qt::Key_Up);
                                  ASSERT_EQ(window.focused(), "option1");
                                  window.press(Qt::Key_Return);
                                  window.press(Qt::Key_Enter);
                              }},
                    Dismissal{"ReturnOnBackup",
                              [](QmlWindow &window) {
                                  window.press(Qt::Key_Up);
                                  window.press(Qt::Key_Up);
                                  ASSERT_EQ(window.focused(), "option0");
                                  window.press(Qt::Key_Return);
                                  window.press(Qt::Key_Enter);
                              }}),
    nameOf);

TEST_P(CopyConfirmationDismissed, TouchesNothing)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();
    EXPECT_EQ(window().focused(), "option2");

    GetParam().dismiss(window());
    clock.advance(std::chrono::seconds(10));
    QmlWindow::settle();

    EXPECT_TRUE(oldEFIIsThere());
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
}

TEST_F(CopyDialogTest, TouchesNothingWhenTheDestinationGoesWhileItIsAskedAbout)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();

    disks.erase(disks.begin() + 1);
    clock.advance(std::chrono::seconds(10));
    QmlWindow::settle();

    EXPECT_TRUE(oldEFIIsThere());
    EXPECT_TRUE(window().shows(QStringLiteral("option2"))) << "the question stands";
}

TEST_F(CopyDialogTest, CopiesNothingToADiskThatHasGone)
{
    open();
    window().click(QStringLiteral("destination0"));
    disks.erase(disks.begin() + 1);

    window().click(QStringLiteral("copyButton"));
    QmlWindow::settle();

    EXPECT_EQ(manager.operationStatus(), "");
    EXPECT_FALSE(std::filesystem::exists(folder() / "destination/EFI"));
}

TEST_F(CopyDialogTest, AsksForThePlaceOfTheBackupWithSpaceOnTheOptionThatSaysSo)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();

    window().press(Qt::Key_Up);
    window().press(Qt::Key_Up);
    window().press(Qt::Key_Space);
    waitForEnd();

    EXPECT_EQ(dialogs.savePanels.size(), 1U);
    EXPECT_TRUE(oldEFIIsThere()) << "the panel was cancelled";
}

TEST_F(CopyDialogTest, OverwritesWithSpaceOnTheOptionThatSaysSo)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();

    window().press(Qt::Key_Up);
    window().press(Qt::Key_Space);
    waitForEnd();

    EXPECT_EQ(manager.operationStatus(), "EFI copy completed successfully");
    EXPECT_FALSE(oldEFIIsThere());
}

TEST_F(CopyDialogTest, CutsTheNamesOfSourceAndDestinationAndTellsAllOfThem)
{
    const std::string name(255, 'W');
    disks[0].efiPartitions[0].volumeName = disks[1].efiPartitions[0].volumeName = name;
    writeOldEFI();
    open();
    copyUntilConfirmation(); // as long as the choice is awaited, there are ends
    QmlWindow progress("OperationProgressView { anchors.fill: parent }", kHeightOfOneDestination,
                       {{QStringLiteral("dialog"), QVariant::fromValue(presenter.dialog())}});
    (void)progress.picture(); // lays it out

    EXPECT_EQ(progress.textOf(QStringLiteral("progressEnd0")), "From:");
    EXPECT_FALSE(progress.valueOf<bool>(QStringLiteral("progressEnd0"), "truncated"));
    for (const char *end : {"progressEnd1", "progressEnd3"}) {
        const QQuickItem &item = progress.item(QString::fromLatin1(end));
        EXPECT_TRUE(item.property("truncated").toBool()) << end;
        EXPECT_LE(item.mapToScene(QPointF(item.width(), 0)).x(), QmlWindow::kWidth - 32) << end;
        EXPECT_THAT(readAloud(progress.item(QString::fromLatin1(end))).name, HasSubstr(name));
    }
    progress.hover(QStringLiteral("progressEnd1"));
    waitUntil([&] { return QToolTip::text().contains(QString::fromStdString(name)); });
}

} // namespace
} // namespace brindle
