#include "ui/CopyDialogFixture.h"
#include "ui/EraseDialogFixture.h"
#include "ui/ReadAloud.h"
#include "ui/TwoDisksFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// --- each kind of control

using ActionName = const QString &(*)();
constexpr ActionName kPress = &QAccessibleActionInterface::pressAction;
constexpr ActionName kToggle = &QAccessibleActionInterface::toggleAction;

/// A control called "control", which notes what becomes of it.
struct ActionCase {
    const char *name;
    ActionName action;
    const char *qml;
};

class AccessibleAction : public testing::TestWithParam<ActionCase> {
protected:
    static QmlWindow &show(std::optional<QmlWindow> &window, const QByteArray &surroundings = {})
    {
        window.emplace("Item { width: 500; height: 300; property var noted: []; "
                       "function note(what: string): void { noted.push(what); }" +
                       surroundings + GetParam().qml + "}");
        QmlWindow::settle();
        return *window;
    }
    static std::vector<std::string> noted(QmlWindow &window)
    {
        std::vector<std::string> lines;
        for (const QVariant &line : window.root().property("noted").toList())
            lines.push_back(line.toString().toStdString());
        return lines;
    }
    static bool perform(QmlWindow &window)
    {
        const bool isOffered = performByReader(window.item(QStringLiteral("control")), GetParam().action());
        QmlWindow::settle();
        return isOffered;
    }
};

constexpr const char *kCheckBox = R"(CheckBox { objectName: "control"; text: "Overwrite"
                                                onCheckedChanged: note("is " + checked)
                                                onToggled: note("toggled to " + checked); onClicked: note("clicked") })";
constexpr const char *kDestination = R"(DestinationEFIPartitionRow {
                                            objectName: "control"; width: 400; onClicked: note("clicked")
                                            destination: ({ diskName: "Stick", details: [], trailingSymbols: [],
                                                            isSelected: false, description: "Stick, disk2s1" }) })";
constexpr const char *kSegments = R"(SegmentedPicker { objectName: "picker"; segments: ["Volume", "Disk"]
                                                       onActivated: index => note("activated " + index)
                                                       Component.onCompleted: children[1].children[1].objectName = "control"
                                     })";

INSTANTIATE_TEST_SUITE_P(
    Of, AccessibleAction,
    testing::Values(
        ActionCase{"APushButton", kPress,
                   R"(PushButton { objectName: "control"; text: "A"; onClicked: note("clicked") })"},
        ActionCase{"AnIconButton", kPress,
                   R"(IconButton { objectName: "control"; symbol: "eject"; tip: "A"; onClicked: note("clicked") })"},
        ActionCase{"AnOptionButton", kPress,
                   R"(OptionButton { objectName: "control"; width: 400; returnPresses: false; onClicked: note("clicked")
                                     option: ({ icon: "eject", title: "A", text: "B", color: "blue" }) })"},
        ActionCase{"ACheckBoxThatIsPressed", kPress, kCheckBox}, ActionCase{"ACheckBox", kToggle, kCheckBox},
        ActionCase{"ADestination", kPress, kDestination},
        ActionCase{"ADestinationThatIsToggled", kToggle, kDestination}, ActionCase{"ASegment", kPress, kSegments},
        ActionCase{"ASegmentThatIsToggled", kToggle, kSegments},
        ActionCase{"APicker", kPress,
                   R"(Picker { objectName: "control"; name: "Format"; model: ["A", "B"]
                               popup.onAboutToShow: note("opened") })"}),
    [](const auto &row) { return row.param.name; });

TEST_P(AccessibleAction, DoesWhatAClickDoes)
{
    std::optional<QmlWindow> clicked;
    show(clicked).click(QStringLiteral("control"));
    const std::vector<std::string> byClick = noted(*clicked);
    std::optional<QmlWindow> read;

    ASSERT_TRUE(perform(show(read)));

    EXPECT_THAT(byClick, Not(IsEmpty()));
    EXPECT_EQ(noted(*read), byClick);
}

TEST_P(AccessibleAction, DoesNothingWhileTheControlIsDisabled)
{
    std::optional<QmlWindow> window;

    perform(show(window, "enabled: false;"));

    EXPECT_THAT(noted(*window), IsEmpty());
}

TEST_P(AccessibleAction, DoesNothingOnceTheControlIsHidden)
{
    std::optional<QmlWindow> window;
    QQuickItem &control = show(window).item(QStringLiteral("control"));

    window->root().setVisible(false);
    performByReader(control, GetParam().action());
    QmlWindow::settle();

    EXPECT_THAT(noted(*window), IsEmpty());
}

// --- the list

/// A control of the list, how a pointer uses it, and a part of what the machine is asked then.
struct ListControl {
    const char *name;
    const char *path;
    bool isDoubleClicked;
    const char *asked;
};

class AccessibleActionOfList : public TwoDisksFixture,
                               public testing::WithParamInterface<std::tuple<ListControl, bool>> {
protected:
    AccessibleActionOfList()
    {
        writeFile(mountPoint() + "/EFI/OC/config.plist", "");
        answerInfo("disk2s1", true);
        answerInfo("disk4s1", false);
        answerInfo("disk4s2", false);
        for (const char *arguments : {"unmount disk2s1", "mount disk4s1", "mount disk4s2"})
            answerSudo(arguments);
    }

    /// What was asked, in order, with what the window itself tells.
    std::vector<std::string> asked()
    {
        std::vector<std::string> lines = journal;
        lines.push_back(manager().expandedDisks().contains("disk4") ? "disk4 is open" : "disk4 is closed");
        lines.push_back(fmt::format("{} save panels", dialogs.savePanels.size()));
        lines.push_back(fmt::format("{} quits", m_quits));
        return lines;
    }

    void use(const ListControl &control)
    {
        QmlWindow &window = open();
        QObject::connect(&content(), &WindowContentPresenter::quitRequested, [this] { ++m_quits; });
        const QString path = QString::fromLatin1(control.path);
        if (std::get<bool>(GetParam()))
            EXPECT_TRUE(pressByReader(window.item(path)));
        else if (control.isDoubleClicked)
            window.doubleClick(path);
        else
            window.click(path);
        settle();
    }

private:
    int m_quits = 0;
};

INSTANTIATE_TEST_SUITE_P(
    By, AccessibleActionOfList,
    testing::Combine(testing::Values(ListControl{"ARow", "disk2", true, "diskutil unmount disk2s1"},
                                     ListControl{"ARowOfAPartition", "disk4s2", true, "diskutil mount disk4s2"},
                                     ListControl{"Mount", "disk4s1/mountButton", false, "diskutil mount disk4s1"},
                                     ListControl{"Unmount", "disk2/mountButton", false, "diskutil unmount disk2s1"},
                                     ListControl{"Eject", "disk2/ejectButton", false, "diskutil eject disk2"},
                                     ListControl{"QuickEdit", "disk2/configButton", false, "/EFI/OC/config.plist"},
                                     ListControl{"Find", "disk2/findButton", false, "open "},
                                     ListControl{"Copy", "disk2/copyButton", false, "1 save panels"},
                                     ListControl{"TheChevron", "disk4/chevron", false, "disk4 is closed"},
                                     ListControl{"Refresh", "refreshButton", false, "diskutil list physical"},
                                     ListControl{"Quit", "quitButton", false, "1 quits"}),
                     testing::Bool()),
    [](const auto &row) {
        return std::string(std::get<0>(row.param).name) + (std::get<1>(row.param) ? "ByAScreenReader" : "ByPointer");
    });

TEST_P(AccessibleActionOfList, AsksTheMachineForTheSame)
{
    const auto &[control, isByReader] = GetParam();

    use(control);

    EXPECT_THAT(asked(), Contains(HasSubstr(control.asked)).Times(1));
}

class AccessibleActionsOfList : public TwoDisksFixture {};

TEST_F(AccessibleActionsOfList, OpenARowThatThePointerOpensByItsChevron)
{
    ASSERT_TRUE(pressByReader(open().item(QStringLiteral("disk4"))));

    EXPECT_THAT(manager().expandedDisks(), IsEmpty());
}

TEST_F(AccessibleActionsOfList, DoNothingInARowWhoseActionIsUnderWay)
{
    answerInfo("disk2s1", true);
    answerSudo("unmount disk2s1");
    launcher.hold(sudo("unmount disk2s1"));
    QmlWindow &window = open();
    window.click(QStringLiteral("disk2/mountButton"));
    clock.advance(std::chrono::milliseconds(0));
    ASSERT_TRUE(row().isLoading());
    const std::vector<std::string> before = journal;

    for (const char *control : {"disk2", "disk2/copyButton", "disk2/ejectButton", "disk2/configButton",
                                "disk2/findButton", "disk2/mountButton"})
        pressByReader(window.item(QString::fromLatin1(control)));
    settle();

    EXPECT_EQ(journal, before);
    EXPECT_THAT(dialogs.savePanels, IsEmpty());
    launcher.release(sudo("unmount disk2s1"));
    settle();
}

// --- the copy

class AccessibleActionsOfCopy : public CopyDialogFixture {
protected:
    void press(const char *control) { ASSERT_TRUE(pressByReader(window().item(QString::fromLatin1(control)))); }
};

TEST_F(AccessibleActionsOfCopy, CopyAndOverwriteWithoutPointerOrKeys)
{
    writeOldEFI();
    open();

    press("destination0");
    ASSERT_TRUE(performByReader(window().item(QStringLiteral("overwriteCheckBox")), kToggle()));
    QmlWindow::settle();
    press("copyButton");
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitForEnd();

    EXPECT_FALSE(oldEFIIsThere());
    press("doneButton");
    EXPECT_EQ(presenter.dialog(), nullptr);
}

TEST_F(AccessibleActionsOfCopy, CopyNothingWithoutADestination)
{
    open();

    press("copyButton");
    QmlWindow::settle();

    EXPECT_FALSE(manager.isOperationInProgress());
}

TEST_F(AccessibleActionsOfCopy, LeaveTheDialogAloneWhileItsAlertStands)
{
    int cancels = 0;
    EFIDestinationSelectionPresenter empty(
        disks[0], disks[0].efiPartitions[0], {}, {}, [&cancels] { ++cancels; }, manager);
    QmlWindow shown("EFIDestinationSelectionView { anchors.fill: parent; focus: true }", 378,
                    {{QStringLiteral("dialog"), QVariant::fromValue(&empty)}});
    waitForStillness(shown);

    for (const char *control : {"closeButton", "refreshButton", "cancelButton"}) {
        pressByReader(shown.item(QString::fromLatin1(control)));
        EXPECT_EQ(cancels, 0) << control;
    }
    ASSERT_TRUE(pressByReader(shown.item(QStringLiteral("alertOKButton"))));
    EXPECT_FALSE(empty.showingAlert());
    pressByReader(shown.item(QStringLiteral("cancelButton")));
    EXPECT_EQ(cancels, 1);
}

struct OptionCase {
    const char *name;
    const char *option;
    bool oldEFIIsKept;
    bool hasBackup;
};

class AccessibleOption : public AccessibleActionsOfCopy, public testing::WithParamInterface<OptionCase> {};

INSTANTIATE_TEST_SUITE_P(To, AccessibleOption,
                         testing::Values(OptionCase{"BackUp", "option0", false, true},
                                         OptionCase{"Overwrite", "option1", false, false},
                                         OptionCase{"Cancel", "option2", true, false}),
                         [](const auto &row) { return row.param.name; });

TEST_P(AccessibleOption, IsTaken)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();
    dialogs.savePaths.emplace_back((folder() / "backup").string());

    press(GetParam().option);
    waitForEnd();

    EXPECT_EQ(oldEFIIsThere(), GetParam().oldEFIIsKept);
    EXPECT_EQ(dialogs.savePanels.size(), GetParam().hasBackup ? 1U : 0U);
}

TEST_F(AccessibleActionsOfCopy, CancelACopyThatHangs)
{
    open();
    copyUntilItHangs();

    press("cancelOperationButton");
    waitForEnd();

    EXPECT_FALSE(manager.isOperationInProgress());
}

// --- the erase

class AccessibleActionsOfErase : public EraseDialogFixture {
protected:
    void press(const char *control) { ASSERT_TRUE(pressByReader(window().item(QString::fromLatin1(control)))); }
};

TEST_F(AccessibleActionsOfErase, EraseOnceTheNameIsWritten)
{
    openForDisk();
    press("scopePicker1");
    press("formatPicker");
    QmlWindow::settle();
    press("formatPickerEntry2");
    QmlWindow::settle();

    press("eraseButton");
    EXPECT_TRUE(manager.confirmMismatch());
    writeByReader(window().item(QStringLiteral("nameField")), QStringLiteral("WORK"));
    EXPECT_FALSE(manager.confirmMismatch());
    press("eraseButton");
    waitForResult();

    EXPECT_THAT(operations.asked, ElementsAre("eraseDisk|disk2|WORK|JHFS+"));
    press("doneButton");
    EXPECT_FALSE(manager.isActive());
}

TEST_F(AccessibleActionsOfErase, EraseNothingASecondTimeByAButtonThatHasGone)
{
    openForDisk();
    QQuickItem &erase = window().item(QStringLiteral("eraseButton"));
    writeByReader(window().item(QStringLiteral("nameField")), QStringLiteral("WORK"));

    pressByReader(erase);
    pressByReader(erase);
    waitForResult();

    EXPECT_EQ(operations.asked.size(), 1U);
}

TEST_F(AccessibleActionsOfErase, EraseNothingByCancel)
{
    openForDisk();
    writeByReader(window().item(QStringLiteral("nameField")), QStringLiteral("WORK"));

    press("cancelButton");

    EXPECT_FALSE(manager.isActive());
    EXPECT_THAT(operations.asked, IsEmpty());
}

TEST_F(AccessibleActionsOfErase, GiveTheKeyboardToTheField)
{
    openForEFIPartition();
    window().tabTo("cancelButton");

    ASSERT_TRUE(
        performByReader(window().item(QStringLiteral("nameField")), QAccessibleActionInterface::setFocusAction()));
    window().type(QStringLiteral("BOOT"));

    EXPECT_EQ(manager.confirmInput(), "BOOT");
}

} // namespace
} // namespace brindle
