import QtQuick
import QtQuick.Templates as T
import Brindle

// A button with a text and, where wanted, a symbol in front of it. Return presses it as Space does, unless
// returnPresses is off.
T.Button {
    id: root

    enum Kind { Plain, Default, Destructive }

    property int kind: PushButton.Kind.Plain
    property string symbol: ""
    property string tip: ""
    property bool returnPresses: true

    readonly property bool isFilled: kind !== PushButton.Kind.Plain
    readonly property color foreground: isFilled ? Theme.onFilled : Theme.primary
    readonly property color surface: kind === PushButton.Kind.Destructive
        ? (down ? Theme.destructivePressed : hovered ? Theme.destructiveHover : Theme.destructive)
        : kind === PushButton.Kind.Default
        ? (down ? Theme.accentPressed : hovered ? Theme.accentHover : Theme.accent)
        : (down ? Theme.controlPressed : hovered ? Theme.controlHover : Theme.control)

    implicitWidth: Math.max(72, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: 28
    leftPadding: 14
    rightPadding: 14
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : Theme.disabledPercent / 100
    font.family: Theme.fontFamily
    font.pixelSize: Theme.body

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: tip
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) root.clicked()
    Keys.onReturnPressed: event => { event.accepted = returnPresses; if (returnPresses) root.clicked(); }
    Keys.onEnterPressed: event => { event.accepted = returnPresses; if (returnPresses) root.clicked(); }

    ToolTipArea { tip: root.tip }

    background: Rectangle {
        radius: Theme.radius
        color: root.surface
        border.width: root.isFilled ? 0 : 1
        border.color: Theme.controlBorder
        FocusRing { control: root }
    }
    contentItem: Item {
        implicitWidth: line.implicitWidth
        implicitHeight: line.implicitHeight
        Row {
            id: line
            anchors.centerIn: parent
            spacing: 6
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.symbol !== ""
                name: root.symbol
                color: root.foreground
                size: Theme.callout
            }
            PlainText {
                anchors.verticalCenter: parent.verticalCenter
                text: root.text
                font: root.font
                color: root.foreground
                Accessible.ignored: true
            }
        }
    }
}
