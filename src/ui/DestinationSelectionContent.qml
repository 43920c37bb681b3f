import QtQuick
import QtQuick.Layouts
import Brindle

// The destinations to pick from, and what becomes of an old folder.
FocusScope {
    id: root
    required property EFIDestinationSelectionPresenter dialog

    Component.onCompleted: Qt.callLater(takeFocus) // once it is enabled
    onEnabledChanged: if (enabled) Qt.callLater(takeFocus) // again, before it has faded

    // On the chosen row, else the first one, unless the footer has it.
    function takeFocus(): void {
        if (dialog.offersClose)
            return;
        const chosen = dialog.destinations.findIndex(destination => destination.isSelected);
        rows.itemAt(Math.max(0, chosen))?.forceActiveFocus();
    }

    ScrollFrame {
        id: frame
        anchors.fill: parent
        Column {
            width: frame.width
            padding: Theme.margin
            spacing: 16
            Column {
                spacing: 4
                PlainText {
                    text: "Select Destination"
                    font.pixelSize: Theme.headline
                    font.weight: Font.Medium
                }
                PlainText {
                    text: "Choose which EFI partition to copy to:"
                    color: Theme.secondary
                    font.pixelSize: Theme.subheadline
                }
            }
            RowLayout {
                width: frame.width - 2 * Theme.margin
                spacing: 6
                Symbol {
                    name: "arrow.up.doc"
                    color: Theme.blue
                    size: Theme.callout
                }
                PlainText {
                    objectName: "sourceText"
                    Layout.fillWidth: true
                    Layout.topMargin: 4
                    Layout.bottomMargin: 4
                    text: root.dialog.sourceText
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    elide: Text.ElideMiddle
                    ToolTipArea { tip: (parent as Text).truncated ? root.dialog.sourceText : "" }
                }
            }
            EmptyDestinationsView {
                width: frame.width - 2 * Theme.margin
                visible: root.dialog.destinationCount === 0
                onRefresh: root.dialog.cancel()
            }
            Rectangle {
                width: frame.width - 2 * Theme.margin
                height: list.height
                visible: root.dialog.destinationCount > 0
                radius: 8
                color: Qt.alpha(Theme.row, 0.3)
                Column {
                    id: list
                    x: 4
                    width: parent.width - 8
                    spacing: 8
                    Repeater {
                        id: rows
                        model: root.dialog.destinationCount
                        DestinationEFIPartitionRow {
                            required property int index
                            objectName: "destination" + index
                            width: list.width
                            destination: root.dialog.destinations[index]
                            onClicked: root.dialog.select(index)
                            onActiveFocusChanged: if (activeFocus) frame.reveal(this)
                            Keys.onUpPressed: rows.itemAt(index - 1)?.forceActiveFocus(Qt.TabFocusReason)
                            Keys.onDownPressed: rows.itemAt(index + 1)?.forceActiveFocus(Qt.TabFocusReason)
                        }
                    }
                }
            }
            CheckBox {
                objectName: "overwriteCheckBox"
                checked: root.dialog.overwriteWithoutBackup
                text: root.dialog.overwriteLabel.text
                textColor: Theme.color(root.dialog.overwriteLabel.color)
                font.pixelSize: Theme.callout
                symbol: root.dialog.overwriteLabel.symbol
                symbolColor: Theme.color(root.dialog.overwriteSymbolColor)
                onToggled: root.dialog.overwriteWithoutBackup = checked
                onActiveFocusChanged: if (activeFocus) frame.reveal(this)
            }
            Column {
                width: frame.width - 2 * Theme.margin
                visible: root.dialog.selectionWarnings.length > 0
                spacing: 8
                onHeightChanged: if (visible) frame.reveal(this) // a warning must not appear out of sight
                Repeater {
                    model: root.dialog.selectionWarnings
                    WarningBox {
                        required property var modelData
                        required property int index
                        objectName: "warning" + index
                        width: parent?.width ?? 0
                        box: modelData
                    }
                }
            }
        }
    }
}
