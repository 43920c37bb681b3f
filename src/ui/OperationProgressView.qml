import QtQuick
import QtQuick.Layouts
import Brindle

// How far a copy is, and the way to end it.
FocusScope {
    id: root
    required property EFIDestinationSelectionPresenter dialog

    Component.onCompleted: Qt.callLater(takeFocus) // once it is enabled

    // On no button: Return may still be held down.
    function takeFocus(): void {
        forceActiveFocus();
    }

    ScrollFrame {
        id: frame
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: cancelButton.top
        ColumnLayout {
            x: 32
            y: Math.max(0, (frame.height - height) / 2)
            width: frame.width - 64
            spacing: 24
            Symbol {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 16
                name: "doc.on.doc"
                color: Theme.blue
                size: 48
            }
            PlainText {
                Layout.alignment: Qt.AlignHCenter
                text: "Copying EFI Folder"
                font.pixelSize: Theme.title2
                font.weight: Font.DemiBold
            }
            GridLayout {
                Layout.alignment: Qt.AlignHCenter
                Layout.fillWidth: true
                Layout.maximumWidth: implicitWidth
                visible: root.dialog.progressEnds.length > 0
                columns: 2
                Repeater {
                    model: 4 // that stay: Qt 6.4's layouts touch items that are gone when they are resized in between
                    PlainText {
                        readonly property string modelData: root.dialog.progressEnds[index] ?? ""
                        required property int index
                        objectName: "progressEnd" + index
                        Layout.fillWidth: index % 2 === 1
                        text: modelData
                        elide: Text.ElideMiddle
                        ToolTipArea { tip: (parent as Text).truncated ? (parent as Text).text : "" }
                        color: index % 2 === 0 ? Theme.secondary : Theme.primary
                        font.pixelSize: Theme.caption
                        font.weight: index % 2 === 0 ? Font.Normal : Font.Medium
                    }
                }
            }
            PlainText {
                objectName: "copyStatus"
                Layout.fillWidth: true
                Layout.topMargin: 8
                text: root.dialog.status
                color: Theme.secondary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
            ColumnLayout {
                spacing: 6
                ProgressBar {
                    objectName: "copyProgress"
                    Layout.fillWidth: true
                    Layout.preferredHeight: 8
                    value: root.dialog.progress
                    color: Theme.blue
                }
                RowLayout {
                    PlainText {
                        Layout.fillWidth: true
                        text: "Progress"
                        color: Theme.secondary
                        font.pixelSize: Theme.caption
                    }
                    PlainText {
                        objectName: "copyPercent"
                        text: root.dialog.percentText
                        color: Theme.blue
                        font.pixelSize: Theme.caption
                        font.weight: Font.Medium
                    }
                }
            }
        }
    }
    PushButton {
        id: cancelButton
        objectName: "cancelOperationButton"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 32
        text: "Cancel Operation"
        onClicked: root.dialog.cancelOperation()
    }
}
