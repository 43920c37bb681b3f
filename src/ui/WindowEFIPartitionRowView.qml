import QtQuick
import Brindle

// The row of one EFI partition of a disk that has several.
RowFrame {
    id: root
    required property EFIPartitionRowPresenter partition

    presenter: partition
    height: partition.height
    isOverButton: buttons.isHovered

    Symbol {
        id: symbol
        objectName: "partitionSymbol"
        anchors.verticalCenter: parent.verticalCenter
        x: 44
        name: root.partition.symbol
        size: 13
        color: Theme.color(root.partition.symbolColor)
    }
    Column {
        anchors.left: symbol.right
        anchors.leftMargin: 8
        anchors.right: buttons.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1
        PlainText {
            objectName: "partitionIdentifier"
            text: root.partition.identifier
            font.pixelSize: 12
            Accessible.ignored: true
        }
        PlainText {
            objectName: "partitionLabel"
            width: parent.width
            visible: text !== ""
            text: root.partition.label
            font.pixelSize: 10
            color: Theme.secondary
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
    RowButtons {
        id: buttons
        presenter: root.presenter
        list: root.list
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
    }
}
