import QtQuick
import QtQuick.Layouts
import Brindle

// The copy dialog: where an EFI folder goes, what becomes of an old one, and how the work goes on.
FocusScope {
    id: root
    required property EFIDestinationSelectionPresenter dialog

    Keys.onEscapePressed: dialog.escape()
    Component.onCompleted: dialog.appear()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        enabled: !root.dialog.showingAlert

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 12 + 24 + 8
            color: Theme.row
            radius: WindowBridge.isComposited ? Theme.windowRadius : 0
            Rectangle { // the lower corners are square
                anchors.fill: parent
                anchors.topMargin: parent.radius
                color: parent.color
            }
            MoveArea { anchors.fill: parent }
            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 16
                anchors.rightMargin: 16
                anchors.topMargin: 12
                anchors.bottomMargin: 8
                spacing: 0
                Item {
                    Layout.preferredWidth: 32
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 8
                    Item { Layout.fillWidth: true }
                    Symbol {
                        name: "doc.on.doc"
                        color: Theme.blue
                        size: Theme.title3
                    }
                    PlainText {
                        text: "Copy EFI Folder"
                        font.pixelSize: Theme.headline
                        font.weight: Font.DemiBold
                        Accessible.role: Accessible.Heading
                    }
                    Item { Layout.fillWidth: true }
                }
                IconButton {
                    objectName: "closeButton"
                    Layout.preferredWidth: 32
                    symbol: "xmark.circle.fill"
                    tip: "Cancel"
                    size: Theme.title2
                    onClicked: root.dialog.cancel()
                }
            }
        }
        Divider { Layout.fillWidth: true }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            FadingContent {
                anchors.fill: parent
                duration: 300
                hiddenScale: 0.9
                shown: root.dialog.content === EFIDestinationSelectionPresenter.Selection
                sourceComponent: DestinationSelectionContent {
                    objectName: "selection"
                    dialog: root.dialog
                }
            }
            FadingContent {
                anchors.fill: parent
                duration: 300
                hiddenScale: 0.9
                shown: root.dialog.content === EFIDestinationSelectionPresenter.Progress
                sourceComponent: OperationProgressView {
                    objectName: "progress"
                    dialog: root.dialog
                }
            }
            FadingContent {
                anchors.fill: parent
                duration: 300
                hiddenScale: 0.9
                shown: root.dialog.content === EFIDestinationSelectionPresenter.Confirmation
                sourceComponent: BackupConfirmationView {
                    objectName: "confirmation"
                    dialog: root.dialog
                }
            }
        }
        Divider { Layout.fillWidth: true }
        RowLayout {
            Layout.fillWidth: true
            Layout.preferredHeight: 52
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            spacing: 12
            MoveArea {
                parent: root
                anchors.bottom: parent.bottom
                width: parent.width
                height: 52
                z: -1
            }
            SignView {
                objectName: "indicator"
                visible: root.dialog.hasIndicator
                spacing: 8
                sign: root.dialog.indicator
                textColor: Theme.secondary
                Accessible.role: Accessible.StaticText
                Accessible.name: root.dialog.indicatorDescription
                ToolTipArea {
                    tip: root.dialog.indicatorDescription === root.dialog.indicator.text
                         ? "" : root.dialog.indicatorDescription
                }
            }
            Item { Layout.fillWidth: true }
            PushButton {
                objectName: "doneButton"
                visible: root.dialog.offersClose
                text: "Close"
                onClicked: root.dialog.cancel()
                onVisibleChanged: if (visible) forceActiveFocus(Qt.TabFocusReason)
            }
            PushButton {
                objectName: "cancelButton"
                visible: root.dialog.offersCopy
                text: "Cancel"
                onClicked: root.dialog.cancel()
            }
            PushButton {
                objectName: "copyButton"
                visible: root.dialog.offersCopy
                enabled: root.dialog.canCopy
                text: "Copy EFI"
                onClicked: root.dialog.copyEFI()
            }
        }
    }
    OperationStatusAlert {
        anchors.fill: parent
        visible: root.dialog.showingAlert
        message: root.dialog.alertMessage
        onClosed: root.dialog.closeAlert()
    }
}
