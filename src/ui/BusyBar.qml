import QtQuick

// A work is going on, nobody knows how far it is.
Rectangle {
    id: root
    property color tint: Theme.blue

    implicitWidth: 280
    implicitHeight: 6
    radius: 3
    color: Theme.separator
    clip: true
    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Busy"

    Rectangle {
        id: mark
        width: parent.width / 3
        height: parent.height
        radius: 3
        color: root.tint
        SequentialAnimation on x {
            running: root.visible
            loops: Animation.Infinite
            NumberAnimation {
                from: 0
                to: root.width - mark.width
                duration: 1100
                easing.type: Easing.InOutQuad
            }
            NumberAnimation {
                from: root.width - mark.width
                to: 0
                duration: 1100
                easing.type: Easing.InOutQuad
            }
        }
    }
}
