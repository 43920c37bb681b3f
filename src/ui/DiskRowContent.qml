import QtQuick
import Brindle

// One disk inside its row: symbol, names, details, space and whether its EFI partition is mounted.
Item {
    id: root
    required property DiskRowContentPresenter presenter

    Item {
        id: icon
        width: 34
        height: parent.height
        Symbol {
            objectName: "diskIcon"
            anchors.centerIn: parent
            name: root.presenter.icon.name
            size: root.presenter.icon.size
            color: Theme.color(root.presenter.icon.color)
        }
    }

    Column {
        objectName: "rowTexts"
        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: efi.left
        anchors.rightMargin: efi.width > 0 ? 6 : 0
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        Item { // too narrow, the label gives way before the name does
            id: names
            readonly property real labelWidth: Math.min(label.implicitWidth,
                                                        Math.max(36, width - name.implicitWidth - 4))
            width: parent.width
            height: name.height

            RowText {
                id: name
                objectName: "diskName"
                value: root.presenter.name
                width: Math.min(implicitWidth, names.width - names.labelWidth - 4)
                elide: Text.ElideRight
            }
            RowText {
                id: label
                objectName: "volumeLabel"
                value: root.presenter.volumeLabel
                x: Math.ceil(name.contentWidth) + 4 // a name that is cut may end before its place does
                width: Math.min(implicitWidth, names.labelWidth)
                elide: Text.ElideRight
            }
        }
        DetailsLine {
            objectName: "details"
            presenter: root.presenter
            width: parent.width
        }
        SpaceBar {
            objectName: "spaceBar"
            presenter: root.presenter
            width: parent.width
            visible: root.presenter.hasSpaceBar
        }
    }

    Column {
        id: efi
        objectName: "efiIndicator"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: visible ? 24 : 0
        spacing: 2
        visible: root.presenter.hasEFIIndicator

        Symbol {
            objectName: "efiSymbol"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: name !== ""
            name: root.presenter.efiSymbol.name
            size: root.presenter.efiSymbol.size
            color: Theme.color(root.presenter.efiSymbol.color)
        }
        RowText {
            objectName: "efiCount"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: text !== ""
            value: root.presenter.efiCount
        }
        RowText {
            anchors.horizontalCenter: parent.horizontalCenter
            value: root.presenter.efiLabel
        }
    }
}
