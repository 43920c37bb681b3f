import QtQuick
import QtQuick.Templates as T

T.ScrollBar {
    id: root
    implicitWidth: 8
    visible: size < 1
    minimumSize: 0.1
    Accessible.ignored: true
    contentItem: Rectangle {
        implicitWidth: 6
        radius: 3
        color: root.pressed ? Theme.secondary : Theme.fieldBorder
        opacity: root.active || root.hovered ? 0.9 : 0.45
    }
}
