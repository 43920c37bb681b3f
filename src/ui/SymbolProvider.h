#pragma once

#include <QQuickImageProvider>

namespace brindle {

/// Draws the symbols by their names, each in any one colour: `image://symbol/NAME?AARRGGBB`, the colour as QML prints
/// it without its "#".
///
/// Qt Quick asks for an image of the item's size times the screen's pixel ratio, so that a symbol is sharp everywhere.
/// The drawings are SVG files of black shapes on a grid of 24 by 24; a name that has none gives an empty image.
class SymbolProvider : public QQuickImageProvider {
public:
    SymbolProvider();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    /// The symbol \a name in a square of \a pixels; a null image where there is no drawing of that name.
    [[nodiscard]] static QImage draw(const QString &name, const QColor &color, int pixels);
};

} // namespace brindle
