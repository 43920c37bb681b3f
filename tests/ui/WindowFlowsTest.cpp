#include "ui/Menus.h"
#include "ui/Stillness.h"
#include "views/WindowContentFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The window over the real model, whose every call of a tool with root's rights is recorded.
class WindowFlowsTest : public WindowContentFixture {
public:
    QmlWindow &window()
    {
        if (!m_window)
            m_window.emplace("WindowContentView { width: 500; height: 600 }", 600,
                             QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&erasing())}});
        return *m_window;
    }

    /// The window's content, whose erase dialog acts on the model.
    WindowContentPresenter &erasing()
    {
        if (!m_erasing)
            m_erasing.emplace(surroundings(*eraseFlowOfModel(), dialogs, windowHost));
        return *m_erasing;
    }

    void click(const char *path, Qt::MouseButton button = Qt::LeftButton)
    {
        window().click(QString::fromLatin1(path), button);
    }

    /// A stick with an EFI partition, and its erase dialog with the name typed.
    void openEraseDialog(bool ofEFIPartition)
    {
        PhysicalDisk stick = externalDisk("disk2", {{.identifier = "disk2s1", .volumeName = "BOOT"}});
        stick.volumeName = "WORK";
        hold({stick});
        click("disk2", Qt::RightButton);
        chooseFromMenu(window(),
                       ofEFIPartition ? QStringLiteral("Erase EFI Partition...") : QStringLiteral("Erase Disk..."));
        ASSERT_EQ(window().focused(), "nameField");
        window().type(ofEFIPartition ? QStringLiteral("BOOT") : QStringLiteral("WORK"));
    }

    void eraseByClick()
    {
        click("eraseButton");
        for (int i = 0; i < 100 && eraseManager.stage() == EraseOperationManager::Stage::inProgress; ++i)
            clock.advance(std::chrono::milliseconds(100));
        QmlWindow::settle();
    }

    /// What ran with root's rights, after all that is still to come.
    std::vector<std::string> privilegedCalls()
    {
        clock.advance(std::chrono::seconds(10));
        QmlWindow::settle();
        return launcher.commandLines();
    }

    void destroyWindow() { m_window.reset(); }

    /// A scan that finds only these disks, without partitions.
    void scanFinds(const std::vector<std::string> &identifiers)
    {
        std::string listed;
        for (const std::string &identifier : identifiers) {
            listed += fmt::format("/dev/{} (external, physical):\n", identifier);
            tools.answer(diskutil("info " + identifier), "   Whole:   Yes\n   Protocol:   USB\n");
        }
        tools.answer(diskutil("list physical"), listed);
        tools.answer(diskutil("list"), listed);
        tools.answer(root() + "/bin/df -k", "");
        finished(manager().startScan(true));
        ASSERT_EQ(manager().disks().size(), identifiers.size());
        QmlWindow::settle();
    }

private:
    EraseFlow *eraseFlowOfModel()
    {
        if (!m_eraseFlow)
            m_eraseFlow.emplace(eraseManager, manager());
        return &*m_eraseFlow;
    }

    std::optional<EraseFlow> m_eraseFlow;
    std::optional<WindowContentPresenter> m_erasing;
    std::optional<QmlWindow> m_window;
};

TEST_F(WindowFlowsTest, ErasesTheVolumeOfARowOnceItsNameIsTyped)
{
    answerSudo("eraseVolume ExFAT WORK WORK");
    openEraseDialog(false);

    eraseByClick();

    EXPECT_THAT(privilegedCalls(), ElementsAre(sudo("eraseVolume ExFAT WORK WORK")));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Complete");
    click("doneButton");
    EXPECT_TRUE(window().shows(QStringLiteral("diskListFrame")));
    EXPECT_FALSE(window().shows(QStringLiteral("eraseTitle")));
}

TEST_F(WindowFlowsTest, ErasesTheEFIPartitionOfARowOnceItsNameIsTyped)
{
    answerSudo("eraseVolume FAT32 BOOT disk2s1");
    openEraseDialog(true);

    eraseByClick();

    EXPECT_THAT(privilegedCalls(), ElementsAre(sudo("eraseVolume FAT32 BOOT disk2s1")));
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Complete");
}

struct Dismissal {
    const char *name;
    std::function<void(WindowFlowsTest &)> dismiss;
    bool stands; ///< The dialog is still there.
};

class EraseDismissed : public WindowFlowsTest, public testing::WithParamInterface<Dismissal> {};

INSTANTIATE_TEST_SUITE_P(
    By, EraseDismissed,
    testing::Values(Dismissal{"Escape", [](WindowFlowsTest &test) { test.window().press(Qt::Key_Escape); }, false},
                    Dismissal{"Cancel", [](WindowFlowsTest &test) { test.click("cancelButton"); }, false},
                    Dismissal{"Return", [](WindowFlowsTest &test) { test.window().press(Qt::Key_Return); }, true},
                    Dismissal{"WindowClosed", [](WindowFlowsTest &test) { test.window().window().close(); }, true},
                    Dismissal{"QuitShortcut",
                              [](WindowFlowsTest &test) { test.window().press(Qt::Key_Q, Qt::ControlModifier); }, true},
                    Dismissal{"WindowDestroyed", [](WindowFlowsTest &test) { test.destroyWindow(); }, true},
                    Dismissal{"FocusLost",
                              [](WindowFlowsTest &test) {
                                  QQuickWindow other;
                                  other.show();
                                  other.requestActivate();
                                  QmlWindow::settle();
                                  ASSERT_FALSE(test.window().window().isActive());
                              },
                              true},
                    Dismissal{"DiskUnplugged", [](WindowFlowsTest &test) { test.scanFinds({}); }, true},
                    Dismissal{"DiskReplaced", [](WindowFlowsTest &test) { test.scanFinds({"disk3"}); }, true}),
    [](const auto &row) { return row.param.name; });

TEST_P(EraseDismissed, ErasesNoVolume)
{
    openEraseDialog(false);

    GetParam().dismiss(*this);

    EXPECT_THAT(privilegedCalls(), IsEmpty());
    EXPECT_EQ(eraseManager.isActive(), GetParam().stands);
}

TEST_P(EraseDismissed, ErasesNoEFIPartition)
{
    openEraseDialog(true);

    GetParam().dismiss(*this);

    EXPECT_THAT(privilegedCalls(), IsEmpty());
    EXPECT_EQ(eraseManager.isActive(), GetParam().stands);
}

TEST_F(WindowFlowsTest, EndsInAFailureWhereTheDiskHasGoneMeanwhile)
{
    refuseSudo("eraseVolume FAT32 BOOT disk2s1", "Could not find disk: disk2s1");
    openEraseDialog(true);
    scanFinds({});
    EXPECT_TRUE(window().shows(QStringLiteral("nameField")));

    eraseByClick();

    EXPECT_EQ(eraseManager.stage(), EraseOperationManager::Stage::failed);
    EXPECT_EQ(window().textOf(QStringLiteral("eraseTitle")), "Erase Failed");
}

} // namespace
} // namespace brindle
