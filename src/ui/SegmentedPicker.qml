import QtQuick
import QtQuick.Templates as T
import Brindle

// A choice between a few words that all stand there. One stop for the Tab key; the arrow keys choose.
Item {
    id: root
    required property list<string> segments
    property int currentIndex: 0
    signal activated(index: int)

    implicitWidth: 320
    implicitHeight: 28
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.description: segments[currentIndex]
    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    function choose(index: int): void {
        if (index >= 0 && index < segments.length && index !== currentIndex)
            activated(index);
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.control
        border.width: 1
        border.color: Theme.controlBorder
        FocusRing { control: root }
    }
    Row {
        Repeater {
            model: root.segments
            T.RadioButton {
                id: segment
                required property string modelData
                required property int index

                objectName: root.objectName + index
                width: root.width / root.segments.length
                height: root.height
                text: modelData
                checked: index === root.currentIndex
                focusPolicy: Qt.NoFocus
                hoverEnabled: true
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.checkable: true
                Accessible.checked: checked
                Accessible.onPressAction: if (WindowBridge.isInReach(segment)) root.choose(index)
                Accessible.onToggleAction: if (WindowBridge.isInReach(segment)) root.choose(index)
                onClicked: root.choose(index)

                background: Rectangle {
                    radius: Theme.radius
                    color: segment.checked ? Theme.accent : segment.down ? Theme.controlPressed
                         : segment.hovered ? Theme.controlHover : "transparent"
                }
                contentItem: PlainText {
                    text: segment.text
                    color: segment.checked ? Theme.onFilled : Theme.primary
                    font.pixelSize: Theme.callout
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    Accessible.ignored: true
                }
            }
        }
    }
}
