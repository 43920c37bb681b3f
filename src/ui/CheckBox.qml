import QtQuick
import QtQuick.Templates as T
import Brindle

T.CheckBox {
    id: root
    property string symbol: "" // between box and text
    property color symbolColor: Theme.secondary
    property color textColor: Theme.primary

    implicitWidth: implicitContentWidth + leftPadding
    implicitHeight: Math.max(20, implicitContentHeight)
    leftPadding: 24
    hoverEnabled: true
    font.family: Theme.fontFamily
    font.pixelSize: Theme.body
    opacity: enabled ? 1 : Theme.disabledPercent / 100
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.onPressAction: root.toggleByReader()
    Accessible.onToggleAction: root.toggleByReader()

    function toggleByReader(): void {
        if (!WindowBridge.isInReach(root))
            return;
        toggle();
        toggled();
        clicked();
    }

    indicator: Rectangle {
        y: (root.height - height) / 2
        width: 16
        height: 16
        radius: 4
        color: root.checked ? Theme.accent : root.hovered ? Theme.controlHover : Theme.field
        border.width: root.checked ? 0 : 1
        border.color: Theme.fieldBorder
        Symbol {
            anchors.centerIn: parent
            visible: root.checked
            name: "checkmark"
            color: Theme.onFilled
            size: 9
        }
        FocusRing { control: root; radius: 6 }
    }
    contentItem: Row {
        spacing: 6
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            name: root.symbol
            color: root.symbolColor
            size: root.font.pixelSize
        }
        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            color: root.textColor
            font: root.font
            Accessible.ignored: true
        }
    }
}
