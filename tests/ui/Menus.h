#pragma once

#include "ui/QmlWindow.h"

#include <QApplication>
#include <QMenu>

#include <string>
#include <vector>

namespace brindle {

/// The menu that is open; null where none is.
[[nodiscard]] inline QMenu *openMenu()
{
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

/// The texts of the menu that is open, without dividers.
[[nodiscard]] inline std::vector<std::string> textsOfOpenMenu()
{
    std::vector<std::string> texts;
    const QMenu *menu = openMenu();
    for (const QAction *action : menu ? menu->actions() : QList<QAction *>()) {
        if (!action->isSeparator())
            texts.push_back(action->text().toStdString());
    }
    return texts;
}

/// Closes the menu that is open; \a window has the keyboard again, which is a window manager's work.
inline void closeMenu(QmlWindow &window)
{
    ASSERT_TRUE(openMenu());
    QTest::keyClick(openMenu(), Qt::Key_Escape);
    EXPECT_FALSE(openMenu());
    window.window().requestActivate();
    QmlWindow::settle();
}

inline void chooseFromMenu(QmlWindow &window, const QString &text)
{
    ASSERT_TRUE(openMenu());
    QAction *chosen = nullptr;
    for (QAction *action : openMenu()->actions())
        chosen = action->text() == text ? action : chosen;
    ASSERT_TRUE(chosen) << text.toStdString();
    chosen->trigger();
    closeMenu(window);
}

} // namespace brindle
