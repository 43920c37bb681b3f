#pragma once

#include "ui/Presenters.h"

#include <QPointF>
#include <QQuickItem>

class QMenu;

namespace brindle {

/// The context menus of the rows: menus of the desktop, which reach beyond a small window.
class ContextMenu : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// Shows the menu of \a row at \a place of \a item. What is chosen there is done as it was
    /// offered, also where the row has changed meanwhile; nothing where it has gone.
    Q_INVOKABLE void popUp(brindle::RowPresenter *row, QQuickItem *item, const QPointF &place);

private:
    void add(QMenu &menu, const RowMenuEntry &entry, RowPresenter *row) const;
};

} // namespace brindle
