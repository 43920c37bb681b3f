#include "ui/QtApplicationHost.h"

#include "views/Shown.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QMetaObject>
#include <QWindow>

#include <utility>
#include <vector>

namespace brindle {

namespace {

std::vector<QWindow *> visibleWindows()
{
    std::vector<QWindow *> windows;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            windows.push_back(window);
    }
    return windows;
}

} // namespace

void QtApplicationHost::activate()
{
    for (QWindow *window : visibleWindows()) {
        if (window->windowStates().testFlag(Qt::WindowMinimized))
            window->showNormal();
    }
    if (QWindow *dialog = QGuiApplication::modalWindow()) // the windows beneath take no keys
        return dialog->requestActivate();
    for (QWindow *window : visibleWindows())
        window->requestActivate();
}

void QtApplicationHost::setApplicationMenu(std::vector<MenuGroup> groups)
{
    m_menu = std::move(groups);
}

void QtApplicationHost::popUpMenu(QPoint place) const
{
    if (m_menu.empty())
        return;
    auto *menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("applicationMenu"));
    for (const MenuGroup &group : m_menu) {
        if (!menu->isEmpty())
            menu->addSeparator();
        for (const MenuEntry &entry : group) {
            QAction *action = menu->addAction(shown(entry.title), menu, entry.action);
            action->setEnabled(entry.isEnabled);
            if (!entry.key.empty())
                action->setShortcut(QKeySequence(QStringLiteral("Ctrl+") + shown(entry.key)));
        }
    }
    menu->winId(); // makes its window
    menu->windowHandle()->setTransientParent(QGuiApplication::focusWindow());
    menu->popup(place);
}

void QtApplicationHost::quit()
{
    // Unlike quit(), it asks no window whether it may close.
    QMetaObject::invokeMethod(
        qGuiApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
}

} // namespace brindle
