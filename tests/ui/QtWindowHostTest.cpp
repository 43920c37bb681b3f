#include "ui/QtWindowHost.h"

#include "ui/QmlWindow.h"
#include "ui/UserInterface.h"
#include "views/WindowContentFixture.h"

#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QQmlEngine>
#include <QScreen>

#include <gmock/gmock.h>

#include <deque>

namespace brindle {
namespace {

using testing::IsEmpty;
using WindowID = WindowHost::WindowID;

/// Windows with the content of the application; what they tell stands in heard.
class QtWindowHostTest : public WindowContentFixture, protected WindowHost::Delegate {
protected:
    QtWindowHostTest()
    {
        setUpEngine(m_engine);
        host.setMakeContent(
            [this] { return std::make_unique<WindowContentPresenter>(surroundings(eraseFlow, dialogs, host)); });
        QObject::connect(&host, &QtWindowHost::lastWindowClosed, [this] { heard.emplace_back("last window closed"); });
        QObject::connect(&host, &QtWindowHost::quitRequested, [this] { heard.emplace_back("quit"); });
        QObject::connect(&host, &WindowHost::screenParametersChanged, [this] { heard.emplace_back("screen"); });
    }

    bool windowShouldClose() override
    {
        heard.emplace_back("may it close?");
        return mayClose;
    }

    MainWindow &open(double height = 300)
    {
        const WindowID id = host.create(500, height);
        host.finishStyling(id, *this);
        host.makeKeyAndOrderFront(id);
        QCoreApplication::processEvents();
        return *host.find(id);
    }

    static void closeByUser(MainWindow &window)
    {
        window.close();
        QCoreApplication::processEvents();
    }

    [[nodiscard]] WindowID lastID() const { return host.windows().back().id; }

    std::vector<std::string> heard;
    bool mayClose = true;

private:
    QQmlEngine m_engine;

protected:
    QtWindowHost host{m_engine};
};

TEST_F(QtWindowHostTest, MakesAHiddenWindowWithItsContentAndWithoutATitleInIt)
{
    const WindowID id = host.create(500, 300);

    ASSERT_EQ(host.windows().size(), 1U);
    const WindowHost::Window window = host.windows().front();
    EXPECT_EQ(window.id, id);
    EXPECT_FALSE(window.isVisible);
    EXPECT_TRUE(window.hasContent);
    EXPECT_EQ(window.title, "");
    EXPECT_EQ(host.find(id)->title(), u"Brindle"); // which the desktop is told
    EXPECT_TRUE(host.find(id)->flags().testFlag(Qt::FramelessWindowHint));
}

TEST_F(QtWindowHostTest, GivesItsWindowsTheIconOfTheApplication)
{
    open();

    for (const int pixels : {16, 24, 32, 48, 64}) {
        const QImage image = QGuiApplication::windowIcon().pixmap(pixels).toImage();
        ASSERT_EQ(image.size(), QSize(pixels, pixels));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(image.pixelColor(pixels / 2, pixels / 2).alpha(), 255);
    }
}

TEST_F(QtWindowHostTest, ShowsAWindowAndLetsItsContentAppear)
{
    MainWindow &window = open(222);
    EXPECT_TRUE(host.windows().front().isVisible);

    manager().toggleExpanded("disk2");
    clock.advance(std::chrono::milliseconds(50));

    EXPECT_EQ(window.height(), 314); // 2 × 68 + 4 + 82, and 4 + 2 × (40 + 4) beneath the open row
}

TEST_F(QtWindowHostTest, KeepsTheUserFromResizingInEveryState)
{
    holdSourceAndDestinations(1);
    MainWindow &window = open(222);
    const auto expectFixed = [&](int height) {
        clock.advance(std::chrono::milliseconds(50));
        const QSize size(500, std::min(height, window.screen()->availableGeometry().height() * 9 / 10));
        EXPECT_EQ(window.size(), size);
        EXPECT_EQ(window.minimumSize(), size);
        EXPECT_EQ(window.maximumSize(), size);
    };
    expectFixed(222);

    std::deque<int> heights{428, 428, 578, 428, 428, 222};
    walkThroughACopy(window.content(), [&] {
        expectFixed(heights.front());
        heights.pop_front();
    });

    window.content().rows()->row(0).perform(RowAction::eraseDisk);
    expectFixed(578);
    eraseManager.finish(EraseOperationManager::Stage::failed, "");
    expectFixed(428);
    eraseManager.dismiss();
    expectFixed(222);
}

TEST_F(QtWindowHostTest, KeepsTheTopEdgeWhenTheHeightChanges)
{
    MainWindow &window = open(300);
    window.setPosition(40, 60);

    host.setHeight(lastID(), 450, false);
    EXPECT_EQ(window.position(), QPoint(40, 60));
    host.setHeight(lastID(), 150, false);
    EXPECT_EQ(window.position(), QPoint(40, 60));
}

TEST_F(QtWindowHostTest, MovesUpWhereItsLowerEdgeWouldGrowOutOfTheScreen)
{
    MainWindow &window = open(200);
    const int end = window.screen()->availableGeometry().bottom() + 1;
    window.setPosition(40, end - 300);

    host.setHeight(lastID(), 300, false);
    EXPECT_EQ(window.position(), QPoint(40, end - 300));
    host.setHeight(lastID(), 301, false);
    EXPECT_EQ(window.position(), QPoint(40, end - 301));
    window.setPosition(40, end - 50); // where the user wants it
    host.setHeight(lastID(), 200, false);
    EXPECT_EQ(window.position(), QPoint(40, end - 50));
}

TEST_F(QtWindowHostTest, CentresAWindowOnItsScreen)
{
    MainWindow &window = open(300);
    window.setPosition(0, 0);

    host.center(lastID());

    const QPoint offset = window.geometry().center() - window.screen()->availableGeometry().center();
    EXPECT_LE(offset.manhattanLength(), 2);
}

TEST_F(QtWindowHostTest, ClosesAWindowWithoutAskingAnybody)
{
    open();

    host.close(lastID());

    EXPECT_THAT(host.windows(), IsEmpty());
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(QtWindowHostTest, AsksItsDelegateBeforeTheUserClosesAWindow)
{
    mayClose = false;
    MainWindow &window = open();

    closeByUser(window);

    EXPECT_THAT(heard, testing::ElementsAre("may it close?"));
    EXPECT_TRUE(host.windows().front().isVisible);
}

TEST_F(QtWindowHostTest, TellsOfTheLastWindowThatTheUserCloses)
{
    MainWindow &first = open();
    MainWindow &second = open();

    closeByUser(first);
    EXPECT_THAT(heard, testing::ElementsAre("may it close?"));
    EXPECT_EQ(host.windows().size(), 1U);
    closeByUser(second);

    EXPECT_THAT(heard, testing::ElementsAre("may it close?", "may it close?", "last window closed"));
    EXPECT_THAT(host.windows(), IsEmpty());
}

TEST_F(QtWindowHostTest, HandsOnThatTheUserWantsToQuit)
{
    open().content().quit();

    EXPECT_THAT(heard, testing::ElementsAre("quit"));
}

TEST_F(QtWindowHostTest, PaintsAllWindowsAndThoseToComeInTheScheme)
{
    const auto colorOfName = [](MainWindow &window) { return window.content().rows()->row(0).content()->name().color; };
    MainWindow &before = open();

    host.setColorScheme(ColorScheme::dark);

    EXPECT_EQ(colorOfName(before), u"white");
    EXPECT_EQ(colorOfName(open()), u"white");
}

TEST_F(QtWindowHostTest, DrawsAWindowAgainOnceItIsToldTo)
{
    MainWindow &window = open();
    (void)window.grabWindow();
    QmlWindow::settle();
    int frames = 0;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&frames] { ++frames; });

    host.redraw(lastID());

    waitUntil([&frames] { return frames > 0; });
}

TEST_F(QtWindowHostTest, GivesTheKeyboardToTheWindowThatIsPutInFront)
{
    MainWindow &first = open();
    const WindowID id = lastID();
    const MainWindow &second = open();
    ASSERT_EQ(QGuiApplication::focusWindow(), &second);

    host.makeKeyAndOrderFront(id);
    QCoreApplication::processEvents();

    EXPECT_EQ(QGuiApplication::focusWindow(), &first);
}

TEST_F(QtWindowHostTest, TellsOfChangesOfTheScreens)
{
    QScreen *screen = QGuiApplication::primaryScreen();
    ASSERT_EQ(host.visibleScreenHeight(), screen->availableGeometry().height());

    Q_EMIT screen->availableGeometryChanged({});
    Q_EMIT screen->logicalDotsPerInchChanged(96);
    Q_EMIT qGuiApp->primaryScreenChanged(screen);

    EXPECT_THAT(heard, testing::ElementsAre("screen", "screen", "screen"));
}

TEST_F(QtWindowHostTest, PassesOverWhatIsAskedOfAWindowThatHasGone)
{
    open();
    const WindowID gone = lastID();
    host.close(gone);

    host.finishStyling(gone, *this);
    host.center(gone);
    host.makeKeyAndOrderFront(gone);
    host.redraw(gone);
    host.setHeight(gone, 400, true);
    host.close(gone);

    EXPECT_EQ(host.find(gone), nullptr);
    EXPECT_THAT(host.windows(), IsEmpty());
    EXPECT_NE(host.create(500, 300), gone);
}

} // namespace
} // namespace brindle
