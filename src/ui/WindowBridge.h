#pragma once

#include <QColor>
#include <QObject>
#include <QPointF>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace brindle {

/// What the window's content asks of the window and of the desktop.
class WindowBridge : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// The desktop blends windows, so that the frame can be round; without that it is square with a thin line.
    Q_PROPERTY(bool isComposited READ isComposited WRITE setIsComposited NOTIFY isCompositedChanged)

public:
    [[nodiscard]] bool isComposited() const { return m_isComposited; }
    void setIsComposited(bool isComposited);

    /// Menus and tool tips, which the desktop's widgets draw, get the colours of the theme.
    Q_INVOKABLE void paintMenus(const QColor &background, const QColor &text, const QColor &dimmed,
                                const QColor &highlight, const QColor &highlightedText) const;

    /// Asks for the application's menu at a place of the screen.
    Q_INVOKABLE void requestApplicationMenu(const QPointF &place) { Q_EMIT applicationMenuRequested(place.toPoint()); }

    Q_INVOKABLE void copyToClipboard(const QString &text) const;

    /// Whether pointer and keys could use \a item now: not what is disabled or hidden, or stands behind a dialog.
    /// Actions of a screen reader come without being asked whether.
    Q_INVOKABLE [[nodiscard]] bool isInReach(QQuickItem *item) const;

Q_SIGNALS:
    void isCompositedChanged();
    void applicationMenuRequested(QPoint place);

private:
    bool m_isComposited = false;
};

} // namespace brindle
