import QtQuick
import QtQuick.Templates as T

// A symbol to press, without a border. Its tip is also its accessible name.
T.AbstractButton {
    id: root
    required property string symbol
    required property string tip
    property color color: Theme.secondary
    property real size: 13
    property real frame: 24

    implicitWidth: frame
    implicitHeight: frame
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : Theme.disabledPercent / 100

    Accessible.role: Accessible.Button
    Accessible.name: tip
    Accessible.onPressAction: root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    ToolTipArea { tip: root.tip }

    background: Rectangle {
        radius: 5
        color: root.down ? Theme.controlPressed : root.hovered ? Theme.controlHover : "transparent"
        FocusRing { control: root; anchors.margins: 0; radius: 5 }
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: root.symbol
            color: root.hovered && root.color === Theme.secondary ? Theme.primary : root.color
            size: root.size
        }
    }
}
