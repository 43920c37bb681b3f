#include "ui/SymbolProvider.h"

#include "ui/QmlWindow.h"

#include <QColor>
#include <QDir>
#include <QImage>

namespace brindle {
namespace {

TEST(SymbolProvider, DrawsEverySymbolInTheWantedColourAndSize)
{
    const QmlWindow registered("Item {}");
    const QStringList files = QDir(QStringLiteral(BRINDLE_SYMBOLS)).entryList({QStringLiteral("*.svg")});
    ASSERT_GT(files.size(), 30);
    for (const QString &file : files) {
        SCOPED_TRACE(file.toStdString());
        for (const int pixels : {16, 24, 32}) { // 1, 1.5 and 2 for each point
            const QImage image = SymbolProvider::draw(file.chopped(4), QColor(10, 200, 30), pixels);

            ASSERT_EQ(image.size(), QSize(pixels, pixels));
            int solid = 0;
            for (int y = 0; y < pixels; ++y) {
                for (int x = 0; x < pixels; ++x) {
                    const QColor color = image.pixelColor(x, y);
                    if (color.alpha() == 255)
                        EXPECT_EQ(color, QColor(10, 200, 30));
                    solid += color.alpha() > 127;
                }
            }
            EXPECT_GT(solid, pixels);
        }
    }
}

TEST(SymbolProvider, IsAskedForAsManyPixelsAsTheScreenHas)
{
    SymbolProvider provider;
    QSize size;

    const QImage image = provider.requestImage(QStringLiteral("eject?FF0000FF"), &size, QSize(36, 36));

    EXPECT_EQ(size, QSize(36, 36));
    EXPECT_EQ(image.size(), size);
}

TEST(SymbolProvider, GivesNothingForANameWithoutADrawing)
{
    EXPECT_TRUE(SymbolProvider::draw(QStringLiteral("no.such.symbol"), Qt::black, 16).isNull());
}

} // namespace
} // namespace brindle
