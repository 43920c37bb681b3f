import QtQuick
import Brindle

// A sheet over the copy dialog.
Rectangle {
    id: root
    required property string message
    signal closed

    color: Qt.alpha(Theme.black, 0.35)
    radius: WindowBridge.isComposited ? Theme.windowRadius : 0
    onVisibleChanged: if (visible) button.forceActiveFocus(Qt.TabFocusReason)
    Component.onCompleted: if (visible) button.forceActiveFocus(Qt.TabFocusReason)

    MouseArea { // what lies beneath is out of reach
        anchors.fill: parent
        hoverEnabled: true
    }
    Rectangle {
        anchors.centerIn: parent
        width: 300
        height: 200
        radius: Theme.windowRadius
        color: Theme.window
        border.width: 1
        border.color: Theme.separator
        Accessible.role: Accessible.AlertMessage
        Accessible.name: "Operation Status"
        Accessible.description: root.message
        Column {
            anchors.centerIn: parent
            width: parent.width - 48
            spacing: 16
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: "info.circle"
                color: Theme.blue
                size: Theme.largeTitle
            }
            PlainText {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Operation Status"
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
            }
            PlainText {
                objectName: "alertMessage"
                width: parent.width
                text: root.message
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
            PushButton {
                id: button
                objectName: "alertOKButton"
                anchors.horizontalCenter: parent.horizontalCenter
                text: "OK"
                onClicked: root.closed()
            }
        }
    }
}
