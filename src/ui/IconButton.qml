import QtQuick
import Brindle

// A symbol to press, without a border. Its tip is also its accessible name. Made of plain items: every row has some, and
// a window without a dialog needs no other control.
Item {
    id: root
    required property string symbol
    required property string tip
    property color color: Theme.secondary
    property real size: 13
    property real frame: 24
    property real reach: 0 // by which the place to press and to light up is larger than the frame, on each side
    readonly property bool hovered: hover.hovered
    signal clicked

    implicitWidth: frame
    implicitHeight: frame
    activeFocusOnTab: true
    opacity: enabled ? 1 : Theme.disabledPercent / 100

    Accessible.role: Accessible.Button
    Accessible.name: tip
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) root.clicked()
    Keys.onPressed: event => {
        if (![Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter].includes(event.key))
            return;
        event.accepted = true;
        clicked();
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: -root.reach
        radius: 5
        color: pointer.pressed ? Theme.controlPressed : root.hovered ? Theme.controlHover : "transparent"
        TapHandler {
            id: pointer
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: root.clicked()
        }
        ToolTipArea { id: hover; tip: root.tip }
        FocusRing { control: root; anchors.margins: 0; radius: 5 }
    }
    Symbol {
        objectName: "buttonSymbol"
        anchors.centerIn: parent
        name: root.symbol
        color: root.hovered && root.color === Theme.secondary ? Theme.primary : root.color
        size: root.size
    }
}
