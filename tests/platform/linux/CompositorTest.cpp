#include "platform/linux/Compositor.h"

#include "support/Patience.h"
#include "support/WaitUntil.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>

namespace brindle {
namespace {

/// A process without X11 until a screen is started.
class CompositorTest : public testing::Test {
protected:
    CompositorTest() { qunsetenv("DISPLAY"); }
    ~CompositorTest() override
    {
        endScreen();
        qunsetenv("DISPLAY");
    }

    void startScreen()
    {
        screen.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                              QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        ASSERT_TRUE(screen.waitForReadyRead(kPatienceMilliseconds)) << screen.readAllStandardError().toStdString();
        qputenv("DISPLAY", ":" + screen.readLine().trimmed());
    }

    void endScreen()
    {
        screen.terminate();
        EXPECT_TRUE(screen.state() == QProcess::NotRunning || screen.waitForFinished(kPatienceMilliseconds));
    }

    QProcess screen;
};

/// What a compositing manager holds as long as it runs.
class Selection {
public:
    Selection()
    {
        constexpr std::string_view kName = "_NET_WM_CM_S0";
        xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
        const xcb_window_t window = xcb_generate_id(m_connection.get());
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, screen->root_visual, 0, nullptr);
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(m_connection.get(),
                                  xcb_intern_atom(m_connection.get(), 0, kName.size(), kName.data()), nullptr),
            &std::free);
        const xcb_void_cookie_t owning =
            xcb_set_selection_owner_checked(m_connection.get(), window, atom->atom, XCB_CURRENT_TIME);
        EXPECT_EQ(xcb_request_check(m_connection.get(), owning), nullptr);
    }

private:
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection{xcb_connect(nullptr, nullptr),
                                                                              &xcb_disconnect};
};

TEST_F(CompositorTest, AlwaysRunsUnderWayland)
{
    EXPECT_TRUE(Compositor("wayland").isRunning());
    EXPECT_TRUE(Compositor("wayland-egl").isRunning());
}

TEST_F(CompositorTest, RunsNowhereWithoutAScreen)
{
    EXPECT_FALSE(Compositor("xcb").isRunning());
    EXPECT_FALSE(Compositor("offscreen").isRunning());
}

TEST_F(CompositorTest, RunsAsLongAsOneHoldsTheSelectionOfTheScreen)
{
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
        GTEST_SKIP() << "there is no Xvfb";
    startScreen();
    std::optional<Selection> held(std::in_place);
    Compositor compositor("xcb");
    int changes = 0;
    QObject::connect(&compositor, &Compositor::isRunningChanged, [&changes] { ++changes; });
    EXPECT_TRUE(compositor.isRunning());

    held.reset();
    waitUntil([&] { return changes == 1; });
    EXPECT_FALSE(compositor.isRunning());
    held.emplace();
    waitUntil([&] { return changes == 2; });
    EXPECT_TRUE(compositor.isRunning());
}

TEST_F(CompositorTest, StandsStillOnceTheScreenHasGone)
{
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
        GTEST_SKIP() << "there is no Xvfb";
    startScreen();
    const Compositor compositor("xcb");
    EXPECT_FALSE(compositor.isRunning());

    endScreen();

    waitUntil([] { return !QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents); });
}

} // namespace
} // namespace brindle
