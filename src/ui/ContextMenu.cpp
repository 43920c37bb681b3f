#include "ui/ContextMenu.h"

#include "ui/SymbolProvider.h"
#include "views/Shown.h"

#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QPointer>
#include <QQuickWindow>
#include <QWindow>

namespace brindle {

namespace {

constexpr int kSymbolSize = 16;
constexpr int kCaptionSize = 10;

QIcon iconOf(std::string_view symbol, const QMenu &menu)
{
    const qreal ratio = menu.devicePixelRatioF();
    const QColor color = menu.palette().color(QPalette::Text);
    QPixmap pixmap = QPixmap::fromImage(SymbolProvider::draw(shown(symbol), color, qRound(kSymbolSize * ratio)));
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

/// A menu takes "&" for the mark of a shortcut.
QString menuText(const std::string &text)
{
    return shown(text).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

void ContextMenu::popUp(RowPresenter *row, QQuickItem *item, const QPointF &place)
{
    auto *menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("rowMenu"));
    for (const RowMenuEntry &entry : row->menu())
        add(*menu, entry, row);
    menu->winId(); // makes its window
    menu->windowHandle()->setTransientParent(item->window());
    menu->popup(item->mapToGlobal(place).toPoint());
}

void ContextMenu::add(QMenu &menu, const RowMenuEntry &entry, RowPresenter *row) const
{
    if (entry.kind == RowMenuEntry::Kind::divider) {
        menu.addSeparator();
        return;
    }
    QAction *action = menu.addAction(menuText(entry.label));
    if (entry.kind == RowMenuEntry::Kind::status) {
        QFont font = menu.font();
        font.setPixelSize(kCaptionSize);
        action->setFont(font);
        action->setEnabled(false);
        return;
    }
    action->setIcon(iconOf(entry.symbol, menu));
    connect(action, &QAction::triggered, row, [row, chosen = entry.action] { row->perform(chosen); });
}

} // namespace brindle
