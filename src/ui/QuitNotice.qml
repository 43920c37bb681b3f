import QtQuick
import Brindle

// Says at the window's lower edge that the application has been told to quit and only waits for what goes on.
Rectangle {
    id: root
    property alias text: label.text

    visible: text !== ""
    height: 30
    color: Theme.warningBox
    radius: WindowBridge.isComposited ? Theme.windowRadius : 0

    Rectangle { // the upper corners are square
        width: parent.width
        height: parent.height - parent.radius
        color: parent.color
    }
    Divider { width: parent.width }
    Row {
        anchors.centerIn: parent
        spacing: Theme.spacing
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "power"
            size: 12
            color: Theme.orange
        }
        PlainText {
            id: label
            objectName: "quitNotice"
            anchors.verticalCenter: parent.verticalCenter
            font.pixelSize: Theme.callout
            color: Theme.primary
            Accessible.role: Accessible.AlertMessage
        }
    }
}
