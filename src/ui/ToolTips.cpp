#include "ui/ToolTips.h"

#include <QApplication>
#include <QCursor>
#include <QTextDocument>
#include <QToolTip>

namespace brindle {

namespace {

constexpr qsizetype kLongestLine = 80;

} // namespace

void ToolTips::show(const QString &text) const
{
    if (QApplication::activePopupWidget()) // an open menu, which some desktops leave the pointer's window beneath
        return;
    // Markup, which Qt would obey and which wraps its lines, is what a long text is made into, and no other.
    const bool wraps = text.size() > kLongestLine || Qt::mightBeRichText(text);
    QToolTip::showText(QCursor::pos(), wraps ? QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()) : text);
}

void ToolTips::hide() const
{
    QToolTip::hideText();
}

} // namespace brindle
