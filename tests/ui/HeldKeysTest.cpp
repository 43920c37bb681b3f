#include "ui/HeldKeys.h"

#include "ui/QmlWindow.h"

namespace brindle {
namespace {

struct HeldKeyCase {
    const char *name;
    const char *qml; ///< An item "control" that counts what is done to it in "presses".
    Qt::Key key;

    friend void PrintTo(const HeldKeyCase &row, std::ostream *out) { *out << row.name; }
};

constexpr const char *kPushButton = R"(PushButton {
    objectName: "control"; property int presses: 0; focus: true; text: "Cancel"; onClicked: presses += 1 })";
constexpr const char *kIconButton = R"(IconButton {
    objectName: "control"; property int presses: 0; focus: true; symbol: "eject"; tip: "Eject"; onClicked: presses += 1 })";
constexpr const char *kOptionButton = R"(OptionButton {
    objectName: "control"; property int presses: 0; focus: true; returnPresses: true; onClicked: presses += 1
    option: ({ icon: "xmark.circle", title: "Cancel", text: "Stop", color: "secondary" }) })";
constexpr const char *kDestination = R"(DestinationEFIPartitionRow {
    objectName: "control"; property int presses: 0; focus: true; onClicked: presses += 1
    destination: ({ diskName: "Stick", details: [], trailingSymbols: [], isSelected: false, description: "Stick" }) })";
constexpr const char *kCheckBox = R"(CheckBox {
    objectName: "control"; property int presses: 0; focus: true; text: "Overwrite"; onToggled: presses += 1 })";
constexpr const char *kPicker = R"(Picker {
    objectName: "control"; property int presses: 0; focus: true; name: "Format"; model: ["ExFAT", "APFS"]
    id: picker; Connections { target: picker.popup; function onVisibleChanged() { picker.presses += 1; } } })";

class HeldKey : public testing::TestWithParam<HeldKeyCase> {};

INSTANTIATE_TEST_SUITE_P(On, HeldKey,
                         testing::Values(HeldKeyCase{"AButtonSpace", kPushButton, Qt::Key_Space},
                                         HeldKeyCase{"AButtonReturn", kPushButton, Qt::Key_Return},
                                         HeldKeyCase{"AButtonEnter", kPushButton, Qt::Key_Enter},
                                         HeldKeyCase{"ASymbolSpace", kIconButton, Qt::Key_Space},
                                         HeldKeyCase{"ASymbolReturn", kIconButton, Qt::Key_Return},
                                         HeldKeyCase{"AnOptionSpace", kOptionButton, Qt::Key_Space},
                                         HeldKeyCase{"AnOptionReturn", kOptionButton, Qt::Key_Return},
                                         HeldKeyCase{"ADestinationSpace", kDestination, Qt::Key_Space},
                                         HeldKeyCase{"ADestinationReturn", kDestination, Qt::Key_Return},
                                         HeldKeyCase{"ACheckBoxSpace", kCheckBox, Qt::Key_Space},
                                         HeldKeyCase{"APickerSpace", kPicker, Qt::Key_Space}),
                         [](const auto &row) { return row.param.name; });

TEST_P(HeldKey, PressesOnce)
{
    QmlWindow window(GetParam().qml);

    window.hold(GetParam().key);

    EXPECT_EQ(window.valueOf<int>(QStringLiteral("control"), "presses"), 1);
}

TEST(HeldKeys, TypeSpacesIntoAText)
{
    QmlWindow window(R"(InputField { objectName: "field"; focus: true })");

    window.hold(Qt::Key_Space);

    EXPECT_EQ(window.textOf(QStringLiteral("field")), std::string(QmlWindow::kPressesOfAHeldKey, ' '));
}

TEST(HeldKeys, MoveOnStepByStep)
{
    QmlWindow window(R"(SegmentedPicker { objectName: "picker"; property int steps: 0; segments: ["A", "B"]; focus: true
                                          Keys.onRightPressed: steps += 1 })");

    window.hold(Qt::Key_Right);

    EXPECT_EQ(window.valueOf<int>(QStringLiteral("picker"), "steps"), QmlWindow::kPressesOfAHeldKey);
}

} // namespace
} // namespace brindle
