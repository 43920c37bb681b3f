#include "ui/QmlWindow.h"

#include "support/WaitUntil.h"
#include "ui/ToolTips.h"

#include <QMenu>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace brindle {
namespace {

struct TipCase {
    const char *name;
    const char *text;
    const char *shown;
};

class ToolTipsTest : public testing::TestWithParam<TipCase> {
protected:
    ~ToolTipsTest() override { QToolTip::hideText(); }
};

INSTANTIATE_TEST_SUITE_P(
    Of, ToolTipsTest,
    testing::Values(TipCase{"AWord", "Eject disk", "Eject disk"},
                    TipCase{"Markup", "<b>Stick</b>", "<p>&lt;b&gt;Stick&lt;/b&gt;</p>"},
                    TipCase{"AnEntity", "R&amp;D", "R&amp;D"},
                    TipCase{"MarkupInEntities", "&lt;b&gt;Stick", "<p>&amp;lt;b&amp;gt;Stick</p>"},
                    TipCase{"AMarkOfAShortcut", "&Mount", "&Mount"},
                    TipCase{"ALongLine",
                            "Operation failed: the file EFI/OC/OpenCore.efi of the source & that of the copy differ",
                            "<p>Operation failed: the file EFI/OC/OpenCore.efi of the source &amp; that of the copy "
                            "differ</p>"}),
    [](const auto &row) { return row.param.name; });

TEST_P(ToolTipsTest, ShowTheTextAndObeyNoneOfIt)
{
    ToolTips().show(QString::fromUtf8(GetParam().text));

    const QString tip = QToolTip::text();
    EXPECT_EQ(tip.toStdString(), GetParam().shown);
    const QString read = Qt::mightBeRichText(tip) ? QTextDocumentFragment::fromHtml(tip).toPlainText() : tip;
    EXPECT_EQ(read.toStdString(), GetParam().text);
}

TEST_F(ToolTipsTest, StayAwayWhileAMenuIsOpen)
{
    QMenu menu;
    menu.addAction(QStringLiteral("Mount EFI"));
    menu.popup({});

    ToolTips().show(QStringLiteral("Double click to mount EFI"));

    EXPECT_EQ(QToolTip::text(), u"");
}

TEST(ToolTipArea, ShowsItsTipWhereThePointerRestsAndHidesItWhenThatLeaves)
{
    QmlWindow window(R"(Item {
                            width: 500
                            height: 400
                            Rectangle {
                                objectName: "place"
                                width: 100
                                height: 100
                                ToolTipArea { tip: "Eject disk" }
                            }
                        })");

    window.hover(QStringLiteral("place"));
    waitUntil([] { return QToolTip::text() == u"Eject disk"; });
    QTest::mouseMove(&window.window(), {400, 300});
    waitUntil([] { return QToolTip::text().isEmpty(); });
}

} // namespace
} // namespace brindle
