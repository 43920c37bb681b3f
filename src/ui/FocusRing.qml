import QtQuick

// The ring round what has the keyboard, once the keyboard has been used to get there.
Rectangle {
    required property Item control

    anchors.fill: parent
    anchors.margins: -2
    radius: Theme.radius + 2
    color: "transparent"
    border.width: 2
    border.color: Theme.focus
    visible: control.visualFocus ?? control.activeFocus
    Accessible.ignored: true
}
