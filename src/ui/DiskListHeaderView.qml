import QtQuick
import Brindle

// The line above the list: title and actions.
Item {
    id: root
    required property bool isLoading
    signal refreshTapped
    signal menuRequested(place: point)

    height: 44

    MoveArea {
        anchors.fill: parent
        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: point => root.menuRequested(point.position)
        }
    }
    Row {
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6
        Symbol {
            objectName: "titleSymbol"
            anchors.verticalCenter: parent.verticalCenter
            name: "externaldrive.fill"
            size: 14
            color: Theme.blue
        }
        PlainText {
            objectName: "title"
            anchors.verticalCenter: parent.verticalCenter
            text: "Brindle"
            font.pixelSize: 14
            font.weight: Font.Medium
            Accessible.role: Accessible.Heading
        }
    }
    Item {
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin - 4
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        height: 24
        IconButton {
            objectName: "refreshButton"
            anchors.fill: parent
            visible: !root.isLoading
            symbol: "arrow.clockwise"
            tip: "Refresh Disks"
            onClicked: root.refreshTapped()
        }
        Spinner {
            objectName: "refreshSpinner"
            anchors.centerIn: parent
            visible: root.isLoading
        }
    }
}
