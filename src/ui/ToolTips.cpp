#include "ui/ToolTips.h"

#include <QCursor>
#include <QToolTip>

namespace brindle {

void ToolTips::show(QQuickItem *item, const QString &text) const
{
    Q_UNUSED(item)
    // A tag in front keeps Qt from guessing: what follows is escaped.
    QToolTip::showText(QCursor::pos(), QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()));
}

void ToolTips::hide() const
{
    QToolTip::hideText();
}

} // namespace brindle
