#include "ui/Menus.h"
#include "ui/ReadAloud.h"
#include "views/WindowContentFixture.h"

#include "shell/ViewHeightCalculator.h"
#include "support/WaitUntil.h"
#include "ui/WindowBridge.h"

#include <QApplication>
#include <QClipboard>
#include <QToolTip>

#include <map>
#include <set>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// The window's content, drawn off-screen and used by pointer and keys.
class WindowContentViewTest : public WindowContentFixture {
protected:
    QmlWindow &window(int height = 600)
    {
        if (!m_window) {
            const auto qml = QStringLiteral("WindowContentView { width: 500; height: %1 }").arg(height).toUtf8();
            m_window.emplace(qml, height, QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        }
        return *m_window;
    }

    [[nodiscard]] double heightOf(const char *path) { return window().item(QString::fromLatin1(path)).height(); }
    [[nodiscard]] bool shows(const char *path) { return window().shows(QString::fromLatin1(path)); }
    [[nodiscard]] std::string textOf(const char *path) { return window().textOf(QString::fromLatin1(path)); }
    void click(const char *path, Qt::MouseButton button = Qt::LeftButton)
    {
        window().click(QString::fromLatin1(path), button);
    }

    /// The item that has the keyboard.
    [[nodiscard]] std::string focused()
    {
        const QQuickItem *item = window().window().activeFocusItem();
        return item ? item->objectName().toStdString() : "";
    }

    /// How often something asks for the application's menu.
    int menuRequestsBy(const std::function<void()> &something)
    {
        auto *bridge = window().engine().singletonInstance<WindowBridge *>(qmlTypeId("Brindle", 1, 0, "WindowBridge"));
        int requests = 0;
        const auto connection =
            QObject::connect(bridge, &WindowBridge::applicationMenuRequested, [&requests] { ++requests; });
        something();
        QObject::disconnect(connection);
        return requests;
    }

    void holdOneStick()
    {
        hold({externalDisk("disk2", {{.identifier = "disk2s1"}})});
        tools.answer(diskutil("info disk2s1"), fmt::format("   Not applicable\n   Mount Point: {}\n", mountPoint()));
        std::filesystem::create_directories(mountPoint());
        answerSudo("mount disk2s1");
    }

    static PhysicalDisk withSpace(PhysicalDisk disk)
    {
        disk.totalSpaceBytes = 1'000'000'000'000;
        disk.usedSpaceBytes = 905'000'000'000;
        return disk;
    }

private:
    std::optional<QmlWindow> m_window;
};

// --- heights

TEST_F(WindowContentViewTest, IsAsHighAsTheCalculatorSaysToThePoint)
{
    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    hold({withSpace(externalDisk("disk2", {{.identifier = "disk2s1", .volumeName = "EFI"}, {.identifier = "disk2s3"}})),
          externalDisk("disk3", {{.identifier = "disk3s1"}})});
    manager().toggleExpanded("disk2");
    const double expected =
        ViewHeightCalculator(defaults).contentHeight(2, manager().expandedDisks(), manager().disks());

    EXPECT_EQ(heightOf("disk2"), 95);
    EXPECT_EQ(heightOf("disk2s1"), 41);
    EXPECT_EQ(heightOf("disk2s3"), 40);
    EXPECT_EQ(heightOf("disk3"), 68);
    EXPECT_EQ(heightOf("header") + heightOf("footer"), ViewHeightCalculator::kFrameHeight);
    const double listHeight = window().valueOf<double>(QStringLiteral("diskList"), "contentHeight") +
                              window().valueOf<double>(QStringLiteral("diskList"), "bottomMargin");
    EXPECT_EQ(listHeight + ViewHeightCalculator::kFrameHeight, expected);
}

TEST_F(WindowContentViewTest, KeepsTheContentOfEveryRowWithinItsHeight)
{
    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    hold({withSpace(externalDisk("disk2", {{.identifier = "disk2s1", .volumeName = "EFI"}, {.identifier = "disk2s3"}})),
          externalDisk("disk3")});
    manager().toggleExpanded("disk2");

    for (const char *row : {"disk2", "disk2s1", "disk2s3", "disk3"}) {
        QQuickItem &item = window().item(QString::fromLatin1(row));
        EXPECT_LE(item.childrenRect().height(), item.height()) << row;
        EXPECT_GE(item.childrenRect().y(), 0) << row;
    }
    EXPECT_LE(window().item(QStringLiteral("disk2/rowTexts")).height(), 95 - 8);
    EXPECT_LE(window().item(QStringLiteral("disk3/rowTexts")).height(), 68 - 8);
}

TEST_F(WindowContentViewTest, ScrollsTheListOnAShortScreen)
{
    std::vector<PhysicalDisk> disks;
    for (int i = 1; i <= 9; ++i)
        disks.push_back(externalDisk(fmt::format("disk{}", i)));
    hold(disks);

    window(300);
    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("diskList"), "interactive"));
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_End);

    EXPECT_EQ(focused(), "disk9");
    const QQuickItem &last = window().item(QStringLiteral("disk9"));
    EXPECT_EQ(last.mapToScene(QPointF(0, last.height())).y(), 300 - heightOf("footer") - 4) << "the ring wants air";
}

TEST_F(WindowContentViewTest, ScrollsTheListByItsBar)
{
    std::vector<PhysicalDisk> disks;
    for (int i = 1; i <= 9; ++i)
        disks.push_back(externalDisk(fmt::format("disk{}", i)));
    hold(disks);
    window(300);
    waitUntil([this] { return shows("listScrollBar"); });
    QQuickItem &bar = window().item(QStringLiteral("listScrollBar"));
    const QPoint top = bar.mapToScene(QPointF(bar.width() / 2, 5)).toPoint();

    QTest::mousePress(&window().window(), Qt::LeftButton, Qt::NoModifier, top);
    for (int distance = 20; distance <= 200; distance += 20)
        QTest::mouseMove(&window().window(), top + QPoint(0, distance));
    QTest::mouseRelease(&window().window(), Qt::LeftButton, Qt::NoModifier, top + QPoint(0, 200));

    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("diskList"), "atYEnd"));
}

// --- words

TEST_F(WindowContentViewTest, SaysThatItScansForTheFirstTime)
{
    defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);

    EXPECT_EQ(textOf("firstScan/noticeTitle"), "Scanning disks...");
    EXPECT_EQ(textOf("firstScan/noticeNote"), "Verifying current state");
    EXPECT_EQ(heightOf("firstScan"), 120);
    EXPECT_FALSE(shows("diskList"));
}

TEST_F(WindowContentViewTest, SaysThatThereAreNoDisks)
{
    findNoDisks();

    EXPECT_EQ(textOf("noDisks/noticeTitle"), "No disks found");
    EXPECT_EQ(heightOf("noDisks"), 120);
}

TEST_F(WindowContentViewTest, ShowsInHeaderAndFooterWhatHasAFunction)
{
    EXPECT_EQ(textOf("title"), "Brindle");
    EXPECT_EQ(readAloud(window().item(QStringLiteral("refreshButton"))),
              (ReadAloud{QAccessible::Button, "Refresh Disks"}));
    EXPECT_EQ(readAloud(window().item(QStringLiteral("quitButton"))), (ReadAloud{QAccessible::Button, "Quit"}));
    EXPECT_EQ(textOf("statusText"), "Ready");
    EXPECT_FALSE(shows("statusSpinner"));
    EXPECT_FALSE(shows("statusSymbol"));
}

TEST_F(WindowContentViewTest, PutsASpinnerInPlaceOfTheRefreshButtonWhileItScans)
{
    paths = ToolPaths::system();
    plugIn({"disk2"});
    tools.hold("/usr/sbin/diskutil list physical");
    window();
    auto scanning = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");

    EXPECT_TRUE(shows("refreshSpinner"));
    EXPECT_FALSE(shows("refreshButton"));
    EXPECT_EQ(textOf("statusText"), "Scanning disks...");
    EXPECT_TRUE(shows("statusSpinner"));
    tools.release("/usr/sbin/diskutil list physical");
    finished(std::move(scanning));
    EXPECT_TRUE(shows("refreshButton"));
}

TEST_F(WindowContentViewTest, DoesNotRefreshByKeysWhileItScans)
{
    paths = ToolPaths::system();
    plugIn({"disk2"});
    tools.hold("/usr/sbin/diskutil list physical");
    window();
    auto scanning = manager().startScan(false);
    awaitCall("/usr/sbin/diskutil list physical");
    const std::size_t calls = tools.calls().size();

    window().press(Qt::Key_R, Qt::ControlModifier);
    settle();

    EXPECT_EQ(tools.calls().size(), calls);
    tools.release("/usr/sbin/diskutil list physical");
    finished(std::move(scanning));
}

// --- pointer

TEST_F(WindowContentViewTest, MountsByItsButton)
{
    holdOneStick();

    click("disk2/mountButton");
    settle();

    EXPECT_THAT(journal, Contains(sudo("mount disk2s1")));
    EXPECT_EQ(readAloud(window().item(QStringLiteral("disk2/mountButton"))).name, "Unmount EFI partition");
    EXPECT_TRUE(shows("disk2/findButton"));
}

TEST_F(WindowContentViewTest, DisablesTheButtonsOfARowWhileItsActionRuns)
{
    holdOneStick();
    launcher.hold(sudo("mount disk2s1"));

    click("disk2/mountButton");
    clock.advance(0ms);

    for (const char *button : {"disk2/mountButton", "disk2/ejectButton"})
        EXPECT_FALSE(window().valueOf<bool>(QString::fromLatin1(button), "enabled")) << button;
    EXPECT_EQ(textOf("statusText"), "Mounting EFI partition of Disk disk2");
    EXPECT_TRUE(shows("statusSpinner"));
    launcher.release(sudo("mount disk2s1"));
    settle();
    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("disk2/mountButton"), "enabled"));
    EXPECT_EQ(textOf("statusText"), "Ready");
}

TEST_F(WindowContentViewTest, MountsByADoubleClickOnce)
{
    holdOneStick();

    window().doubleClick(QStringLiteral("disk2/diskName"));
    settle();

    EXPECT_EQ(std::ranges::count(journal, sudo("mount disk2s1")), 1);
}

TEST_F(WindowContentViewTest, MountsAndUnmountsAPartitionByADoubleClickOnItsRow)
{
    manager().toggleExpanded("disk2");
    answerInfo("disk2s3", false);
    answerSudo("mount disk2s3");
    answerSudo("unmount disk2s3");

    window().doubleClick(QStringLiteral("disk2s3/partitionIdentifier"));
    settle();
    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudo("mount disk2s3")));

    answerInfo("disk2s3", true);
    finished(manager().updateEFIPartitionState("disk2s3"));
    window().doubleClick(QStringLiteral("disk2s3/partitionIdentifier"));
    settle();
    EXPECT_THAT(launcher.commandLines(), ElementsAre(sudo("mount disk2s3"), sudo("unmount disk2s3")));
}

TEST_F(WindowContentViewTest, DoesNotMountByADoubleClickOnAButton)
{
    holdOneStick();
    window();
    workspace.openFile("before");

    window().doubleClick(QStringLiteral("disk2/ejectButton"));
    settle();

    EXPECT_THAT(journal, Not(Contains(sudo("mount disk2s1"))));
}

TEST_F(WindowContentViewTest, OpensTheListOfPartitionsByTheChevron)
{
    EXPECT_FALSE(shows("disk2s1"));
    EXPECT_EQ(readAloud(window().item(QStringLiteral("disk2/chevron"))).name, "Expand EFI List");

    click("disk2/chevron");
    EXPECT_TRUE(shows("disk2s1"));
    EXPECT_EQ(textOf("disk2s3/partitionIdentifier"), "disk2s3");
    click("disk2/chevron");
    EXPECT_THAT(manager().expandedDisks(), testing::IsEmpty());
    EXPECT_FALSE(shows("disk2s1"));
}

TEST_F(WindowContentViewTest, HasASmallChevronThatIsEasyToHit)
{
    QQuickItem &chevron = window().item(QStringLiteral("disk2/chevron"));
    EXPECT_EQ(chevron.size(), QSizeF(12, 12));

    (void)window().picture();
    const QPointF beside = chevron.mapToScene({-3, 15});
    QTest::mouseClick(&window().window(), Qt::LeftButton, Qt::NoModifier, beside.toPoint());

    EXPECT_THAT(manager().expandedDisks(), ElementsAre("disk2"));
}

TEST_F(WindowContentViewTest, ShowsTheMenuOfARowByTheRightButton)
{
    holdOneStick();

    click("disk2", Qt::RightButton);

    EXPECT_THAT(textsOfOpenMenu(),
                ElementsAre("Mount EFI", "Erase EFI Partition...", "Enable EFI Auto-Mount", "View SMART Details...",
                            "Eject Disk", "Erase Disk...", "Refresh Disks", "Disk disk2", "16.0 GB"));
    chooseFromMenu(window(), QStringLiteral("Mount EFI"));
    settle();
    EXPECT_THAT(journal, Contains(sudo("mount disk2s1")));
}

TEST_F(WindowContentViewTest, DrawsTheSymbolsOfAMenuInTheColourOfItsText)
{
    holdOneStick();
    setColorScheme(window().engine(), ColorScheme::dark);
    const QColor text = QApplication::palette("QMenu").color(QPalette::Text);

    click("disk2", Qt::RightButton);

    ASSERT_TRUE(openMenu());
    const QImage symbol = openMenu()->actions().constFirst()->icon().pixmap(16).toImage();
    int drawn = 0;
    for (int y = 0; y < symbol.height(); ++y) {
        for (int x = 0; x < symbol.width(); ++x) {
            if (symbol.pixelColor(x, y).alpha() == 255) {
                EXPECT_EQ(symbol.pixelColor(x, y).rgb(), text.rgb());
                ++drawn;
            }
        }
    }
    EXPECT_GT(drawn, 0);
    closeMenu(window());
}

TEST_F(WindowContentViewTest, ShowsTheMenuOfAPartition)
{
    manager().toggleExpanded("disk2");

    click("disk2s3", Qt::RightButton);

    EXPECT_THAT(textsOfOpenMenu(), ElementsAre("Mount EFI", "Erase EFI Partition...", "Stick"));
    closeMenu(window());
}

// --- keys

TEST_F(WindowContentViewTest, ReachesEverythingByTab)
{
    std::vector<std::string> reached;
    window();
    for (int i = 0; i < 5; ++i) {
        window().press(Qt::Key_Tab);
        reached.push_back(focused());
    }

    EXPECT_THAT(reached, ElementsAre("refreshButton", "disk2", "ejectButton", "mountButton", "chevron"));
    window().press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "quitButton");
}

TEST_F(WindowContentViewTest, WalksTheRowsByArrowsAndOpensThem)
{
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);
    ASSERT_EQ(focused(), "disk2");

    window().press(Qt::Key_Right);
    EXPECT_TRUE(shows("disk2s1"));
    window().press(Qt::Key_Down);
    EXPECT_EQ(focused(), "disk2s1");
    window().press(Qt::Key_End);
    EXPECT_EQ(focused(), "disk5");
    window().press(Qt::Key_Home);
    EXPECT_EQ(focused(), "disk2");
    window().press(Qt::Key_Left);
    EXPECT_FALSE(shows("disk2s1"));
    window().press(Qt::Key_Space);
    EXPECT_TRUE(shows("disk2s1"));
}

TEST_F(WindowContentViewTest, GoesToTheRowThatIsTyped)
{
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);

    window().type(QStringLiteral("ot"));
    EXPECT_EQ(focused(), "disk5");
}

TEST_F(WindowContentViewTest, MountsBySpace)
{
    holdOneStick();
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);

    window().press(Qt::Key_Space);
    settle();

    EXPECT_EQ(std::ranges::count(journal, sudo("mount disk2s1")), 1);
}

TEST_F(WindowContentViewTest, ShowsTheMenuByTheMenuKey)
{
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);

    window().press(Qt::Key_Menu);

    EXPECT_THAT(textsOfOpenMenu(), Contains("Expand EFI List"));
    closeMenu(window());
}

TEST_F(WindowContentViewTest, CopiesTheIdentifierOfTheRow)
{
    window().press(Qt::Key_Tab);
    window().press(Qt::Key_Tab);

    window().press(Qt::Key_C, Qt::ControlModifier);

    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("disk2"));
}

TEST_F(WindowContentViewTest, AsksToQuit)
{
    int quits = 0;
    QObject::connect(&content(), &WindowContentPresenter::quitRequested, [&] { ++quits; });

    window().press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 1);
    click("quitButton");
    EXPECT_EQ(quits, 2);
}

TEST_F(WindowContentViewTest, KeepsARowMarkedWhileItsMenuIsOpen)
{
    holdOneStick();
    window();
    const auto color = [this] { return window().valueOf<QColor>(QStringLiteral("disk2/rowSurface"), "color"); };
    const QColor before = color();

    click("disk2", Qt::RightButton);

    ASSERT_FALSE(textsOfOpenMenu().empty());
    EXPECT_NE(color(), before);
    closeMenu(window());
}

struct MenuRequest {
    const char *name;
    std::function<void(QmlWindow &)> ask;
};

class ApplicationMenuRequest : public WindowContentViewTest, public testing::WithParamInterface<MenuRequest> {};

INSTANTIATE_TEST_SUITE_P(By, ApplicationMenuRequest,
                         testing::Values(MenuRequest{"F10", [](QmlWindow &window) { window.press(Qt::Key_F10); }},
                                         MenuRequest{"MenuKey", [](QmlWindow &window) { window.press(Qt::Key_Menu); }},
                                         MenuRequest{"MenuKeyOnAButton",
                                                     [](QmlWindow &window) {
                                                         window.tabTo("refreshButton");
                                                         window.press(Qt::Key_Menu);
                                                     }},
                                         MenuRequest{"RightClickOnTheHeader",
                                                     [](QmlWindow &window) {
                                                         window.click(QStringLiteral("header"), Qt::RightButton);
                                                     }}),
                         [](const auto &row) { return row.param.name; });

TEST_P(ApplicationMenuRequest, IsHandedOnOnce)
{
    EXPECT_EQ(menuRequestsBy([this] { GetParam().ask(window()); }), 1);
}

TEST_F(WindowContentViewTest, GivesTheKeyboardToTheFirstDestinationOfACopy)
{
    hold({externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true, .mountPoint = mountPoint()}}),
          externalDisk("disk3", {{.identifier = "disk3s1", .isMounted = true, .mountPoint = mountPoint()}})});
    window();

    row().perform(RowAction::copyEFI);

    waitUntil([this] { return focused() == "destination0"; });
}

TEST_F(WindowContentViewTest, PaintsMenusAndTipsInItsScheme)
{
    for (const auto &[scheme, isDark] : {std::pair(ColorScheme::dark, true), std::pair(ColorScheme::light, false)}) {
        setColorScheme(window().engine(), scheme);
        const QPalette menus = QApplication::palette("QMenu");
        EXPECT_EQ(menus.color(QPalette::Text).lightness() > menus.color(QPalette::Window).lightness(), isDark);
        const QPalette tips = QToolTip::palette();
        EXPECT_EQ(tips.color(QPalette::ToolTipText).lightness() > tips.color(QPalette::ToolTipBase).lightness(),
                  isDark);
    }
}

// --- tool tips

TEST_F(WindowContentViewTest, TellsWhatEachButtonDoesByItsTip)
{
    PhysicalDisk stick = externalDisk(
        "disk2", {{.identifier = "disk2s1", .isMounted = true, .mountPoint = mountPoint()}, {.identifier = "disk2s3"}});
    hold({stick});
    manager().toggleExpanded("disk2");

    for (const auto &[button, tip] :
         std::map<const char *, const char *>{{"refreshButton", "Refresh Disks"},
                                              {"quitButton", "Quit"},
                                              {"disk2/copyButton", "Copy EFI folder to another disk"},
                                              {"disk2/ejectButton", "Eject disk"},
                                              {"disk2/configButton", "Quick Edit config.plist"},
                                              {"disk2/findButton", "Open in Finder"},
                                              {"disk2/mountButton", "Unmount EFI partition"},
                                              {"disk2/chevron", "Collapse EFI List"},
                                              {"disk2s1/copyButton", "Copy EFI"},
                                              {"disk2s1/configButton", "Quick Edit config.plist"},
                                              {"disk2s1/findButton", "Open in Finder"},
                                              {"disk2s1/mountButton", "Unmount EFI partition"},
                                              {"disk2s3/mountButton", "Mount EFI partition"}}) {
        EXPECT_EQ(window().valueOf<QString>(QString::fromLatin1(button), "tip").toStdString(), tip) << button;
        EXPECT_EQ(readAloud(window().item(QString::fromLatin1(button))).name, tip) << button;
    }
}

TEST_F(WindowContentViewTest, TellsWhatADoubleClickDoesWhereThePointerRestsOnTheRow)
{
    holdOneStick();

    window().hover(QStringLiteral("disk2/diskName"));
    waitUntil([] { return QToolTip::text() == u"Double click to mount EFI"; });
}

// --- what a screen reader says

TEST_F(WindowContentViewTest, ReadsARowAloudWithAllThatItShows)
{
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    PhysicalDisk disk = externalDisk("disk2", {{.identifier = "disk2s1"}});
    disk.volumeName = "WORK";
    disk.smartStatus = SMARTStatus::failing;
    disk.hasOpenCore = true;
    hold({disk});

    QQuickItem &row = window().item(QStringLiteral("disk2"));

    EXPECT_EQ(readAloud(row), (ReadAloud{QAccessible::ListItem, "Disk disk2, WORK"}));
    EXPECT_EQ(descriptionReadAloud(row), "disk2, 16.0 GB, External, OC, SMART Failing, EFI not mounted");
}

TEST_F(WindowContentViewTest, MountsByTheActionOfAScreenReader)
{
    holdOneStick();

    ASSERT_TRUE(pressByReader(window().item(QStringLiteral("disk2"))));
    settle();

    EXPECT_EQ(std::ranges::count(journal, sudo("mount disk2s1")), 1);
}

// --- narrow rows

class FullRowTest : public WindowContentViewTest {
protected:
    /// A mounted disk with the longest that a row has to show.
    static PhysicalDisk fullDisk()
    {
        PhysicalDisk disk =
            externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true}, {.identifier = "disk2s3"}});
        disk.name = "A Manufacturer's Portable Solid State Drive With a Very Long Name";
        disk.volumeName = "First Volume With a Long Label • Second Volume • Third Volume";
        disk.size = "1000.2 GB";
        disk.diskType = PhysicalDisk::DiskType::removable;
        disk.hasOpenCore = disk.hasClover = disk.hasMacOS = disk.hasWindows = disk.hasExFAT = true;
        disk.smartStatus = SMARTStatus::failing;
        return disk;
    }

    /// The details that can be read, in order.
    std::vector<std::string> details()
    {
        std::vector<std::string> texts;
        collect(window().item(QStringLiteral("details")), texts);
        return texts;
    }

private:
    static void collect(const QQuickItem &item, std::vector<std::string> &texts)
    {
        for (const QQuickItem *child : item.childItems()) {
            if (!child->isVisible())
                continue;
            if (child->objectName() == QStringLiteral("detail"))
                texts.push_back(child->property("text").toString().toStdString());
            collect(*child, texts);
        }
    }
};

TEST_F(FullRowTest, LeavesIndicatorsOutFromTheRightAndNothingElse)
{
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    hold({fullDisk()});

    const std::vector<std::string> shown = details();

    ASSERT_GE(shown.size(), 4U);
    EXPECT_EQ(shown[0], "1000.2 GB");
    EXPECT_EQ(shown[1], "Removable");
    EXPECT_EQ(shown.back(), "SMART Failing");
    EXPECT_EQ(shown[shown.size() - 2].front(), '+');
    QQuickItem &line = window().item(QStringLiteral("details"));
    EXPECT_LE(line.implicitWidth(), line.width());
    EXPECT_THAT(descriptionReadAloud(window().item(QStringLiteral("disk2"))),
                HasSubstr("OC, Clover, macOS, Windows ExFAT"));
}

TEST_F(FullRowTest, CutsTheLabelBeforeTheName)
{
    PhysicalDisk disk = fullDisk();
    disk.name = "Short Name";
    hold({disk});

    EXPECT_FALSE(window().valueOf<bool>(QStringLiteral("diskName"), "truncated"));
    EXPECT_TRUE(window().valueOf<bool>(QStringLiteral("volumeLabel"), "truncated"));
}

TEST_F(FullRowTest, ShowsAllWhereThereIsRoom)
{
    PhysicalDisk disk = externalDisk("disk2");
    disk.hasOpenCore = disk.hasMacOS = true;
    hold({disk});

    EXPECT_THAT(details(), ElementsAre("16.0 GB", "External", "OC", "macOS"));
}

TEST_F(FullRowTest, KeepsBootDiskAndItsLoader)
{
    PhysicalDisk disk = fullDisk();
    disk.isBootDisk = true;
    hold({disk});

    EXPECT_THAT(details(), ElementsAre("1000.2 GB", "Removable", "Boot Disk", "Clover"));
}

TEST_F(FullRowTest, DrawsALittleOfTheBarOfAnEmptyDisk)
{
    defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, true);
    PhysicalDisk disk = withSpace(externalDisk("disk2"));
    disk.usedSpaceBytes = 1;
    hold({disk});

    EXPECT_EQ(window().item(QStringLiteral("spaceFill")).width(), 3);
    EXPECT_EQ(textOf("percent"), "0%");
}

// --- speed

TEST_F(WindowContentViewTest, RepaintsOneRowForAPublishThatChangesOneDisk)
{
    std::vector<PhysicalDisk> disks;
    for (int i = 1; i <= 500; ++i)
        disks.push_back(externalDisk(fmt::format("disk{}", i)));
    hold(disks);
    window();
    int changes = 0;
    for (int i = 0; i < 500; ++i)
        QObject::connect(&row(i), &RowPresenter::changed, [&] { ++changes; });

    disks[1].volumeName = "WORK";
    content().rows()->setDisks(disks, {});

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(textOf("disk2/volumeLabel"), "WORK");
}

} // namespace
} // namespace brindle
