#include "ui/MainWindow.h"
#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include "support/WaitUntil.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace brindle {
namespace {

/// The window itself over the real model, whose tools with root's rights can be held.
class QuitWindowTest : public WindowContentFixture {
protected:
    QuitWindowTest() { setUpEngine(m_engine); }

    MainWindow &window()
    {
        if (!m_window) {
            m_window.emplace(m_engine,
                             std::make_unique<WindowContentPresenter>(surroundings(eraseFlow, dialogs, windowHost)),
                             QSize(500, 600));
            m_window->show();
            m_window->requestActivate();
            QmlWindow::settle();
        }
        return *m_window;
    }

    /// Mounts the first EFI partition of the stick by its row, as far as the held tool.
    void beginMount()
    {
        answerInfo("disk2s1", false);
        answerSudo("mount disk2s1");
        launcher.hold(sudo("mount disk2s1"));
        window().content().rows()->row(0).perform(RowAction::toggleMount);
        QmlWindow::settle();
        ASSERT_TRUE(unfinishedWork.isThere());
    }

    void endMount()
    {
        launcher.release(sudo("mount disk2s1"));
        settle();
    }

    [[nodiscard]] std::optional<std::string> notice()
    {
        const QQuickItem *shown = QmlWindow::find(*window().contentItem(), QStringLiteral("quitNotice"));
        return shown ? std::optional(shown->property("text").toString().toStdString()) : std::nullopt;
    }

    void quitByKey()
    {
        QTest::keyClick(&window(), Qt::Key_Q, Qt::ControlModifier);
        QmlWindow::settle();
    }

private:
    QQmlEngine m_engine;
    std::optional<MainWindow> m_window;
};

TEST_F(QuitWindowTest, ClosesWhileNothingIsUnderWay)
{
    QSignalSpy quit(&window().content(), &WindowContentPresenter::quitRequested);
    QSignalSpy closed(&window(), &MainWindow::closedByUser);

    window().close();

    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(closed.count(), 1);
    EXPECT_EQ(quit.count(), 0);
}

TEST_F(QuitWindowTest, StaysWhileWorkIsUnfinishedAndQuitsInstead)
{
    beginMount();
    QSignalSpy quit(&window().content(), &WindowContentPresenter::quitRequested);
    QSignalSpy closed(&window(), &MainWindow::closedByUser);

    window().close();

    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(closed.count(), 0);
    EXPECT_EQ(quit.count(), 1);

    endMount();
    window().close();
    EXPECT_FALSE(window().isVisible());
}

TEST_F(QuitWindowTest, SaysThatItQuitsAsSoonAsTheWorkIsDone)
{
    beginMount();
    EXPECT_FALSE(notice());

    unfinishedWork.endProcessWithIt();

    EXPECT_EQ(notice(), "Brindle quits as soon as this is done.");
    endMount();
}

TEST_F(QuitWindowTest, CoversNothingByItsNotice)
{
    beginMount();
    unfinishedWork.endProcessWithIt();
    QmlWindow::settle();

    const auto bottomOf = [this](const char *name) {
        const QQuickItem *item = QmlWindow::find(*window().contentItem(), QString::fromLatin1(name));
        return item ? item->mapToScene(QPointF(0, item->height())).y() : 0;
    };
    const QQuickItem *text = QmlWindow::find(*window().contentItem(), QStringLiteral("quitNotice"));
    ASSERT_TRUE(text);

    EXPECT_GT(bottomOf("diskList"), 0);
    EXPECT_LE(bottomOf("diskList"), bottomOf("footer"));
    EXPECT_LE(bottomOf("footer"), text->mapToScene({}).y());
    endMount();
}

/// A screen of the copy dialog that stands when the user quits.
struct CopyScreen {
    const char *name;
    bool isConfirmation;
};

class QuitFromTheCopyDialog : public QuitWindowTest, public testing::WithParamInterface<CopyScreen> {
protected:
    QuitFromTheCopyDialog()
    {
        writeSampleEFI(root() + "/source/EFI");
        writeFile(oldFile(), "old");
        hold({diskAt("disk2", "/source"), diskAt("disk3", "/destination")});
    }

    [[nodiscard]] std::string oldFile() const { return root() + "/destination/EFI/old"; }

    [[nodiscard]] PhysicalDisk diskAt(const std::string &identifier, const char *mountPoint) const
    {
        return externalDisk(identifier,
                            {{.identifier = identifier + "s1", .isMounted = true, .mountPoint = root() + mountPoint}});
    }

    /// Opens the dialog, and asks for the copy where it is to be the question what becomes of the old folder.
    void openScreen()
    {
        EFICopyFlow &flow = window().content().copyFlow();
        const PhysicalDisk &source = manager().disks().front();
        flow.onCopyEFI(source, source.efiPartitions.front());
        if (GetParam().isConfirmation)
            flow.onDestinationSelected(flow.availableDestinations().front(), false);
        waitUntil([&] { return copyManager.showConfirmationDialog() == GetParam().isConfirmation; });
        QmlWindow::settle();
    }
};

INSTANTIATE_TEST_SUITE_P(At, QuitFromTheCopyDialog,
                         testing::Values(CopyScreen{"TheSelection", false}, CopyScreen{"TheConfirmation", true}),
                         [](const auto &row) { return row.param.name; });

TEST_P(QuitFromTheCopyDialog, TouchesNothing)
{
    openScreen();
    QSignalSpy quit(&window().content(), &WindowContentPresenter::quitRequested);

    quitByKey();
    clock.advance(std::chrono::seconds(10));
    QmlWindow::settle();

    EXPECT_EQ(quit.count(), 1);
    EXPECT_TRUE(std::filesystem::exists(oldFile()));
    EXPECT_THAT(dialogs.savePanels, testing::IsEmpty());
    EXPECT_FALSE(unfinishedWork.isThere());
}

TEST_P(QuitFromTheCopyDialog, TouchesNothingByClosingTheWindow)
{
    openScreen();

    window().close();
    clock.advance(std::chrono::seconds(10));
    QmlWindow::settle();

    EXPECT_FALSE(window().isVisible());
    EXPECT_TRUE(std::filesystem::exists(oldFile()));
}

} // namespace
} // namespace brindle
