import QtQuick
import QtQuick.Templates as T

// How far a work has come: value goes from 0 to 1.
T.ProgressBar {
    id: root
    property color color: Theme.accent

    implicitWidth: 200
    implicitHeight: 6
    Accessible.role: Accessible.ProgressBar
    Accessible.name: Math.floor(visualPosition * 100) + "%"

    background: Rectangle {
        radius: 3
        color: Theme.separator
    }
    contentItem: Item {
        Rectangle {
            width: root.visualPosition * parent.width
            height: parent.height
            radius: 3
            color: root.color
            Behavior on width { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
        }
    }
}
