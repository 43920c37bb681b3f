#include "ui/PaletteAppearance.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPalette>

#include <gtest/gtest.h>

namespace brindle {
namespace {

/// Paints the program, and puts its colours back.
class PaletteAppearanceTest : public testing::Test {
protected:
    ~PaletteAppearanceTest() override { QGuiApplication::setPalette(m_before); }

    static void paint(Qt::GlobalColor text, Qt::GlobalColor background)
    {
        QPalette palette;
        palette.setColor(QPalette::WindowText, text);
        palette.setColor(QPalette::Window, background);
        QGuiApplication::setPalette(palette);
        QCoreApplication::processEvents();
    }

    static int changesOf(const PaletteAppearance &appearance, const std::function<void()> &happening)
    {
        int changes = 0;
        const auto connection =
            QObject::connect(&appearance, &Appearance::colorSchemeChanged, [&changes] { ++changes; });
        happening();
        QObject::disconnect(connection);
        return changes;
    }

private:
    QPalette m_before = QGuiApplication::palette();
};

TEST_F(PaletteAppearanceTest, IsDarkWhereTheTextIsLighterThanWhatIsUnderIt)
{
    paint(Qt::white, Qt::black);
    EXPECT_EQ(PaletteAppearance().colorScheme(), ColorScheme::dark);

    paint(Qt::black, Qt::white);
    EXPECT_EQ(PaletteAppearance().colorScheme(), ColorScheme::light);
}

TEST_F(PaletteAppearanceTest, TellsOnceOfAPaletteOfTheOtherScheme)
{
    paint(Qt::black, Qt::white);
    const PaletteAppearance appearance;

    EXPECT_EQ(changesOf(appearance, [] { paint(Qt::white, Qt::black); }), 1);
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
    EXPECT_EQ(changesOf(appearance, [] { paint(Qt::yellow, Qt::darkBlue); }), 0);
}

TEST_F(PaletteAppearanceTest, KeepsTheSchemeThatItIsGiven)
{
    paint(Qt::black, Qt::white);
    const PaletteAppearance appearance(ColorScheme::dark);

    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
    EXPECT_EQ(changesOf(appearance, [] { paint(Qt::white, Qt::black); }), 0);
    EXPECT_EQ(changesOf(appearance, [] { paint(Qt::black, Qt::white); }), 0);
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
}

} // namespace
} // namespace brindle
