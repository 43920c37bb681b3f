#include "ui/QtWindowHost.h"

#include "ui/UserInterface.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQmlEngine>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

constexpr QSize kAnySize{500, 150}; // until somebody asks for the window

} // namespace

QtWindowHost::QtWindowHost(QQmlEngine &engine) : m_engine(engine)
{
    for (QScreen *screen : QGuiApplication::screens())
        observeScreen(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        observeScreen(screen);
        Q_EMIT screenParametersChanged();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &WindowHost::screenParametersChanged);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &WindowHost::screenParametersChanged);
}

QtWindowHost::~QtWindowHost() = default;

void QtWindowHost::observeScreen(QScreen *screen)
{
    connect(screen, &QScreen::availableGeometryChanged, this, &WindowHost::screenParametersChanged);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &WindowHost::screenParametersChanged);
}

void QtWindowHost::setMakeContent(MakeContent makeContent)
{
    m_prepared.reset();
    m_makeContent = std::move(makeContent);
}

void QtWindowHost::prepare()
{
    if (m_prepared)
        return;
    if (QGuiApplication::windowIcon().isNull())
        QGuiApplication::setWindowIcon(applicationIcon());
    m_prepared = makeWindow();
    m_prepared->create(); // on the screen's side, still hidden
}

void QtWindowHost::setColorScheme(ColorScheme scheme)
{
    m_colorScheme = scheme;
    brindle::setColorScheme(m_engine, scheme);
    for (const auto &[id, window] : m_windows)
        window->content().setColorScheme(scheme);
    if (m_prepared)
        m_prepared->content().setColorScheme(scheme);
}

MainWindow *QtWindowHost::find(WindowID window) const
{
    const auto found = m_windows.find(window);
    return found == m_windows.end() ? nullptr : found->second.get();
}

std::vector<WindowHost::Window> QtWindowHost::windows() const
{
    std::vector<Window> windows;
    for (const auto &[id, window] : m_windows)
        windows.push_back({.id = id, .isVisible = window->isVisible(), .hasContent = true, .title = {}});
    return windows;
}

std::optional<double> QtWindowHost::visibleScreenHeight() const
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? std::optional<double>(screen->availableGeometry().height()) : std::nullopt;
}

WindowHost::WindowID QtWindowHost::create(double width, double height)
{
    const WindowID id{++m_lastID};
    prepare();
    std::unique_ptr<MainWindow> window = std::move(m_prepared);
    window->setFixedSize(QSize(qRound(width), qRound(height)));
    // Later, because the window is in the midst of it.
    connect(
        window.get(), &MainWindow::closedByUser, this, [this, id] { closedByUser(id); }, Qt::QueuedConnection);
    m_windows.emplace(id, std::move(window));
    return id;
}

std::unique_ptr<MainWindow> QtWindowHost::makeWindow()
{
    auto content = m_makeContent();
    content->setColorScheme(m_colorScheme);
    connect(content.get(), &WindowContentPresenter::quitRequested, this, &QtWindowHost::quitRequested);
    return std::make_unique<MainWindow>(m_engine, std::move(content), kAnySize);
}

void QtWindowHost::closedByUser(WindowID window)
{
    close(window);
    if (std::ranges::none_of(windows(), &Window::isVisible))
        Q_EMIT lastWindowClosed();
}

void QtWindowHost::finishStyling(WindowID window, Delegate &delegate)
{
    if (MainWindow *found = find(window))
        found->setDelegate(&delegate);
}

void QtWindowHost::close(WindowID window)
{
    m_windows.erase(window);
}

void QtWindowHost::center(WindowID window)
{
    if (MainWindow *found = find(window))
        found->center();
}

void QtWindowHost::makeKeyAndOrderFront(WindowID window)
{
    if (MainWindow *found = find(window)) {
        found->show();
        found->raise();
        found->requestActivate();
        found->content().appear();
    }
}

void QtWindowHost::redraw(WindowID window)
{
    if (MainWindow *found = find(window))
        found->update();
}

void QtWindowHost::setHeight(WindowID window, double height, bool)
{
    if (MainWindow *found = find(window))
        found->setFixedSize(QSize(found->width(), qRound(height)));
}

} // namespace brindle
