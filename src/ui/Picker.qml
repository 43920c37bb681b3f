import QtQuick
import QtQuick.Templates as T
import Brindle

// A choice of one from a list that opens.
T.ComboBox {
    id: root
    required property string name // for a screen reader

    implicitWidth: 320
    implicitHeight: 28
    leftPadding: 10
    rightPadding: 28
    hoverEnabled: true
    font.family: Theme.fontFamily
    font.pixelSize: Theme.body
    Accessible.role: Accessible.ComboBox
    Accessible.name: name
    Accessible.description: displayText
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) popup.open()

    background: Rectangle {
        radius: Theme.radius
        color: root.down ? Theme.controlPressed : root.hovered ? Theme.controlHover : Theme.control
        border.width: 1
        border.color: Theme.controlBorder
        FocusRing { control: root }
    }
    contentItem: PlainText {
        text: root.displayText
        font: root.font
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    indicator: Symbol {
        x: root.width - width - 10
        y: (root.height - height) / 2
        name: "chevron.down"
        color: Theme.secondary
        size: Theme.caption
    }
    delegate: T.ItemDelegate {
        id: entry
        required property string modelData
        required property int index
        readonly property bool isCurrent: root.highlightedIndex === index

        objectName: root.objectName + "Entry" + index
        width: ListView.view?.width ?? 0
        height: 26
        text: modelData
        highlighted: isCurrent
        hoverEnabled: true
        Accessible.role: Accessible.ListItem
        Accessible.name: text
        Accessible.onPressAction: if (WindowBridge.isInReach(entry)) entry.clicked()

        background: Rectangle {
            radius: 4
            color: entry.isCurrent ? Theme.accent : "transparent"
        }
        contentItem: Item {
            Symbol {
                x: 6
                anchors.verticalCenter: parent.verticalCenter
                visible: root.currentIndex === entry.index
                name: "checkmark"
                color: label.color
                size: Theme.caption
            }
            PlainText {
                id: label
                x: 26
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - x
                text: entry.text
                color: entry.isCurrent ? Theme.onFilled : Theme.primary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
    popup: T.Popup {
        y: root.height + 2
        width: root.width
        implicitHeight: contentItem.implicitHeight + 2 * padding
        padding: 4
        contentItem: ListView {
            implicitHeight: contentHeight
            model: root.delegateModel
            currentIndex: root.highlightedIndex
            clip: true
        }
        background: Rectangle {
            radius: Theme.radius
            color: Theme.field
            border.width: 1
            border.color: Theme.controlBorder
        }
    }
}
