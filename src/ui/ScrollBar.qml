import QtQuick
import QtQuick.Templates as T

// How much of something that scrolls is in sight, and where; to be dragged.
T.ScrollBar {
    id: root
    required property Flickable flickable

    implicitWidth: 8
    visible: size < 1
    minimumSize: 0.1
    Accessible.ignored: true
    Component.onCompleted: flickable.T.ScrollBar.vertical = root
    contentItem: Rectangle {
        implicitWidth: 6
        radius: 3
        color: root.pressed ? Theme.secondary : Theme.fieldBorder
        opacity: root.active || root.hovered ? 0.9 : 0.45
    }
}
