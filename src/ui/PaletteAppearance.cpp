#include "ui/PaletteAppearance.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <utility>

namespace brindle {

namespace {

ColorScheme schemeOfPalette()
{
    const QPalette palette = QGuiApplication::palette();
    const bool isDark = palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
    return isDark ? ColorScheme::dark : ColorScheme::light;
}

} // namespace

PaletteAppearance::PaletteAppearance(std::optional<ColorScheme> given)
    : m_given(given),
      m_scheme(given.value_or(schemeOfPalette()))
{
    qGuiApp->installEventFilter(this);
}

PaletteAppearance::~PaletteAppearance() = default;

bool PaletteAppearance::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_given && event->type() == QEvent::ApplicationPaletteChange &&
        std::exchange(m_scheme, schemeOfPalette()) != m_scheme)
        Q_EMIT colorSchemeChanged();
    return Appearance::eventFilter(watched, event);
}

} // namespace brindle
