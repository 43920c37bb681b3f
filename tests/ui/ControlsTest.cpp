#include "ui/QmlWindow.h"
#include "ui/ReadAloud.h"

namespace brindle {
namespace {

TEST(PushButton, IsPressedByPointerSpaceAndReturn)
{
    QmlWindow window(R"(PushButton { objectName: "button"; property int presses: 0; text: "Copy EFI"
                                     onClicked: presses += 1; focus: true })");
    window.click(QStringLiteral("button"));
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 1);
    window.press(Qt::Key_Space);
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 2);
    window.press(Qt::Key_Return);
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 3);
}

TEST(PushButton, IsNotPressedByReturnWhereThatDestroys)
{
    QmlWindow window(R"(PushButton { objectName: "button"; property int presses: 0; text: "Erase"; focus: true
                                     kind: PushButton.Kind.Destructive; returnPresses: false; onClicked: presses += 1 })");

    window.press(Qt::Key_Return);
    window.press(Qt::Key_Enter);
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 0);
    window.press(Qt::Key_Space);
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 1);
}

TEST(PushButton, DoesNothingWhileItIsDisabled)
{
    QmlWindow window(R"(PushButton { objectName: "button"; property int presses: 0; text: "Copy EFI"; enabled: false
                                     onClicked: presses += 1; focus: true })");

    window.click(QStringLiteral("button"));
    window.press(Qt::Key_Space);

    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 0);
}

TEST(PushButton, IsPressedOnceByAScreenReader)
{
    QmlWindow window(R"(PushButton { objectName: "button"; property int presses: 0; text: "Copy EFI"
                                     onClicked: presses += 1 })");

    ASSERT_TRUE(pressByReader(window.item(QStringLiteral("button"))));

    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 1);
}

TEST(IconButton, IsReadAloudByItsTip)
{
    QmlWindow window(R"(IconButton { objectName: "button"; symbol: "eject"; tip: "Eject disk" })");

    EXPECT_EQ(readAloud(window.item(QStringLiteral("button"))), (ReadAloud{QAccessible::Button, "Eject disk"}));
}

TEST(IconButton, IsPressedByPointerAndKeys)
{
    QmlWindow window(R"(IconButton { objectName: "button"; symbol: "eject"; tip: "Eject disk"; property int presses: 0
                                     onClicked: presses += 1; focus: true })");

    window.click(QStringLiteral("button"));
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 1);
    window.press(Qt::Key_Space);
    window.press(Qt::Key_Return);
    EXPECT_EQ(window.valueOf<int>(QStringLiteral("button"), "presses"), 3);
}

TEST(CheckBox, IsCheckedByPointerAndSpaceAndByAScreenReader)
{
    QmlWindow window(R"(CheckBox { objectName: "box"; text: "Overwrite"; focus: true })");

    window.click(QStringLiteral("box"));
    EXPECT_TRUE(window.valueOf<bool>(QStringLiteral("box"), "checked"));
    window.press(Qt::Key_Space);
    EXPECT_FALSE(window.valueOf<bool>(QStringLiteral("box"), "checked"));

    ASSERT_TRUE(pressByReader(window.item(QStringLiteral("box"))));
    EXPECT_TRUE(window.valueOf<bool>(QStringLiteral("box"), "checked"));
}

TEST(InputField, TakesWhatIsTypedAndTellsItsPlaceholderAloud)
{
    QmlWindow window(R"(InputField { objectName: "field"; placeholderText: "New name"; focus: true })");

    window.type(QStringLiteral("work"));

    EXPECT_EQ(window.textOf(QStringLiteral("field")), "work");
    EXPECT_EQ(readAloud(window.item(QStringLiteral("field"))), (ReadAloud{QAccessible::EditableText, "New name"}));
}

TEST(ProgressBar, IsReadAloudInWholePerCent)
{
    QmlWindow window(R"(ProgressBar { objectName: "bar"; value: 0.429 })");

    EXPECT_EQ(readAloud(window.item(QStringLiteral("bar"))), (ReadAloud{QAccessible::ProgressBar, "42%"}));
}

TEST(ScrollFrame, ScrollsToWhatIsRevealed)
{
    QmlWindow window(R"(ScrollFrame {
                            id: frame
                            objectName: "frame"
                            width: 500
                            height: 100
                            function showLast() { reveal(last); }
                            Column {
                                Rectangle { width: 10; height: 300 }
                                Rectangle { id: last; width: 10; height: 50 }
                            }
                        })");

    QMetaObject::invokeMethod(&window.root(), "showLast");

    EXPECT_EQ(window.valueOf<double>(QStringLiteral("frame"), "contentY"), 250);
}

TEST(ScrollFrame, ShowsAtItsRightHowMuchOfItIsInSight)
{
    QmlWindow window(R"(ScrollFrame {
                            width: 500
                            height: 100
                            Rectangle { width: 10; height: 300 }
                        })");

    const QQuickItem &bar = window.item(QStringLiteral("scrollBar"));

    EXPECT_EQ(bar.mapRectToScene(QRectF(0, 0, bar.width(), bar.height())), QRectF(492, 0, 8, 100));
    window.root().setProperty("contentY", 200);
    EXPECT_EQ(bar.mapToScene(QPointF()), QPointF(492, 0));
}

TEST(ScrollFrame, ShowsNoBarWhereAllIsInSight)
{
    QmlWindow window("ScrollFrame { width: 500; height: 100; Rectangle { width: 10; height: 100 } }");

    EXPECT_FALSE(window.shows(QStringLiteral("scrollBar")));
}

TEST(ScrollFrame, LeavesAirAroundWhatIsRevealed)
{
    QmlWindow window(R"(ScrollFrame {
                            id: frame
                            objectName: "frame"
                            width: 500
                            height: 100
                            function showMiddle() { reveal(middle); }
                            Column {
                                Rectangle { width: 10; height: 300 }
                                Rectangle { id: middle; width: 10; height: 50 }
                                Rectangle { width: 10; height: 300 }
                            }
                        })");

    QMetaObject::invokeMethod(&window.root(), "showMiddle");

    EXPECT_EQ(window.valueOf<double>(QStringLiteral("frame"), "contentY"), 262); // 300 + 50 + 12 - 100
}

TEST(PushButton, HasTheFontOfTheTextAroundIt)
{
    QmlWindow window(R"(Column {
                            PushButton { objectName: "button"; text: "Copy EFI" }
                            CheckBox { objectName: "box"; text: "Overwrite" }
                            InputField { objectName: "field"; text: "WORK" }
                            PlainText { objectName: "text"; text: "Copy EFI" }
                        })");

    const auto family = [&](const char *item) {
        return window.valueOf<QFont>(QString::fromLatin1(item), "font").family().toStdString();
    };

    for (const char *control : {"button", "box", "field"})
        EXPECT_EQ(family(control), family("text")) << control;
}

TEST(PlainText, ObeysNoMarkup)
{
    QmlWindow window(R"(PlainText { objectName: "text"; text: "<b>Stick</b>" })");

    EXPECT_EQ(window.valueOf<int>(QStringLiteral("text"), "textFormat"), Qt::PlainText);
}

} // namespace
} // namespace brindle
