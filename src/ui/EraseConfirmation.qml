import QtQuick
import QtQuick.Layouts
import Brindle

// What is erased, how, and the name that has to be typed before.
Column {
    id: root
    required property EraseProgressPresenter erase
    signal revealWanted(item: Item)

    spacing: 20

    function focusName(): void {
        nameField.forceActiveFocus();
    }

    PlainText {
        objectName: "warningText"
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(340, root.width)
        text: root.erase.warningText
        color: Theme.secondary
        font.pixelSize: Theme.callout
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    Column {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 320
        spacing: 14

        Column {
            visible: root.erase.allowPartitionScope
            width: parent.width
            spacing: 4
            PlainText {
                text: "Erase"
                color: Theme.secondary
                font.pixelSize: Theme.caption
            }
            SegmentedPicker {
                objectName: "scopePicker"
                width: parent.width
                segments: ["This Partition Only", "Whole Disk"]
                currentIndex: root.erase.isWholeDisk ? 1 : 0
                Accessible.name: "Erase"
                onActivated: index => root.erase.isWholeDisk = index === 1
            }
            PlainText {
                objectName: "scopeNote"
                width: parent.width
                text: root.erase.scopeNote
                color: Theme.secondary
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
            }
        }
        Column {
            visible: root.erase.formatLabels.length > 0
            width: parent.width
            spacing: 4
            PlainText {
                text: "Format"
                color: Theme.secondary
                font.pixelSize: Theme.caption
            }
            Picker {
                objectName: "formatPicker"
                width: parent.width
                name: "Format"
                model: root.erase.formatLabels
                currentIndex: root.erase.selectedFormatIndex
                onActivated: index => root.erase.selectedFormatIndex = index
            }
        }
        Column {
            width: parent.width
            spacing: 4
            PlainText {
                objectName: "confirmPrompt"
                width: parent.width
                text: root.erase.confirmPrompt
                color: Theme.secondary
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
            }
            InputField {
                id: nameField
                objectName: "nameField"
                width: parent.width
                text: root.erase.confirmInput
                Accessible.name: root.erase.confirmPrompt
                onTextChanged: if (text !== root.erase.confirmInput) root.erase.confirmInput = text // also by a screen reader
                onActiveFocusChanged: if (activeFocus) root.revealWanted(this)
            }
            PlainText {
                objectName: "mismatchText"
                width: parent.width
                visible: text !== ""
                text: root.erase.mismatchText
                color: Theme.red
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                onVisibleChanged: if (visible) root.revealWanted(this)
            }
        }
    }
}
