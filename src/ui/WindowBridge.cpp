#include "ui/WindowBridge.h"

#include <QApplication>
#include <QClipboard>
#include <QPalette>
#include <QQuickWindow>
#include <QToolTip>

#include <utility>

namespace brindle {

void WindowBridge::setIsComposited(bool isComposited)
{
    if (std::exchange(m_isComposited, isComposited) != isComposited)
        Q_EMIT isCompositedChanged();
}

void WindowBridge::paintMenus(const QColor &background, const QColor &text, const QColor &dimmed,
                              const QColor &highlight, const QColor &highlightedText) const
{
    constexpr int kFontSize = 13;
    QPalette palette(text, background, background, background, background, text, background);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, highlightedText);
    palette.setColor(QPalette::ToolTipBase, background);
    palette.setColor(QPalette::ToolTipText, text);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, dimmed);
    QApplication::setPalette(palette, "QMenu");
    QToolTip::setPalette(palette);
    QFont font = QApplication::font();
    font.setPixelSize(kFontSize);
    QApplication::setFont(font, "QMenu");
}

void WindowBridge::copyToClipboard(const QString &text) const
{
    QGuiApplication::clipboard()->setText(text);
}

bool WindowBridge::isInReach(QQuickItem *item) const
{
    const QWindow *dialog = QGuiApplication::modalWindow();
    const QWindow *window = item->window();
    return item->isEnabled() && item->isVisible() && (!dialog || dialog == window);
}

} // namespace brindle
