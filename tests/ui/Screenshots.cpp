// Pictures of every state of the window, in both schemes, for people to look at: ./dev screenshots.

#include "ui/Stillness.h"
#include "views/WindowContentFixture.h"

#include "ui/WindowBridge.h"

#include "shell/ViewHeightCalculator.h"
#include "shell/WindowHeight.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QMenu>

namespace brindle {
namespace {

class Screenshots : public WindowContentFixture, public testing::WithParamInterface<ColorScheme> {
protected:
    Screenshots()
    {
        defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
        defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    }

    /// As high as the window makes itself.
    QmlWindow &window()
    {
        if (!m_window) {
            const std::vector<PhysicalDisk> &disks = manager().disks();
            const double height = windowHeight(
                ViewHeightCalculator(defaults).contentHeight(disks.size(), manager().expandedDisks(), disks), screen);
            m_window.emplace(QStringLiteral("WindowContentView { width: 500; height: %1 }").arg(height).toUtf8(),
                             qRound(height),
                             QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
            m_window->window().setColor(Qt::transparent);
            auto *bridge =
                m_window->engine().singletonInstance<WindowBridge *>(qmlTypeId("Brindle", 1, 0, "WindowBridge"));
            bridge->setIsComposited(true);
            setColorScheme(m_window->engine(), GetParam());
            content().setColorScheme(GetParam());
        }
        return *m_window;
    }

    /// As the window does for a dialog.
    void setHeight(int height)
    {
        window().window().setHeight(height);
        window().root().setHeight(height);
    }

    double screen = 1080; ///< Its height.

    void save(const char *name)
    {
        const QDir folder(qEnvironmentVariable("BRINDLE_SCREENSHOTS", QStringLiteral(".")));
        const char *scheme = GetParam() == ColorScheme::dark ? "dark" : "light";
        window().settle();
        const QString path =
            folder.filePath(QStringLiteral("%1-%2.png").arg(QLatin1String(name), QLatin1String(scheme)));
        EXPECT_TRUE(window().picture().save(path)) << path.toStdString();
    }

    static PhysicalDisk disk(std::string identifier, std::string name, std::string size, PhysicalDisk::DiskType type)
    {
        return {.identifier = identifier,
                .mediaUUID = "UUID-" + identifier,
                .name = std::move(name),
                .size = std::move(size),
                .diskType = type};
    }

    /// A machine as people have it.
    static std::vector<PhysicalDisk> machine()
    {
        using Type = PhysicalDisk::DiskType;
        PhysicalDisk boot = disk("disk0", "Samsung SSD 980 PRO (nvme0n1)", "1.0 TB", Type::physicalInternal);
        boot.volumeName = "System";
        boot.isBootDisk = boot.hasOpenCore = boot.hasMacOS = true;
        boot.efiPartitions = {
            {.identifier = "disk0s1", .isMounted = true, .mountPoint = "/Volumes/EFI", .volumeName = "EFI"}};
        boot.totalSpaceBytes = 1'000'204'886'016;
        boot.usedSpaceBytes = 412'000'000'000;
        boot.smartStatus = SMARTStatus::verified;
        PhysicalDisk windows = disk("disk1", "Crucial MX500 (sda)", "500.1 GB", Type::physicalInternal);
        windows.volumeName = "Windows • Work";
        windows.hasWindows = windows.hasLinux = true;
        windows.efiPartitions = {{.identifier = "disk1s1", .volumeName = "SYSTEM"}, {.identifier = "disk1s5"}};
        windows.totalSpaceBytes = 500'107'862'016;
        windows.usedSpaceBytes = 401'000'000'000;
        windows.smartStatus = SMARTStatus::failing;
        PhysicalDisk stick = disk("disk2", "SanDisk Ultra (sdb)", "32.0 GB", Type::removable);
        stick.volumeName = "INSTALL";
        stick.hasOpenCore = true;
        stick.efiPartitions = {{.identifier = "disk2s1"}};
        stick.smartStatus = SMARTStatus::notSupported;
        PhysicalDisk backup = disk("disk3", "WD Elements (sdc)", "4.0 TB", Type::physicalExternal);
        backup.hasExFAT = true;
        backup.totalSpaceBytes = 4'000'000'000'000;
        backup.usedSpaceBytes = 3'810'000'000'000;
        backup.volumeName = "Backup";
        backup.smartStatus = SMARTStatus::notSupported;
        PhysicalDisk image = disk("disk4", "Disk Image (loop0)", "2.1 GB", Type::diskImage);
        return {boot, windows, stick, backup, image};
    }

private:
    std::optional<QmlWindow> m_window;
};

INSTANTIATE_TEST_SUITE_P(Schemes, Screenshots, testing::Values(ColorScheme::light, ColorScheme::dark));

TEST_P(Screenshots, List)
{
    hold(machine());
    manager().toggleExpanded("disk1");
    save("list");
}

TEST_P(Screenshots, ListWithTheKeyboardInIt)
{
    hold(machine());
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Down);
    window().hover(QStringLiteral("disk2/mountButton"));
    save("keyboard");
}

TEST_P(Screenshots, FullRows)
{
    PhysicalDisk full = disk("disk2", "A Manufacturer's Portable Solid State Drive With a Very Long Name", "1000.2 GB",
                             PhysicalDisk::DiskType::removable);
    full.volumeName = "First Volume • Second Volume • Third Volume";
    full.efiPartitions = {{.identifier = "disk2s1", .isMounted = true}, {.identifier = "disk2s3"}};
    full.hasOpenCore = full.hasClover = full.hasMacOS = full.hasWindows = full.hasExFAT = true;
    full.smartStatus = SMARTStatus::failing;
    full.totalSpaceBytes = full.usedSpaceBytes = 1'000'200'000'000;
    PhysicalDisk one = full;
    one.identifier = "disk3";
    one.efiPartitions.resize(1);
    one.isBootDisk = true;
    one.smartStatus = SMARTStatus::verified;
    hold({one, full});
    save("full-rows");
}

TEST_P(Screenshots, ListOnALowScreen)
{
    screen = 600;
    std::vector<PhysicalDisk> disks = machine();
    for (PhysicalDisk disk : machine()) {
        disk.identifier += "0";
        disk.isBootDisk = false;
        disks.push_back(disk);
    }
    hold(disks);
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_PageDown);
    waitUntil([this] { return window().shows(QStringLiteral("listScrollBar")); });
    save("list-600");
    window().press(Qt::Key_End);
    save("list-600-end");
}

TEST_P(Screenshots, FirstScan)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    paths = ToolPaths::system();
    plugIn({"disk2"});
    tools.hold("/usr/sbin/diskutil list physical");
    window();
    auto scanning = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");
    save("first-scan");
    tools.release("/usr/sbin/diskutil list physical");
    finished(std::move(scanning));
}

TEST_P(Screenshots, NoDisks)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
    paths = ToolPaths::system();
    plugIn({});
    scan();
    save("no-disks");
}

TEST_P(Screenshots, QuitWhileARowWorks)
{
    hold(machine());
    answerInfo("disk2s1", false);
    answerSudo("mount disk2s1");
    launcher.hold(sudo("mount disk2s1"));
    window();
    row(2).perform(RowAction::toggleMount);
    clock.advance(std::chrono::milliseconds(0));
    unfinishedWork.endProcessWithIt();
    save("quit-list");
    launcher.release(sudo("mount disk2s1"));
    settle();
}

TEST_P(Screenshots, QuitWhileItCopies)
{
    writeSampleEFI(root() + "/source/EFI");
    std::vector<PhysicalDisk> disks = machine();
    disks[0].efiPartitions[0].mountPoint = root() + "/source";
    disks[2].efiPartitions[0].isMounted = true;
    disks[2].efiPartitions[0].mountPoint = root() + "/destination"; // has gone: the copy hangs
    hold(disks);
    window();
    EFICopyFlow &flow = content().copyFlow();
    flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);
    flow.onDestinationSelected(flow.availableDestinations().front(), false);
    waitUntil([this] { return copyManager.operationStatus().starts_with("Copy failed: "); });
    setHeight(428);
    waitForStillness(window());
    unfinishedWork.endProcessWithIt();
    save("quit-copy");
    copyManager.cancelOperation();
}

TEST_P(Screenshots, QuitWhileItErases)
{
    hold(machine());
    window();
    eraseFlow.openForDisk(machine()[2], {});
    eraseManager.setConfirmInput("INSTALL");
    eraseManager.confirm();
    window().settle();
    eraseManager.finish(EraseOperationManager::Stage::inProgress, "");
    setHeight(428);
    waitForStillness(window());
    unfinishedWork.endProcessWithIt();
    save("quit-erase");
}

TEST_P(Screenshots, Menu)
{
    hold(machine());
    window().click(QStringLiteral("disk2"), Qt::RightButton);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    const QDir folder(qEnvironmentVariable("BRINDLE_SCREENSHOTS", QStringLiteral(".")));
    EXPECT_TRUE(menu->grab().save(folder.filePath(GetParam() == ColorScheme::dark ? QStringLiteral("menu-dark.png")
                                                                                  : QStringLiteral("menu-light.png"))));
    menu->close();
}

} // namespace
} // namespace brindle
