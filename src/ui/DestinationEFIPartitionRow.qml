import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Brindle

// One destination to pick.
T.RadioButton {
    id: root
    required property var destination // a DestinationValue

    checked: destination.isSelected
    implicitHeight: line.implicitHeight + topPadding + bottomPadding
    padding: 12
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.RadioButton
    Accessible.name: destination.description
    Accessible.checkable: true
    Accessible.checked: destination.isSelected
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) root.clicked()
    Accessible.onToggleAction: if (WindowBridge.isInReach(root)) root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    ToolTipArea { tip: diskName.truncated ? root.destination.description : "" }

    background: Rectangle {
        radius: 8
        color: root.destination.isSelected ? Qt.alpha(Theme.blue, 0.1) : root.hovered ? Theme.rowHover : Theme.row
        border.width: root.destination.isSelected ? 2 : 0
        border.color: Theme.blue
        FocusRing {
            control: root
            radius: 10
        }
    }
    contentItem: RowLayout {
        id: line
        spacing: 12
        Item {
            Layout.preferredWidth: 24
            Layout.preferredHeight: symbol.height
            Symbol {
                id: symbol
                anchors.centerIn: parent
                name: "externaldrive.fill"
                color: Theme.blue
                size: Theme.title3
            }
        }
        ColumnLayout {
            spacing: 3
            PlainText {
                id: diskName
                Layout.fillWidth: true
                text: root.destination.diskName
                font.pixelSize: Theme.headline
                font.weight: Font.Medium
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            RowLayout {
                spacing: 5
                Repeater {
                    model: root.destination.details
                    SignView {
                        required property var modelData
                        sign: modelData
                        Layout.fillWidth: true
                        Layout.minimumWidth: modelData.symbol === "" ? Math.min(implicitWidth, 64) : implicitWidth
                        Layout.maximumWidth: implicitWidth
                    }
                }
                Item {
                    Layout.fillWidth: true
                }
            }
        }
        Repeater {
            model: root.destination.trailingSymbols
            Symbol {
                required property var modelData
                required property int index
                name: modelData.symbol
                color: Theme.color(modelData.color)
                size: index === 0 && root.destination.isSelected ? Theme.title3 : Theme.callout
            }
        }
    }
}
