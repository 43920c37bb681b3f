#include "ui/AccessibleControls.h"
#include "ui/CopyDialogFixture.h"
#include "ui/EraseDialogFixture.h"
#include "ui/Menus.h"
#include "ui/QtDialogs.h"
#include "ui/ReadAloud.h"
#include "ui/TwoDisksFixture.h"

#include "base/BlockOn.h"
#include "support/LogCapture.h"
#include "support/Patience.h"

#include <QGuiApplication>

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void expectControlsThatMissNothing(const QQuickWindow &window, const std::vector<std::string> &names)
{
    const AccessibleControls controls(window);
    EXPECT_EQ(controls.names(), names);
    EXPECT_THAT(controls.misses(), IsEmpty());
}

TEST(AccessibleControls, AreFoundWithAllThatTheyMiss)
{
    QmlWindow window(R"(Column {
                            Item { objectName: "silent"; activeFocusOnTab: true; width: 9; height: 9 }
                            IconButton { objectName: "nameless"; symbol: "eject"; tip: " " }
                            Item {
                                objectName: "idle"; activeFocusOnTab: true; width: 9; height: 9
                                Accessible.role: Accessible.ListItem
                                Accessible.name: "Disk"
                            }
                            PushButton { objectName: "disabled"; enabled: false }
                            PushButton { objectName: "hidden"; visible: false }
                            PushButton { objectName: "whole"; text: "Erase" }
                        })");

    const AccessibleControls controls(window.window());

    EXPECT_THAT(controls.names(), ElementsAre("silent", "nameless", "idle", "whole"));
    EXPECT_THAT(controls.misses(), ElementsAre("silent: a role", "nameless: a name", "idle: the action Press"));
}

// --- the list

class AccessibleControlsOfList : public TwoDisksFixture {
protected:
    static inline const std::vector<std::string> kControls = {
        "refreshButton", "disk2",   "copyButton",  "ejectButton", "configButton", "findButton",
        "mountButton",   "disk4",   "ejectButton", "mountButton", "chevron",      "disk4s1",
        "mountButton",   "disk4s2", "mountButton", "quitButton"};
};

TEST_F(AccessibleControlsOfList, MissNothing)
{
    expectControlsThatMissNothing(open().window(), kControls);
}

TEST_F(AccessibleControlsOfList, MissNothingOnceAMenuHasClosed)
{
    QmlWindow &window = open();
    window.click(QStringLiteral("disk4s1"), Qt::RightButton);
    closeMenu(window);

    expectControlsThatMissNothing(window.window(), kControls);
}

TEST_F(AccessibleControlsOfList, MissNothingWhereThereAreNoDisks)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    QmlWindow window("WindowContentView { width: 500; height: 212 }", 212,
                     {{QStringLiteral("presenter"), QVariant::fromValue(&content())}});

    expectControlsThatMissNothing(window.window(), {"refreshButton", "quitButton"});
}

// --- the copy

class AccessibleControlsOfCopy : public CopyDialogFixture {};

TEST_F(AccessibleControlsOfCopy, MissNothingInTheSelection)
{
    open();
    expectControlsThatMissNothing(window().window(),
                                  {"closeButton", "destination0", "overwriteCheckBox", "cancelButton"});
    EXPECT_EQ(readAloud(window().item(QStringLiteral("destination0"))).role, QAccessible::RadioButton);

    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("overwriteCheckBox"));
    expectControlsThatMissNothing(window().window(),
                                  {"closeButton", "destination0", "overwriteCheckBox", "cancelButton", "copyButton"});
}

TEST_F(AccessibleControlsOfCopy, MissNothingWhereThereIsNoDestination)
{
    EFIDestinationSelectionPresenter empty(
        disks[0], disks[0].efiPartitions[0], {}, {}, [] {}, manager);
    QmlWindow window("EFIDestinationSelectionView { anchors.fill: parent; focus: true }", 378,
                     {{QStringLiteral("dialog"), QVariant::fromValue(&empty)}});
    waitForStillness(window);
    expectControlsThatMissNothing(window.window(), {"alertOKButton"});

    window.click(QStringLiteral("alertOKButton"));
    expectControlsThatMissNothing(window.window(),
                                  {"closeButton", "refreshButton", "overwriteCheckBox", "cancelButton"});
}

TEST_F(AccessibleControlsOfCopy, MissNothingInTheConfirmation)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();

    expectControlsThatMissNothing(window().window(), {"closeButton", "option0", "option1", "option2"});
}

TEST_F(AccessibleControlsOfCopy, MissNothingInTheProgress)
{
    open();
    copyUntilItHangs();

    expectControlsThatMissNothing(window().window(), {"closeButton", "cancelOperationButton"});
}

TEST_F(AccessibleControlsOfCopy, MissNothingAfterASuccess)
{
    open();
    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("copyButton"));
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitForEnd();

    expectControlsThatMissNothing(window().window(),
                                  {"closeButton", "destination0", "overwriteCheckBox", "doneButton"});
}

TEST_F(AccessibleControlsOfCopy, MissNothingAfterAFailure)
{
    copyUntilFailure();

    expectControlsThatMissNothing(window().window(),
                                  {"closeButton", "destination0", "overwriteCheckBox", "cancelButton", "copyButton"});
}

// --- the erase

class AccessibleControlsOfErase : public EraseDialogFixture {};

TEST_F(AccessibleControlsOfErase, MissNothingInTheQuestionForADisk)
{
    openForDisk();

    expectControlsThatMissNothing(window().window(), {"scopePicker", "scopePicker0", "scopePicker1", "formatPicker",
                                                      "nameField", "cancelButton", "eraseButton"});
    EXPECT_EQ(readAloud(window().item(QStringLiteral("scopePicker1"))),
              (ReadAloud{QAccessible::RadioButton, "Whole Disk"}));
    ASSERT_TRUE(pressByReader(window().item(QStringLiteral("scopePicker1"))));
    EXPECT_TRUE(presenter.isWholeDisk());
}

TEST_F(AccessibleControlsOfErase, MissNothingInTheListOfFormats)
{
    openForDisk();
    ASSERT_TRUE(pressByReader(window().item(QStringLiteral("formatPicker"))));
    QmlWindow::settle();

    EXPECT_THAT(AccessibleControls(window().window()).misses(), IsEmpty());
    ASSERT_TRUE(pressByReader(window().item(QStringLiteral("formatPickerEntry2"))));
    QmlWindow::settle();

    EXPECT_EQ(presenter.selectedFormatIndex(), 2);
    EXPECT_FALSE(window().shows(QStringLiteral("formatPickerEntry2")));
}

TEST_F(AccessibleControlsOfErase, MissNothingInTheQuestionForAnEFIPartition)
{
    openForEFIPartition();

    expectControlsThatMissNothing(window().window(), {"nameField", "cancelButton", "eraseButton"});
}

TEST_F(AccessibleControlsOfErase, MissNothingInTheLaterStages)
{
    openForDisk();
    manager.finish(EraseOperationManager::Stage::inProgress, "");
    waitForStillness(window());
    expectControlsThatMissNothing(window().window(), {});

    for (const auto stage : {EraseOperationManager::Stage::completed, EraseOperationManager::Stage::failed}) {
        manager.finish(stage, "The end.");
        waitForStillness(window());
        expectControlsThatMissNothing(window().window(), {"doneButton"});
    }
}

// --- alerts and prompts

class AccessibleControlsOfAlert : public testing::Test {
protected:
    AccessibleControlsOfAlert() { QGuiApplication::setQuitOnLastWindowClosed(false); }

    /// The dialog that is shown.
    const QQuickWindow &alert()
    {
        const auto shown = [this]() -> QQuickWindow * {
            for (QWindow *window : QGuiApplication::topLevelWindows()) {
                if (window->isVisible() && window != &m_main.window())
                    return qobject_cast<QQuickWindow *>(window);
            }
            return nullptr;
        };
        waitUntil([&] { return shown() != nullptr; });
        return *shown();
    }
    QQuickItem &item(const QString &objectName) { return *QmlWindow::find(*alert().contentItem(), objectName); }
    QQuickItem &button(int index) { return item(QStringLiteral("button%1").arg(index)); }

    QmlWindow m_main{R"(PushButton { objectName: "beneath"; property int presses: 0; onClicked: presses += 1 })"};
    QtDialogs dialogs{m_main.engine()};
};

TEST_F(AccessibleControlsOfAlert, MissNothing)
{
    const auto answer =
        dialogs.alert({.messageText = "Erase?", .informativeText = "All goes.", .buttons = {"Yes", "No"}});

    expectControlsThatMissNothing(alert(), {"button0", "button1"});
    m_main.window().hide();
}

TEST_F(AccessibleControlsOfAlert, MissNothingInAPrompt)
{
    const auto answer = dialogs.textPrompt(
        {.alert = {.messageText = "Rename Volume", .buttons = {"Rename", "Cancel"}}, .placeholder = "New name"});

    expectControlsThatMissNothing(alert(), {"field", "button0", "button1"});
}

TEST_F(AccessibleControlsOfAlert, MissNothingInAPromptForAPassword)
{
    const auto answer =
        dialogs.securePrompt({.alert = {.messageText = "Administrator Access Required", .buttons = {"OK", "Cancel"}},
                              .placeholder = "Administrator Password"});

    expectControlsThatMissNothing(alert(), {"field", "button0", "button1"});
}

TEST_F(AccessibleControlsOfAlert, AnswerItByTheirActions)
{
    auto answer = dialogs.alert({.messageText = "Erase?", .buttons = {"Yes", "No"}});

    ASSERT_TRUE(pressByReader(button(1)));

    EXPECT_EQ(blockOn(std::move(answer), kPatience), 1U);
}

TEST_F(AccessibleControlsOfAlert, TakeATextThatAScreenReaderWrites)
{
    auto answer =
        dialogs.textPrompt({.alert = {.messageText = "Rename Volume", .buttons = {"Rename", "Cancel"}}, .text = "OLD"});

    writeByReader(item(QStringLiteral("field")), QStringLiteral("WORK"));
    ASSERT_TRUE(pressByReader(button(0)));

    EXPECT_EQ(blockOn(std::move(answer), kPatience), "WORK");
}

TEST_F(AccessibleControlsOfAlert, TakeAPasswordThatAScreenReaderWrites)
{
    auto answer = dialogs.securePrompt({.alert = {.messageText = "Administrator", .buttons = {"OK", "Cancel"}}});
    QQuickItem &field = item(QStringLiteral("field"));

    writeByReader(field, QStringLiteral("open sesame"));
    EXPECT_FALSE(field.property("text").toString().contains(QStringLiteral("sesame")));
    ASSERT_TRUE(pressByReader(button(0)));

    const std::optional<Secret> password = blockOn(std::move(answer), kPatience);
    ASSERT_TRUE(password);
    EXPECT_EQ(password->view(), "open sesame");
}

TEST_F(AccessibleControlsOfAlert, KeepThoseOfTheWindowBeneathOutOfReach)
{
    const QString beneath = QStringLiteral("beneath");
    auto answer = dialogs.alert({.messageText = "Erase?", .buttons = {"Yes", "No"}});
    QQuickItem &no = button(1);

    ASSERT_TRUE(pressByReader(m_main.item(beneath)));
    EXPECT_EQ(m_main.valueOf<int>(beneath, "presses"), 0);

    pressByReader(no);
    blockOn(std::move(answer), kPatience);
    pressByReader(m_main.item(beneath));
    EXPECT_EQ(m_main.valueOf<int>(beneath, "presses"), 1);
}

} // namespace
} // namespace brindle
