import QtQuick
import QtQuick.Layouts
import Brindle

// The destination has an EFI folder: what shall become of it? The options are always in sight.
FocusScope {
    id: root
    required property EFIDestinationSelectionPresenter dialog

    // Head and choices stand together in the middle; a low screen takes from margins and gaps before the head must be
    // scrolled.
    readonly property int leastMargin: 16
    readonly property real contentHeight: choices.implicitHeight + title.implicitHeight + symbol.height
    readonly property bool isTight: height - contentHeight - 2 * 24 < 2 * leastMargin
    readonly property int gap: isTight ? 12 : 24
    readonly property real margin: Math.max(leastMargin, (height - contentHeight - 2 * gap) / 2)

    // As they were when it was asked: they are not offered any more while the view fades.
    property var options: []
    property var warnings: []

    Component.onCompleted: {
        options = dialog.confirmationOptions;
        warnings = dialog.confirmationWarnings;
        Qt.callLater(takeFocus); // once it is enabled
    }

    function takeFocus(): void {
        buttons.itemAt(options.length - 1)?.forceActiveFocus(Qt.TabFocusReason);
    }

    ScrollFrame {
        id: head
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: choices.top
        Column {
            width: head.width
            topPadding: root.margin
            bottomPadding: root.gap
            spacing: root.gap
            Symbol {
                id: symbol
                anchors.horizontalCenter: parent.horizontalCenter
                name: "exclamationmark.triangle.fill"
                color: Theme.orange
                size: 48
            }
            Column {
                id: title
                width: parent.width
                spacing: 6
                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    objectName: "confirmationTitle"
                    text: root.dialog.confirmationTitle
                    font.pixelSize: Theme.title2
                    font.weight: Font.DemiBold
                }
                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: root.dialog.confirmationText
                    color: Theme.secondary
                }
                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: root.dialog.confirmationQuestion
                    color: Theme.secondary
                }
            }
        }
    }
    ColumnLayout {
        id: choices
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: 32
        anchors.rightMargin: 32
        anchors.bottomMargin: root.margin
        spacing: 24
        ColumnLayout {
            spacing: 12
            Repeater {
                id: buttons
                model: root.options
                OptionButton {
                    required property var modelData
                    required property int index
                    objectName: "option" + index
                    Layout.fillWidth: true
                    option: modelData
                    returnPresses: index === root.options.length - 1
                    onClicked: root.dialog.chooseOption(index)
                    Keys.onUpPressed: buttons.itemAt(index - 1)?.forceActiveFocus(Qt.TabFocusReason)
                    Keys.onDownPressed: buttons.itemAt(index + 1)?.forceActiveFocus(Qt.TabFocusReason)
                }
            }
        }
        Repeater {
            model: root.warnings
            WarningBox {
                required property var modelData
                objectName: "criticalWarning"
                Layout.fillWidth: true
                box: modelData
            }
        }
    }
}
