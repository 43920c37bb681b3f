#include "ui/HeldKeys.h"

#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

namespace brindle {

namespace {

/// Whether \a key presses something rather than to type a space into a text.
bool isPress(int key, const QQuickItem *receiver)
{
    if (key == Qt::Key_Space)
        return !receiver || !receiver->flags().testFlag(QQuickItem::ItemAcceptsInputMethod);
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

bool HeldKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto *window = qobject_cast<QQuickWindow *>(watched);
    const auto *key = static_cast<QKeyEvent *>(event);
    return window && key->isAutoRepeat() && isPress(key->key(), window->activeFocusItem());
}

} // namespace brindle
