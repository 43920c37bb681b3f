import QtQuick

// Something is going on, nobody knows for how long.
Item {
    id: root
    property real size: 16
    property color color: Theme.secondary

    implicitWidth: size
    implicitHeight: size
    Accessible.role: Accessible.Indicator
    Accessible.name: "Busy"

    Repeater {
        model: root.visible ? 8 : 0
        Rectangle {
            required property int index
            readonly property real angle: index * Math.PI / 4

            x: root.width / 2 + Math.sin(angle) * root.size * 0.36 - width / 2
            y: root.height / 2 - Math.cos(angle) * root.size * 0.36 - height / 2
            width: Math.max(2, root.size / 5.5)
            height: width
            radius: width / 2
            color: root.color
            opacity: 0.25 + 0.75 * ((index - turn.step + 8) % 8) / 7
        }
    }
    Timer {
        id: turn
        property int step: 0
        interval: 100
        repeat: true
        running: root.visible
        onTriggered: step = (step + 1) % 8
    }
}
