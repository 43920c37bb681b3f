import QtQuick
import QtQuick.Window
import Brindle

// A message with its buttons, and a field where something is asked for.
Window {
    id: root
    required property AlertPresenter alert
    readonly property bool hasField: alert.field !== AlertPresenter.None
    // Every length that the height is made of is known before the window is laid out: desktops are told it once.
    readonly property int margin: 20
    readonly property int gap: 12
    readonly property int symbolSize: 32
    readonly property int buttonHeight: 28
    readonly property int textLeft: margin + symbolSize + 16
    readonly property int textWidth: width - textLeft - margin
    readonly property int fieldHeight: hasField ? field.implicitHeight + margin : 0
    readonly property int fullHeight: Math.ceil(margin + message.implicitHeight + gap + body.implicitHeight + gap
                                                + fieldHeight + buttonHeight + margin)

    width: 420
    height: Math.min(fullHeight, Screen.height * 0.8)
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog | Qt.WindowTitleHint | Qt.WindowCloseButtonHint | Qt.CustomizeWindowHint
    modality: Qt.WindowModal
    title: alert.messageText
    color: Theme.window
    onClosing: alert.close()

    FocusScope {
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: root.alert.messageText
        Accessible.description: root.alert.informativeText
        Keys.onEscapePressed: root.alert.close()
        Keys.onUpPressed: frame.scrollBy(-kScrollStep)
        Keys.onDownPressed: frame.scrollBy(kScrollStep)

        readonly property int kScrollStep: 40

        Symbol {
            x: root.margin
            y: root.margin
            name: root.alert.symbol
            color: Theme.color(root.alert.symbolColor)
            size: root.symbolSize
        }
        PlainText {
            id: message
            objectName: "messageText"
            x: root.textLeft
            y: root.margin
            width: root.textWidth
            text: root.alert.messageText
            font.pixelSize: Theme.title3
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
        }
        ScrollFrame {
            id: frame
            x: root.textLeft
            width: root.textWidth
            anchors.top: message.bottom
            anchors.topMargin: root.gap
            anchors.bottom: root.hasField ? field.top : buttonRow.top
            anchors.bottomMargin: root.gap
            PlainText {
                id: body
                objectName: "informativeText"
                width: root.textWidth
                text: root.alert.informativeText
                color: Theme.secondary
                wrapMode: Text.Wrap
            }
        }
        InputField {
            id: field
            objectName: "field"
            x: root.textLeft
            width: root.textWidth
            anchors.bottom: buttonRow.top
            anchors.bottomMargin: root.margin
            visible: root.hasField
            placeholderText: root.alert.placeholder
            echoMode: root.alert.field === AlertPresenter.Secret ? TextInput.Password : TextInput.Normal
            text: root.alert.text
            onTextChanged: if (root.alert.field === AlertPresenter.Text) root.alert.text = field.text // also by a screen reader
            Keys.onReturnPressed: root.alert.press(0)
            Keys.onEnterPressed: root.alert.press(0)
        }
        Row {
            id: buttonRow
            height: root.buttonHeight
            anchors.right: parent.right
            anchors.rightMargin: root.margin
            anchors.bottom: parent.bottom
            anchors.bottomMargin: root.margin
            layoutDirection: Qt.RightToLeft // the default one at the end
            spacing: 8
            Repeater {
                id: buttons
                model: root.alert.buttons
                PushButton {
                    required property string modelData
                    required property int index
                    objectName: "button" + index
                    text: modelData
                    height: root.buttonHeight
                    kind: index === 0 ? PushButton.Kind.Default : PushButton.Kind.Plain
                    onClicked: root.alert.press(index)
                }
            }
        }
    }
    SecretInput {
        field: root.alert.field === AlertPresenter.Secret ? field : null
    }
    Component.onCompleted: {
        if (hasField) {
            field.selectAll();
            field.forceActiveFocus();
        } else {
            buttons.itemAt(0)?.forceActiveFocus(Qt.TabFocusReason);
        }
    }
}
