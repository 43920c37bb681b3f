#pragma once

#include "ui/QmlWindow.h"

#include "support/WaitUntil.h"

#include <functional>

namespace brindle {

/// Calls \a look on each visible item below \a item.
inline void forEachVisible(const QQuickItem &item, const std::function<void(const QQuickItem &)> &look)
{
    for (const QQuickItem *child : item.childItems()) {
        if (!child->isVisible())
            continue;
        look(*child);
        forEachVisible(*child, look);
    }
}

/// Waits until nothing comes or goes any more, and all is where it belongs.
inline void waitForStillness(QmlWindow &window)
{
    waitUntil([&window] {
        bool isStill = true;
        forEachVisible(*window.window().contentItem(), [&isStill](const QQuickItem &item) {
            const bool isMoving = item.inherits("QQuickLoader") && (item.opacity() < 1 || item.scale() < 1);
            isStill = isStill && !isMoving;
        });
        return isStill;
    });
    (void)window.picture(); // lays out what has changed
}

} // namespace brindle
