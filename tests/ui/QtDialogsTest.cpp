#include "ui/QtDialogs.h"

#include "ui/Pictures.h"
#include "ui/QmlWindow.h"
#include "ui/UserInterface.h"

#include "base/BlockOn.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/WaitUntil.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QtDialogsTest : public testing::Test {
protected:
    QtDialogsTest() { QGuiApplication::setQuitOnLastWindowClosed(false); } // which would end the tests' event loop

    /// The dialog's windows that are shown, in no order.
    std::vector<QQuickWindow *> alertWindows()
    {
        std::vector<QQuickWindow *> windows;
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            auto *quickWindow = qobject_cast<QQuickWindow *>(window);
            if (quickWindow && window->isVisible() && window != &main.window())
                windows.push_back(quickWindow);
        }
        return windows;
    }
    QQuickWindow &alertWindow()
    {
        waitUntil([this] { return !alertWindows().empty(); });
        return *alertWindows().at(0);
    }
    static QQuickItem *find(QQuickWindow &window, const QString &objectName)
    {
        return QmlWindow::find(*window.contentItem(), objectName);
    }
    static std::string textOf(QQuickWindow &window, const QString &objectName)
    {
        QQuickItem *item = find(window, objectName);
        return item ? item->property("text").toString().toStdString() : "no item";
    }
    static void press(QQuickWindow &window, int key, const QString &text = {})
    {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier, text);
            QCoreApplication::sendEvent(&window, &event);
        }
        QmlWindow::settle();
    }
    static void type(QQuickWindow &window, const QString &text)
    {
        for (const QChar character : text)
            press(window, character.toUpper().unicode(), character);
    }
    static void click(QQuickWindow &window, const QString &objectName)
    {
        QQuickItem *item = find(window, objectName);
        ASSERT_TRUE(item);
        (void)window.grabWindow(); // lays it out
        const QPointF place = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, place, window.mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&window, &event);
        }
        QmlWindow::settle();
    }

    LogCapture log;
    QmlWindow main{"Item {}"};
    QtDialogs dialogs{main.engine()};
    Alert question{.messageText = "Erase?",
                   .informativeText = "All of \"<b>Stick</b>\" goes.",
                   .buttons = {"Yes", "Perhaps", "No"}};
};

TEST_F(QtDialogsTest, ShowsAnAlertOverTheWindowInFront)
{
    auto answer = dialogs.alert(question);
    QQuickWindow &window = alertWindow();

    EXPECT_EQ(window.transientParent(), &main.window());
    EXPECT_EQ(window.modality(), Qt::WindowModal);
    EXPECT_EQ(window.title(), u"Erase?");
    EXPECT_EQ(textOf(window, QStringLiteral("messageText")), "Erase?");
    EXPECT_EQ(textOf(window, QStringLiteral("informativeText")), "All of \"<b>Stick</b>\" goes.");
    EXPECT_EQ(find(window, QStringLiteral("informativeText"))->property("textFormat").toInt(), Qt::PlainText);
    EXPECT_EQ(window.activeFocusItem()->objectName(), u"button0");
    EXPECT_FALSE(answer.isReady());
    click(window, QStringLiteral("button1"));

    EXPECT_EQ(blockOn(std::move(answer), kPatience), 1U);
    EXPECT_THAT(alertWindows(), IsEmpty());
}

TEST_F(QtDialogsTest, AsksTheDesktopForTheFrameOfADialogThatCanOnlyBeClosed)
{
    auto answer = dialogs.alert(question);
    QQuickWindow &window = alertWindow();

    EXPECT_EQ(window.type(), Qt::Dialog);
    for (const Qt::WindowType button : {Qt::WindowMinimizeButtonHint, Qt::WindowMaximizeButtonHint})
        EXPECT_FALSE(window.flags().testFlag(button));
    EXPECT_TRUE(window.flags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_TRUE(window.flags().testFlag(Qt::CustomizeWindowHint)) << "the desktop would add its own buttons";
    EXPECT_EQ(window.minimumSize(), window.maximumSize());

    window.close();
    EXPECT_EQ(blockOn(std::move(answer), kPatience), 2U);
}

struct AnswerCase {
    const char *name;
    std::function<void(QQuickWindow &)> answer;
    std::size_t button;
};

class AlertAnswer : public QtDialogsTest, public testing::WithParamInterface<AnswerCase> {
public:
    static void pressKey(QQuickWindow &window, int key) { press(window, key); }
};

INSTANTIATE_TEST_SUITE_P(
    Of, AlertAnswer,
    testing::Values(
        AnswerCase{"Return", [](QQuickWindow &window) { AlertAnswer::pressKey(window, Qt::Key_Return); }, 0},
        AnswerCase{"Space", [](QQuickWindow &window) { AlertAnswer::pressKey(window, Qt::Key_Space); }, 0},
        AnswerCase{"Escape", [](QQuickWindow &window) { AlertAnswer::pressKey(window, Qt::Key_Escape); }, 2},
        AnswerCase{"WindowClosed", [](QQuickWindow &window) { window.close(); }, 2},
        AnswerCase{"ParentClosed", [](QQuickWindow &window) { window.transientParent()->close(); }, 2}),
    [](const auto &row) { return row.param.name; });

TEST_P(AlertAnswer, IsTheButtonThatItStandsFor)
{
    auto answer = dialogs.alert(question);

    GetParam().answer(alertWindow());

    EXPECT_EQ(blockOn(std::move(answer), kPatience), GetParam().button);
    EXPECT_THAT(alertWindows(), IsEmpty());
}

TEST_F(QtDialogsTest, ShowsOneDialogAtATimeInTheirOrder)
{
    auto first = dialogs.alert({.messageText = "First"});
    auto second = dialogs.alert({.messageText = "Second"});
    EXPECT_EQ(alertWindow().title(), u"First");
    QmlWindow::settle();
    EXPECT_EQ(alertWindows().size(), 1U);

    press(alertWindow(), Qt::Key_Return);
    EXPECT_EQ(blockOn(std::move(first), kPatience), 0U);

    EXPECT_EQ(alertWindow().title(), u"Second");
    EXPECT_EQ(alertWindow().transientParent(), &main.window());
    press(alertWindow(), Qt::Key_Return);
    EXPECT_EQ(blockOn(std::move(second), kPatience), 0U);
}

TEST_F(QtDialogsTest, GivesTheTextThatWasTypedOverTheProposal)
{
    auto answer = dialogs.textPrompt({.alert = {.messageText = "Rename", .buttons = {"Rename", "Cancel"}},
                                      .placeholder = "New name",
                                      .text = "OLD"});
    QQuickWindow &window = alertWindow();
    EXPECT_EQ(window.activeFocusItem()->objectName(), u"field");
    EXPECT_EQ(textOf(window, QStringLiteral("field")), "OLD");

    type(window, QStringLiteral("NEW"));
    press(window, Qt::Key_Return);

    EXPECT_EQ(blockOn(std::move(answer), kPatience), "NEW");
}

TEST_F(QtDialogsTest, GivesNoTextWhereThePromptIsCancelled)
{
    auto answer = dialogs.textPrompt({.alert = {.buttons = {"Rename", "Cancel"}}, .text = "OLD"});

    press(alertWindow(), Qt::Key_Escape);

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

TEST_F(QtDialogsTest, GivesThePasswordThatWasTypedAndShowsAndLogsItNowhere)
{
    auto answer =
        dialogs.securePrompt({.alert = {.messageText = "Administrator Access Required", .buttons = {"OK", "Cancel"}},
                              .placeholder = "Administrator Password"});
    QQuickWindow &window = alertWindow();
    QQuickItem *field = find(window, QStringLiteral("field"));
    ASSERT_TRUE(field);
    EXPECT_EQ(field->property("placeholderText"), QStringLiteral("Administrator Password"));

    type(window, QStringLiteral("open sesame"));
    EXPECT_FALSE(field->property("text").toString().contains(u'o'));
    EXPECT_FALSE(field->property("displayText").toString().contains(u'o'));
    press(window, Qt::Key_Return);
    const std::optional<Secret> password = blockOn(std::move(answer), kPatience);

    ASSERT_TRUE(password);
    EXPECT_EQ(password->view(), "open sesame");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(QtDialogsTest, GivesAnEmptyPasswordWhereNothingWasTyped)
{
    auto answer = dialogs.securePrompt({.alert = {.buttons = {"OK", "Cancel"}}});

    click(alertWindow(), QStringLiteral("button0"));

    EXPECT_EQ(blockOn(std::move(answer), kPatience), Secret());
}

TEST_F(QtDialogsTest, GivesNoPasswordWhereThePromptIsCancelled)
{
    auto answer = dialogs.securePrompt({.alert = {.buttons = {"OK", "Cancel"}}});
    type(alertWindow(), QStringLiteral("open sesame"));

    click(alertWindow(), QStringLiteral("button1"));

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

class DialogPictures : public QtDialogsTest, public testing::WithParamInterface<ColorScheme> {
protected:
    /// The picture of the dialog that is shown, which is then closed.
    void expectPicture(const std::string &name)
    {
        QQuickWindow &window = alertWindow();
        setColorScheme(main.engine(), GetParam());
        keepPicture(window.grabWindow(), name + (GetParam() == ColorScheme::dark ? "-dark" : "-light"));
        const QRectF frame(QPointF(), window.size());
        ASSERT_TRUE(find(window, QStringLiteral("button0")));
        for (const QString &button : {QStringLiteral("button0"), QStringLiteral("button1")}) {
            if (const QQuickItem *item = find(window, button))
                EXPECT_TRUE(frame.contains(item->mapRectToScene(QRectF(0, 0, item->width(), item->height()))));
        }
        setColorScheme(main.engine(), ColorScheme::light);
        press(window, Qt::Key_Escape);
    }
};

INSTANTIATE_TEST_SUITE_P(Schemes, DialogPictures, testing::Values(ColorScheme::light, ColorScheme::dark),
                         [](const auto &row) { return row.param == ColorScheme::dark ? "Dark" : "Light"; });

TEST_P(DialogPictures, ShowASecurePrompt)
{
    auto answer = dialogs.securePrompt(
        {.alert = {.messageText = "Administrator Access Required",
                   .informativeText = "Brindle needs administrator privileges to mount/unmount EFI partitions. Please "
                                      "enter your administrator password.",
                   .style = AlertStyle::informational,
                   .buttons = {"OK", "Cancel"}},
         .placeholder = "Administrator Password"});

    expectPicture("prompt-password");

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

TEST_P(DialogPictures, ShowATextPromptWithALongName)
{
    auto answer = dialogs.textPrompt(
        {.alert = {.messageText = "Rename EFI Partition",
                   .informativeText = "Enter a new name for the EFI partition on A Stick with a Name That Its Maker "
                                      "Has Made Far Too Long for Any Window, Revision 12B.",
                   .style = AlertStyle::informational,
                   .buttons = {"Rename", "Cancel"}},
         .placeholder = "New name",
         .text = "BOOT"});

    expectPicture("prompt-rename");

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

TEST_P(DialogPictures, ShowAWarning)
{
    auto answer = dialogs.alert(
        {.messageText = "Administrator Password Required",
         .informativeText = "Brindle requires administrator privileges to mount/unmount EFI partitions. You can set "
                            "this up later in Settings.",
         .style = AlertStyle::warning,
         .buttons = {"OK"}});

    expectPicture("alert-warning");

    EXPECT_EQ(blockOn(std::move(answer), kPatience), 0U);
}

TEST_P(DialogPictures, ShowAnAlertLongerThanTheScreen)
{
    std::string lines;
    for (int line = 1; line <= 100; ++line)
        lines += "Attribute " + std::to_string(line) + ": 100\n";
    auto answer = dialogs.alert({.messageText = "SMART Details", .informativeText = lines, .buttons = {"OK", "Copy"}});

    expectPicture("alert-long");

    EXPECT_EQ(blockOn(std::move(answer), kPatience), 1U);
}

class SavePanelTest : public QtDialogsTest {
protected:
    SavePanelTest() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    QFileDialog &panel()
    {
        const auto find = [] {
            QFileDialog *found = nullptr;
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (auto *dialog = qobject_cast<QFileDialog *>(widget); dialog && dialog->isVisible())
                    found = dialog;
            }
            return found;
        };
        waitUntil([&] { return find() != nullptr; });
        return *find();
    }

    QTemporaryDir folder;
    SavePanel request{.title = "Save EFI Backup",
                      .message = "Choose where to save the backup of the existing EFI folder",
                      .proposedName = "EFI_Stick_disk2s1",
                      .startFolder = folder.path().toStdString()};
};

TEST_F(SavePanelTest, ProposesTheNameInTheFolder)
{
    auto answer = dialogs.savePanel(request);
    QFileDialog &shown = panel();
    EXPECT_EQ(shown.windowTitle(), u"Save EFI Backup");
    EXPECT_EQ(shown.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(shown.windowHandle()->transientParent(), &main.window());
    EXPECT_EQ(shown.windowModality(), Qt::WindowModal);
    EXPECT_TRUE(shown.findChild<QLabel *>(QStringLiteral("message")));

    QMetaObject::invokeMethod(&shown, "accept");

    EXPECT_EQ(blockOn(std::move(answer), kPatience), request.startFolder + "/EFI_Stick_disk2s1");
}

TEST_F(SavePanelTest, ObeysNothingInANameOfADisk)
{
    const QString name = QStringLiteral("<b>x<b> R&amp;D &Mount");
    request.title = request.message = request.proposedName = name.toStdString();
    auto answer = dialogs.savePanel(request);
    QFileDialog &shown = panel();

    EXPECT_EQ(shown.windowTitle(), name);
    const auto *message = shown.findChild<QLabel *>(QStringLiteral("message"));
    EXPECT_EQ(message->text(), name);
    EXPECT_EQ(message->textFormat(), Qt::PlainText);
    EXPECT_FALSE(message->buddy()) << "a mark would be its shortcut";
    EXPECT_EQ(shown.findChild<QLineEdit *>()->text(), name);

    QMetaObject::invokeMethod(&shown, "accept");
    EXPECT_EQ(blockOn(std::move(answer), kPatience), request.startFolder + "/" + name.toStdString());
}

TEST_F(SavePanelTest, GivesNothingWhereItIsCancelled)
{
    auto answer = dialogs.savePanel(request);

    panel().reject();

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

TEST_F(SavePanelTest, GivesNothingWhereTheWindowBeneathIsClosed)
{
    auto answer = dialogs.savePanel(request);
    (void)panel();

    main.window().close();

    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

TEST_F(SavePanelTest, BeginsAtHomeWhereTheFolderIsNotThere)
{
    request.startFolder = "/nonexistent/Desktop";
    auto answer = dialogs.savePanel(request);

    EXPECT_EQ(panel().directory().path(), QDir::homePath());

    panel().reject();
    EXPECT_EQ(blockOn(std::move(answer), kPatience), std::nullopt);
}

} // namespace
} // namespace brindle
