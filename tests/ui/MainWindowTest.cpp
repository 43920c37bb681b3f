#include "ui/MainWindow.h"

#include "ui/Menus.h"
#include "ui/WindowBridge.h"
#include "views/WindowContentFixture.h"

#include <QMouseEvent>
#include <QPointingDevice>

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::Contains;
using testing::Not;

/// The window with one stick in its list, used as the desktops do: by events.
class MainWindowTest : public WindowContentFixture {
protected:
    MainWindow &window()
    {
        if (!m_window) {
            hold({externalDisk("disk2", {{.identifier = "disk2s1"}})});
            tools.answer(diskutil("info disk2s1"),
                         fmt::format("   Not applicable\n   Mount Point: {}\n", mountPoint()));
            std::filesystem::create_directories(mountPoint());
            answerSudo("mount disk2s1");
            setUpEngine(m_engine);
            m_window.emplace(m_engine,
                             std::make_unique<WindowContentPresenter>(surroundings(eraseFlow, dialogs, windowHost)),
                             QSize(500, 300));
            m_window->show();
            m_window->content().appear();
            m_window->requestActivate();
            QmlWindow::settle();
        }
        return *m_window;
    }

    /// As Qt's plugin for Wayland tells of a mouse.
    void mouse(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, place, place, place, button, buttons, Qt::NoModifier, &m_touchPad);
        event.setTimestamp(m_milliseconds += 10);
        QCoreApplication::sendEvent(&window(), &event);
        QmlWindow::settle();
    }

    void click(QPointF place, Qt::MouseButton button)
    {
        m_milliseconds += 1000; // two clicks at one place are no double click
        mouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton);
        mouse(QEvent::MouseButtonPress, place, button, button);
        mouse(QEvent::MouseButtonRelease, place, button, Qt::NoButton);
    }

    void press(Qt::Key key)
    {
        QTest::keyClick(&window(), key);
        QmlWindow::settle();
    }

    QPointF middleOf(const char *objectName)
    {
        (void)window().grabWindow(); // lays it out
        const QQuickItem *item = QmlWindow::find(*window().rootObject(), QString::fromLatin1(objectName));
        if (!item) {
            ADD_FAILURE() << "no visible item " << objectName;
            return {};
        }
        return item->mapToScene({item->width() / 2, item->height() / 2});
    }

    std::string focused()
    {
        const QQuickItem *item = window().activeFocusItem();
        return item ? item->objectName().toStdString() : "";
    }

    static void closeOpenMenu()
    {
        if (QMenu *menu = openMenu())
            menu->close();
        QmlWindow::settle();
    }

    void setIsComposited(bool isComposited)
    {
        m_engine.singletonInstance<WindowBridge *>(qmlTypeId("Brindle", 1, 0, "WindowBridge"))
            ->setIsComposited(isComposited);
    }

private:
    QQmlEngine m_engine;
    std::optional<MainWindow> m_window;
    quint64 m_milliseconds = 1000;
    QPointingDevice m_touchPad{QStringLiteral("touchpad"),
                               1,
                               QInputDevice::DeviceType::TouchPad,
                               QPointingDevice::PointerType::Finger,
                               QInputDevice::Capability::Position,
                               10,
                               0};
};

TEST_F(MainWindowTest, TellsTheButtonsOfAMouseApartThatCountsAsATouchPad)
{
    click(middleOf("disk2"), Qt::LeftButton);
    EXPECT_FALSE(openMenu());
    EXPECT_EQ(focused(), "disk2");

    click(middleOf("disk2"), Qt::RightButton);
    EXPECT_TRUE(openMenu());
    closeOpenMenu();
}

TEST_F(MainWindowTest, PressesNoButtonOfARowByTheRightButton)
{
    click(middleOf("mountButton"), Qt::RightButton);

    EXPECT_TRUE(openMenu());
    closeOpenMenu();
    EXPECT_THAT(journal, Not(Contains(sudo("mount disk2s1"))));
    click(middleOf("mountButton"), Qt::LeftButton);
    settle();
    EXPECT_THAT(journal, Contains(sudo("mount disk2s1")));
}

TEST_F(MainWindowTest, LosesNoClickAfterTheDesktopHasMovedTheWindow)
{
    const QPointF place = middleOf("header");
    mouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, place + QPointF(0, 15), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, place + QPointF(0, 30), Qt::NoButton, Qt::LeftButton);
    window().rootObject()->forceActiveFocus();
    ASSERT_NE(focused(), "disk2");

    click(middleOf("disk2"), Qt::LeftButton); // the desktop has kept the release

    EXPECT_EQ(focused(), "disk2");
}

TEST_F(MainWindowTest, HandsTheKeysToTheOpenMenuWhereTheyComeToTheWindow)
{
    click(middleOf("disk2"), Qt::RightButton);
    QMenu *menu = openMenu();
    ASSERT_TRUE(menu);

    press(Qt::Key_F10); // opens the application's menu else
    EXPECT_EQ(openMenu(), menu);
    press(Qt::Key_Down);
    ASSERT_TRUE(menu->activeAction());
    EXPECT_EQ(menu->activeAction()->text(), u"Mount EFI");
    press(Qt::Key_Return);
    settle();

    EXPECT_FALSE(openMenu());
    EXPECT_THAT(journal, Contains(sudo("mount disk2s1")));
}

TEST_F(MainWindowTest, ClosesTheOpenMenuByAPressBesideIt)
{
    click(middleOf("disk2"), Qt::RightButton);
    ASSERT_TRUE(openMenu());

    click(middleOf("mountButton"), Qt::LeftButton);

    EXPECT_FALSE(openMenu());
    EXPECT_THAT(journal, Not(Contains(sudo("mount disk2s1"))));
}

TEST_F(MainWindowTest, HasRoundCornersOverNothingAsLongAsTheDesktopBlendsWindowsAndElseAThinLine)
{
    EXPECT_EQ(window().color().alpha(), 0);
    EXPECT_GT(window().requestedFormat().alphaBufferSize(), 0);
    const QQuickItem &frame = *window().rootObject();
    const auto inside = frame.property("color").value<QColor>();
    for (const bool isComposited : {false, true, false}) {
        setIsComposited(isComposited);

        const QImage picture = window().grabWindow();
        EXPECT_EQ(frame.property("radius").toDouble(), isComposited ? 10 : 0);
        EXPECT_EQ(picture.pixelColor(0, 0) == picture.pixelColor(250, 0), !isComposited);
        const auto [right, bottom] = std::pair(picture.width() - 1, picture.height() - 1);
        for (const QPoint edge : {QPoint(250, 0), QPoint(right, 150), QPoint(250, bottom), QPoint(0, 150)})
            EXPECT_EQ(picture.pixelColor(edge) == inside, isComposited) << edge.x() << ", " << edge.y();
        for (const QPoint next : {QPoint(250, 1), QPoint(right - 1, 150), QPoint(250, bottom - 1), QPoint(1, 150)})
            EXPECT_EQ(picture.pixelColor(next), inside) << next.x() << ", " << next.y();
    }
}

TEST_F(MainWindowTest, LeavesTheSecondClickOfTwoAlone)
{
    const QPointF place = middleOf("disk2");
    click(place, Qt::LeftButton);
    mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonDblClick, place, Qt::LeftButton, Qt::LeftButton);
    settle();
    EXPECT_THAT(journal, Not(Contains(sudo("mount disk2s1")))) << "as long as the button is down";

    mouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
    settle();

    EXPECT_THAT(journal, Contains(sudo("mount disk2s1")));
}

} // namespace
} // namespace brindle
