#include "ui/Menus.h"
#include "ui/QtDialogs.h"
#include "ui/Stillness.h"
#include "views/WindowContentFixture.h"

#include <gmock/gmock.h>

#include <QGuiApplication>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Where the keyboard goes when what was opened from the list has closed.
class KeyboardReturnTest : public WindowContentFixture {
public:
    KeyboardReturnTest()
    {
        QGuiApplication::setQuitOnLastWindowClosed(false); // which would end the tests' event loop
        PhysicalDisk source = externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true}});
        PhysicalDisk destination = externalDisk("disk3", {{.identifier = "disk3s1", .isMounted = true}});
        source.efiPartitions[0].mountPoint = mountPoint() + "2";
        destination.efiPartitions[0].mountPoint = mountPoint() + "3";
        m_disks = {externalDisk("disk1"), source, destination,
                   externalDisk("disk4", {{.identifier = "disk4s1"}, {.identifier = "disk4s2"}})};
        m_disks.back().volumeName = "WORK";
        hold(m_disks);
        answerInfo("disk2s1", true);
        manager().toggleExpanded("disk4");
        setUpEngine(m_engineOfAlerts);
    }

    QmlWindow &window()
    {
        if (!m_window) {
            m_content.emplace(surroundings(eraseFlow, m_alerts, windowHost));
            m_window.emplace("WindowContentView { width: 500; height: 600 }", 600,
                             QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&*m_content)}});
        }
        return *m_window;
    }

    /// By keys alone.
    void goTo(const std::string &identifier)
    {
        window().tabTo("disk1");
        while (window().focused() != identifier && window().focused() != "disk4s2")
            window().press(Qt::Key_Down);
        ASSERT_EQ(window().focused(), identifier);
    }

    void choose(const char *entry)
    {
        window().press(Qt::Key_Menu);
        chooseFromMenu(window(), QString::fromLatin1(entry));
    }

    void unplug(const char *identifier)
    {
        std::erase_if(m_disks, [&](const PhysicalDisk &disk) { return disk.identifier == identifier; });
        m_content->rows()->setDisks(m_disks, {"disk4"});
        waitForStillness(window());
        QmlWindow::settle();
    }

    /// What ran with root's rights, after all that is still to come.
    std::vector<std::string> privilegedCalls()
    {
        clock.advance(std::chrono::seconds(10));
        QmlWindow::settle();
        return launcher.commandLines();
    }

    [[nodiscard]] bool isLoading(const char *identifier)
    {
        return m_content->rows()->row(m_content->rows()->indexOf(QString::fromLatin1(identifier))).isLoading();
    }

    [[nodiscard]] static QWindow *alert()
    {
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible() && window->type() == Qt::Dialog)
                return window;
        }
        return nullptr;
    }

private:
    std::vector<PhysicalDisk> m_disks;
    QQmlEngine m_engineOfAlerts;
    QtDialogs m_alerts{m_engineOfAlerts};
    std::optional<WindowContentPresenter> m_content;
    std::optional<QmlWindow> m_window;
};

struct Opening {
    const char *name;
    std::function<void(KeyboardReturnTest &)> open; ///< From the row that has the keyboard.
    std::function<void(KeyboardReturnTest &)> close;

    friend void PrintTo(const Opening &opening, std::ostream *out) { *out << opening.name; }
};

void openMenuByKey(KeyboardReturnTest &test)
{
    test.window().press(Qt::Key_Menu);
    ASSERT_TRUE(openMenu());
}

void openAlert(KeyboardReturnTest &test)
{
    test.choose("View SMART Details...");
    waitUntil([] { return KeyboardReturnTest::alert() != nullptr; });
    QmlWindow::settle();
    ASSERT_EQ(QGuiApplication::focusWindow(), KeyboardReturnTest::alert());
}

void closeAlert(KeyboardReturnTest &test)
{
    ASSERT_TRUE(KeyboardReturnTest::alert());
    QTest::keyClick(KeyboardReturnTest::alert(), Qt::Key_Escape);
    waitUntil([] { return KeyboardReturnTest::alert() == nullptr; });
    test.window().window().requestActivate(); // what a window manager does
    QmlWindow::settle();
}

void openCopyDialog(KeyboardReturnTest &test)
{
    test.choose("Copy EFI");
    waitForStillness(test.window());
    ASSERT_TRUE(test.window().shows(QStringLiteral("destination0")));
}

void openEraseDialog(KeyboardReturnTest &test)
{
    test.choose("Erase Disk...");
    ASSERT_EQ(test.window().focused(), "nameField");
}

void pressEscape(KeyboardReturnTest &test)
{
    test.window().press(Qt::Key_Escape);
    waitForStillness(test.window());
    ASSERT_TRUE(test.window().shows(QStringLiteral("diskListFrame")));
}

void pressCancel(KeyboardReturnTest &test)
{
    test.window().click(QStringLiteral("cancelButton"));
    ASSERT_TRUE(test.window().shows(QStringLiteral("diskListFrame")));
}

class KeyboardReturn : public KeyboardReturnTest, public testing::WithParamInterface<Opening> {};

INSTANTIATE_TEST_SUITE_P(From, KeyboardReturn,
                         testing::Values(Opening{"AMenuByEscape", openMenuByKey,
                                                 [](KeyboardReturnTest &test) { closeMenu(test.window()); }},
                                         Opening{"AnAlert", openAlert, closeAlert},
                                         Opening{"TheCopyDialogByEscape", openCopyDialog, pressEscape},
                                         Opening{"TheCopyDialogByCancel", openCopyDialog, pressCancel},
                                         Opening{"TheEraseDialogByEscape", openEraseDialog, pressEscape},
                                         Opening{"TheEraseDialogByCancel", openEraseDialog, pressCancel}),
                         [](const auto &row) { return row.param.name; });

TEST_P(KeyboardReturn, GoesToTheRow)
{
    goTo("disk2");

    GetParam().open(*this);
    GetParam().close(*this);

    EXPECT_EQ(window().focused(), "disk2");
}

TEST_P(KeyboardReturn, GoesToTheListWhereTheRowHasGone)
{
    goTo("disk2");

    GetParam().open(*this);
    unplug("disk2");
    GetParam().close(*this);

    EXPECT_EQ(window().focused(), "disk1");
    window().press(Qt::Key_Down);
    EXPECT_EQ(window().focused(), "disk3");
}

/// A key that is held from a button of what was opened on.
struct HeldFrom {
    const char *name;
    std::function<void(KeyboardReturnTest &)> open; ///< From the row that has the keyboard.
    const char *button;                             ///< Of the window; empty where another has the keyboard.
    Qt::Key key = Qt::Key_Return;

    friend void PrintTo(const HeldFrom &row, std::ostream *out) { *out << row.name; }
};

class KeyHeld : public KeyboardReturnTest, public testing::WithParamInterface<HeldFrom> {};

INSTANTIATE_TEST_SUITE_P(
    From, KeyHeld,
    testing::Values(HeldFrom{"AnAlertReturn", openAlert, ""}, HeldFrom{"AnAlertSpace", openAlert, "", Qt::Key_Space},
                    HeldFrom{"TheCopyDialogReturn", openCopyDialog, "cancelButton"},
                    HeldFrom{"TheCopyDialogSpace", openCopyDialog, "cancelButton", Qt::Key_Space},
                    HeldFrom{"TheCopyDialogsCrossReturn", openCopyDialog, "closeButton"},
                    HeldFrom{"TheCopyDialogsCrossSpace", openCopyDialog, "closeButton", Qt::Key_Space},
                    HeldFrom{"TheEraseDialogReturn", openEraseDialog, "cancelButton"},
                    HeldFrom{"TheEraseDialogSpace", openEraseDialog, "cancelButton", Qt::Key_Space}),
    [](const auto &row) { return row.param.name; });

TEST_P(KeyHeld, DoesNothingToTheRowBeneath)
{
    answerSudo("unmount disk2s1");
    goTo("disk2");
    GetParam().open(*this);
    if (*GetParam().button != '\0')
        window().tabTo(GetParam().button);

    window().hold(GetParam().key);

    EXPECT_EQ(window().focused(), "disk2");
    EXPECT_THAT(privilegedCalls(), IsEmpty());
    window().press(GetParam().key); // once more
    EXPECT_THAT(privilegedCalls(), ElementsAre(sudo("unmount disk2s1")));
}

TEST_F(KeyboardReturnTest, TakesNoKeyForTheCloseOfADialogThatHasJustClosedByItself)
{
    using namespace std::chrono_literals;
    writeSampleEFI(mountPoint() + "2/EFI");
    std::filesystem::create_directories(mountPoint() + "3");
    answerSudo("unmount disk2s1");
    goTo("disk2");
    openCopyDialog(*this);
    window().press(Qt::Key_Space);
    window().tabTo("copyButton");
    window().press(Qt::Key_Return);
    waitUntil([this] { return copyManager.operationStatus() == "EFI copy completed successfully"; });
    waitForStillness(window());
    ASSERT_EQ(window().focused(), "doneButton");

    clock.advance(EFICopyFlow::kAutoClose);
    QmlWindow::settle();
    ASSERT_EQ(window().focused(), "disk2");
    window().press(Qt::Key_Return);
    clock.advance(WindowContentPresenter::kRestAfterCopy - 1ms);
    window().press(Qt::Key_Space);
    EXPECT_FALSE(isLoading("disk2"));

    clock.advance(1ms);
    window().press(Qt::Key_Return);
    EXPECT_THAT(privilegedCalls(), ElementsAre(sudo("unmount disk2s1")));
}

TEST_F(KeyboardReturnTest, ChoosesNothingInADialogByTheSpaceThatOpenedIt)
{
    goTo("disk2");
    window().tabTo("copyButton");

    window().hold(Qt::Key_Space);

    ASSERT_EQ(window().focused(), "destination0");
    EXPECT_FALSE(window().valueOf<bool>(QStringLiteral("destination0"), "checked"));
}

TEST_F(KeyboardReturnTest, LeavesTheRowAloneWhileTheReturnOfAPromptIsHeld)
{
    goTo("disk4");
    choose("Rename Volume...");
    waitUntil([] { return alert() != nullptr; });
    QmlWindow::settle();
    int timesOpenedOrClosed = 0;
    QObject::connect(&manager(), &DiskManager::expandedDisksChanged, [&] { ++timesOpenedOrClosed; });

    window().hold(Qt::Key_Return);

    EXPECT_EQ(window().focused(), "disk4");
    EXPECT_EQ(timesOpenedOrClosed, 0);
    window().press(Qt::Key_Return);
    EXPECT_EQ(timesOpenedOrClosed, 1);
}

TEST_F(KeyboardReturnTest, GoesToTheRowOfAPartition)
{
    goTo("disk4s2");

    choose("Erase EFI Partition...");
    pressEscape(*this);

    EXPECT_EQ(window().focused(), "disk4s2");
}

TEST_F(KeyboardReturnTest, GoesToTheRowWhoseButtonWasClicked)
{
    goTo("disk4");

    window().click(QStringLiteral("disk2/copyButton"));
    ASSERT_TRUE(window().shows(QStringLiteral("destination0")));
    pressEscape(*this);

    EXPECT_EQ(window().focused(), "disk2");
}

TEST_F(KeyboardReturnTest, GoesToTheWindowWhereNoRowIsLeft)
{
    goTo("disk2");
    openEraseDialog(*this);
    for (const char *identifier : {"disk1", "disk2", "disk3", "disk4"})
        unplug(identifier);

    pressEscape(*this);

    window().press(Qt::Key_Tab);
    EXPECT_EQ(window().focused(), "refreshButton");
}

TEST_F(KeyboardReturnTest, StaysInTheListWhereTheRowThatHasItGoes)
{
    goTo("disk2");

    unplug("disk2");

    EXPECT_EQ(window().focused(), "disk1");
}

TEST_F(KeyboardReturnTest, GoesToTheDiskWhoseRowsOfPartitionsAreClosed)
{
    goTo("disk4s2");

    window().click(QStringLiteral("disk4/chevron"));
    ASSERT_FALSE(window().shows(QStringLiteral("disk4s2")));

    EXPECT_EQ(window().focused(), "disk4");
}

TEST_F(KeyboardReturnTest, StaysInADialogWhileTheListChanges)
{
    goTo("disk2");
    openEraseDialog(*this);

    unplug("disk2");

    EXPECT_EQ(window().focused(), "nameField");
}

} // namespace
} // namespace brindle
