import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Brindle

// One of the ways to go on. Return presses it only where that destroys nothing.
T.AbstractButton {
    id: root
    required property var option // a BoxValue
    required property bool returnPresses
    readonly property color tint: Theme.color(option.color)

    implicitHeight: line.implicitHeight + topPadding + bottomPadding
    padding: 10
    leftPadding: 16
    rightPadding: 16
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: option.title
    Accessible.description: option.text
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) root.clicked()
    Keys.onReturnPressed: if (returnPresses) root.clicked()
    Keys.onEnterPressed: if (returnPresses) root.clicked()

    background: Rectangle {
        radius: 8
        color: root.down ? Theme.controlPressed : root.hovered ? Theme.rowHover : Theme.row
        border.width: 1
        border.color: Qt.alpha(root.tint, 0.3)
        FocusRing {
            control: root
            radius: 10
        }
    }
    contentItem: RowLayout {
        id: line
        spacing: 12
        Item {
            Layout.preferredWidth: 24
            Layout.preferredHeight: symbol.height
            Symbol {
                id: symbol
                anchors.centerIn: parent
                name: root.option.icon
                color: root.tint
                size: Theme.title3
            }
        }
        ColumnLayout {
            spacing: 2
            PlainText {
                Layout.fillWidth: true
                text: root.option.title
                font.pixelSize: Theme.headline
                font.weight: Font.Medium
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            PlainText {
                Layout.fillWidth: true
                text: root.option.text
                color: Theme.secondary
                font.pixelSize: Theme.caption
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Symbol {
            name: "chevron.right"
            color: Theme.secondary
            size: Theme.caption
        }
    }
}
