import QtQuick
import Brindle

// The line beneath the list: what is going on, and the way out.
Item {
    id: root
    required property WindowContentPresenter presenter

    height: 34

    Divider { width: parent.width }
    MoveArea { anchors.fill: parent }
    Row {
        id: status
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: quit.left
        anchors.rightMargin: Theme.spacing
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6

        Item {
            anchors.verticalCenter: parent.verticalCenter
            width: 12
            height: 12
            visible: root.presenter.spinnerScale > 0
            Spinner {
                objectName: "statusSpinner"
                anchors.centerIn: parent
                size: 24 * root.presenter.spinnerScale
            }
        }
        Symbol {
            objectName: "statusSymbol"
            anchors.verticalCenter: parent.verticalCenter
            visible: name !== ""
            name: root.presenter.statusSymbol
            size: 12
            color: Theme.color(root.presenter.statusColor)
        }
        PlainText {
            id: text
            objectName: "statusText"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, status.width - x)
            elide: Text.ElideRight
            text: root.presenter.statusText
            font.pixelSize: 12
            color: Theme.secondary
            ToolTipArea { tip: text.truncated ? text.text : "" }
        }
    }
    IconButton {
        id: quit
        objectName: "quitButton"
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin - 4
        anchors.verticalCenter: parent.verticalCenter
        symbol: "power"
        size: 12
        tip: "Quit"
        onClicked: root.presenter.quit()
    }
}
