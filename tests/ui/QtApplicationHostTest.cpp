#include "ui/QtApplicationHost.h"

#include <QApplication>
#include <QMenu>
#include <QWindow>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The menu of an application with two groups.
class ApplicationMenuTest : public testing::Test {
protected:
    ApplicationMenuTest()
    {
        host.setApplicationMenu(
            {{{.title = "About Brindle", .action = [this] { chosen.emplace_back("about"); }}},
             {{.title = "Quit Brindle", .key = "q", .action = [this] { chosen.emplace_back("quit"); }},
              {.title = "Check for Updates...", .isEnabled = false, .action = [] {}}}});
    }
    ~ApplicationMenuTest() override
    {
        if (QMenu *menu = openMenu())
            menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static QMenu *openMenu() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }

    /// What the menu that is open shows, as far as it can be chosen.
    static std::vector<std::string> entries()
    {
        std::vector<std::string> result;
        for (const QAction *action : openMenu()->actions()) {
            std::string text = action->isSeparator() ? "-" : action->text().toStdString();
            if (!action->shortcut().isEmpty())
                text += " | " + action->shortcut().toString(QKeySequence::PortableText).toStdString();
            result.push_back(action->isEnabled() ? text : "(" + text + ")");
        }
        return result;
    }

    QtApplicationHost host;
    std::vector<std::string> chosen;
};

TEST_F(ApplicationMenuTest, ShowsItsGroupsWithDividersBetweenThemAndTheirKeys)
{
    host.popUpMenu({10, 10});

    ASSERT_TRUE(openMenu());
    EXPECT_THAT(entries(), ElementsAre("About Brindle", "-", "Quit Brindle | Ctrl+Q", "(Check for Updates...)"));
}

TEST_F(ApplicationMenuTest, DoesWhatIsChosen)
{
    host.popUpMenu({10, 10});
    ASSERT_TRUE(openMenu());

    openMenu()->actions().at(2)->trigger();
    EXPECT_THAT(chosen, ElementsAre("quit"));
    openMenu()->actions().at(0)->trigger();
    EXPECT_THAT(chosen, ElementsAre("quit", "about"));
}

TEST_F(ApplicationMenuTest, ShowsNothingWithoutEntries)
{
    host.setApplicationMenu({});

    host.popUpMenu({10, 10});

    EXPECT_FALSE(openMenu());
    EXPECT_THAT(chosen, IsEmpty());
}

TEST(QtApplicationHost, GivesTheKeyboardToItsWindow)
{
    QWindow window;
    window.show();
    {
        QWindow other;
        other.show();
        other.requestActivate();
        QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
    ASSERT_NE(QGuiApplication::focusWindow(), &window);

    QtApplicationHost().activate();
    QCoreApplication::processEvents();

    EXPECT_EQ(QGuiApplication::focusWindow(), &window);
}

TEST(QtApplicationHost, GivesTheKeyboardToTheDialogInFrontRatherThanToItsParent)
{
    QWindow dialog;
    QWindow parent;
    dialog.setTransientParent(&parent);
    dialog.setModality(Qt::WindowModal);
    parent.show();
    dialog.show();
    parent.requestActivate();
    QCoreApplication::processEvents();
    ASSERT_EQ(QGuiApplication::focusWindow(), &parent);

    QtApplicationHost().activate();
    QCoreApplication::processEvents();

    EXPECT_EQ(QGuiApplication::focusWindow(), &dialog);
}

TEST(QtApplicationHost, BringsAMinimisedWindowBack)
{
    QWindow window;
    window.showMinimized();
    QtApplicationHost host;

    host.activate();

    EXPECT_FALSE(window.windowStates().testFlag(Qt::WindowMinimized));
    EXPECT_TRUE(window.isVisible());
}

TEST(QtApplicationHost, LeavesAHiddenWindowHidden)
{
    QWindow window;
    QtApplicationHost host;

    host.activate();

    EXPECT_FALSE(window.isVisible());
}

} // namespace
} // namespace brindle
