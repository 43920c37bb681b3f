#include "ui/ContextMenu.h"

#include "ui/SymbolProvider.h"
#include "views/Shown.h"

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QPointer>
#include <QQuickWindow>
#include <QWindow>

#include <utility>

namespace brindle {

namespace {

constexpr int kSymbolSize = 16;
constexpr int kCaptionSize = 10;
constexpr int kAir = 4; // above the first entry and beneath the last one

/// In the colours of the text beside it, which is another one where the pointer is.
QIcon iconOf(std::string_view symbol, qreal ratio)
{
    const QPalette palette = QApplication::palette("QMenu"); // a menu has it only once it is shown
    QIcon icon;
    for (const auto &[mode, role] :
         {std::pair(QIcon::Normal, QPalette::Text), std::pair(QIcon::Active, QPalette::HighlightedText)}) {
        QPixmap pixmap =
            QPixmap::fromImage(SymbolProvider::draw(shown(symbol), palette.color(role), qRound(kSymbolSize * ratio)));
        pixmap.setDevicePixelRatio(ratio);
        icon.addPixmap(pixmap, mode);
    }
    return icon;
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
    menu->setContentsMargins(0, kAir, 0, kAir);
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
    action->setIcon(iconOf(entry.symbol, menu.devicePixelRatioF()));
    connect(action, &QAction::triggered, row, row->prepare(entry.action));
}

} // namespace brindle
