#include "ui/QmlWindow.h"

#include <QColor>

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

/// The relative luminance of WCAG 2.1.
double luminance(const QColor &color)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

class ThemeTest : public testing::TestWithParam<ColorScheme> {
protected:
    ThemeTest() { setColorScheme(m_window.engine(), GetParam()); }

    QColor color(const char *name)
    {
        return m_window.root().property("theme").value<QObject *>()->property(name).value<QColor>();
    }

    void expectContrast(const char *foreground, const char *background, double least)
    {
        EXPECT_GE(contrast(color(foreground), color(background)), least) << foreground << " on " << background;
    }

private:
    QmlWindow m_window{"Item { readonly property QtObject theme: Theme }"};
};

INSTANTIATE_TEST_SUITE_P(Schemes, ThemeTest, testing::Values(ColorScheme::light, ColorScheme::dark),
                         [](const auto &scheme) { return scheme.param == ColorScheme::dark ? "Dark" : "Light"; });

constexpr double kText = 4.5;
constexpr double kSymbol = 3;

TEST_P(ThemeTest, LetsEveryTextBeReadOnEveryBackground)
{
    for (const char *background : {"window", "row", "rowHover", "rowSelected", "field", "control", "controlHover",
                                   "controlPressed", "warningBox", "dangerBox"}) {
        for (const char *text : {"primary", "secondary", "gray", "blue", "purple", "green", "orange", "red"})
            expectContrast(text, background, kText);
    }
}

TEST_P(ThemeTest, LetsTheTextOfFilledButtonsBeRead)
{
    for (const char *background :
         {"accent", "accentHover", "accentPressed", "destructive", "destructiveHover", "destructivePressed"})
        expectContrast("onFilled", background, kText);
}

TEST_P(ThemeTest, LetsTheBordersOfFieldsAndTheFocusBeSeen)
{
    for (const char *background : {"window", "row", "field"}) {
        expectContrast("fieldBorder", background, kSymbol);
        expectContrast("focus", background, kSymbol);
    }
}

/// What is seen of \a color over \a background.
QColor blend(const QColor &color, const QColor &background)
{
    const float alpha = color.alphaF();
    const auto mix = [alpha](float above, float below) { return above * alpha + below * (1 - alpha); };
    return QColor::fromRgbF(mix(color.redF(), background.redF()), mix(color.greenF(), background.greenF()),
                            mix(color.blueF(), background.blueF()));
}

TEST_P(ThemeTest, LetsTheFadedMessageOfAWarningBeRead)
{
    for (const char *tint : {"orange", "red"}) {
        QmlWindow window(
            QByteArray(R"(WarningBox { objectName: "box"; box: ({ icon: "", title: "Warning", text: "Message",
                                                                          color: ")") +
            tint + R"(" }) })");
        setColorScheme(window.engine(), GetParam());
        const QColor background = blend(window.valueOf<QColor>(QStringLiteral("box"), "color"), color("window"));
        const QColor message = blend(window.valueOf<QColor>(QStringLiteral("box"), "messageColor"), background);

        EXPECT_GE(contrast(message, background), kText) << tint;
    }
}

TEST(Theme, PaintsAPresentersColourByItsNameOrItsValue)
{
    QmlWindow window(R"(Item { readonly property color named: Theme.color("red")
                               readonly property color fixed: Theme.color("#00CCFF")
                               readonly property color none: Theme.color("")
                               readonly property color red: Theme.red })");

    EXPECT_EQ(window.root().property("named"), window.root().property("red"));
    EXPECT_EQ(window.root().property("fixed").value<QColor>(), QColor(0, 0xCC, 0xFF));
    EXPECT_EQ(window.root().property("none").value<QColor>().alpha(), 0);
}

} // namespace
} // namespace brindle
