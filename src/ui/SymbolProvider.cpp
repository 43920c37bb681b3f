#include "ui/SymbolProvider.h"

#include <QColor>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>

namespace brindle {

namespace {

constexpr int kDefaultPixels = 24;

} // namespace

SymbolProvider::SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage SymbolProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QString name = id.section(QLatin1Char('?'), 0, 0);
    const QColor color(QLatin1Char('#') + id.section(QLatin1Char('?'), 1));
    const int wanted = std::max(requestedSize.width(), requestedSize.height());
    QImage image = draw(name, color, wanted > 0 ? wanted : kDefaultPixels);
    if (image.isNull())
        qWarning("There is no symbol %s", qUtf8Printable(name));
    if (size)
        *size = image.size();
    return image;
}

QImage SymbolProvider::draw(const QString &name, const QColor &color, int pixels)
{
    const QString path = QStringLiteral(":/qt/qml/Brindle/symbols/%1.svg").arg(name);
    if (!QFile::exists(path))
        return {};
    QSvgRenderer renderer(path);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

} // namespace brindle
