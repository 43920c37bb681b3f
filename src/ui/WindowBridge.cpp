#include "ui/WindowBridge.h"

#include <QClipboard>
#include <QGuiApplication>

#include <utility>

namespace brindle {

void WindowBridge::setIsComposited(bool isComposited)
{
    if (std::exchange(m_isComposited, isComposited) != isComposited)
        Q_EMIT isCompositedChanged();
}

void WindowBridge::copyToClipboard(const QString &text) const
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace brindle
