#include "shell/MainWindowOpener.h"

#include "shell/WindowHeight.h"

#include <QMetaObject>

#include <algorithm>
#include <vector>

namespace brindle {

void MainWindowOpener::open()
{
    if (bringToFront())
        return;
    const WindowHost::WindowID window = m_surroundings.windows.create(kWidth, height());
    finishStylingLater(window);
    m_surroundings.windows.center(window);
    show(window);
}

bool MainWindowOpener::bringToFront()
{
    const std::vector<WindowHost::Window> windows = m_surroundings.windows.windows();
    const auto found = std::ranges::find_if(
        windows, [](const WindowHost::Window &window) { return window.isVisible || window.hasContent; });
    if (found == windows.end())
        return false;
    show(found->id);
    return true;
}

double MainWindowOpener::height() const
{
    const DiskManager &model = m_surroundings.diskManager;
    const double contentHeight =
        m_surroundings.heightCalculator.contentHeight(model.disks().size(), model.expandedDisks(), model.disks());
    return windowHeight(contentHeight, m_surroundings.windows.visibleScreenHeight());
}

void MainWindowOpener::finishStylingLater(WindowHost::WindowID window)
{
    WindowHost &windows = m_surroundings.windows;
    QMetaObject::invokeMethod(
        &windows,
        [&windows, window, &windowDelegate = m_surroundings.windowDelegate] {
            windows.finishStyling(window, windowDelegate);
        },
        Qt::QueuedConnection);
}

void MainWindowOpener::show(WindowHost::WindowID window)
{
    m_surroundings.windows.makeKeyAndOrderFront(window);
    m_surroundings.application.activate();
}

} // namespace brindle
