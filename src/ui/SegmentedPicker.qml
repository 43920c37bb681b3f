import QtQuick
import QtQuick.Templates as T

// A choice between a few words that all stand there. The arrow keys choose too.
T.Control {
    id: root
    required property list<string> segments
    property int currentIndex: 0
    signal activated(index: int)

    implicitWidth: 320
    implicitHeight: 28
    Accessible.role: Accessible.PageTabList

    background: Rectangle {
        radius: Theme.radius
        color: Theme.control
        border.width: 1
        border.color: Theme.controlBorder
    }
    contentItem: Row {
        Repeater {
            id: buttons
            model: root.segments
            T.AbstractButton {
                id: segment
                required property string modelData
                required property int index

                objectName: root.objectName + index
                width: root.width / root.segments.length
                height: root.height
                text: modelData
                checked: index === root.currentIndex
                hoverEnabled: true
                focusPolicy: checked ? Qt.StrongFocus : Qt.ClickFocus // one stop for the Tab key
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.checkable: true
                Accessible.checked: checked
                Accessible.onPressAction: segment.click()
                Keys.onReturnPressed: segment.click()
                Keys.onEnterPressed: segment.click()
                Keys.onLeftPressed: segment.choose(index - 1)
                Keys.onRightPressed: segment.choose(index + 1)
                onClicked: root.activated(index)

                function choose(other: int): void {
                    const button = buttons.itemAt(other);
                    if (!button)
                        return;
                    root.activated(other);
                    button.forceActiveFocus(Qt.TabFocusReason);
                }

                background: Rectangle {
                    radius: Theme.radius
                    color: segment.checked ? Theme.accent : segment.down ? Theme.controlPressed
                         : segment.hovered ? Theme.controlHover : "transparent"
                    FocusRing { control: segment }
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
