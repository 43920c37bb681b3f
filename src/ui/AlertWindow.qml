import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Brindle

// A message with its buttons, and a field where something is asked for.
Window {
    id: root
    required property AlertPresenter alert
    readonly property bool hasField: alert.field !== AlertPresenter.None
    readonly property int fullHeight: Math.ceil(content.implicitHeight + body.implicitHeight + 40)

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

        RowLayout {
            anchors.fill: parent
            anchors.margins: 20
            spacing: 16
            Symbol {
                Layout.alignment: Qt.AlignTop
                name: root.alert.symbol
                color: Theme.color(root.alert.symbolColor)
                size: 32
            }
            ColumnLayout {
                id: content
                spacing: 12
                PlainText {
                    objectName: "messageText"
                    Layout.fillWidth: true
                    text: root.alert.messageText
                    font.pixelSize: Theme.title3
                    font.weight: Font.DemiBold
                    wrapMode: Text.Wrap
                }
                ScrollFrame {
                    id: frame
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    PlainText {
                        id: body
                        objectName: "informativeText"
                        width: frame.width
                        text: root.alert.informativeText
                        color: Theme.secondary
                        wrapMode: Text.Wrap
                    }
                }
                InputField {
                    id: field
                    objectName: "field"
                    Layout.fillWidth: true
                    Layout.topMargin: 4
                    visible: root.hasField
                    placeholderText: root.alert.placeholder
                    echoMode: root.alert.field === AlertPresenter.Secret ? TextInput.Password : TextInput.Normal
                    text: root.alert.text
                    onTextEdited: if (root.alert.field === AlertPresenter.Text) root.alert.text = field.text
                    Keys.onReturnPressed: root.alert.press(0)
                    Keys.onEnterPressed: root.alert.press(0)
                }
                RowLayout {
                    Layout.topMargin: 8
                    Layout.alignment: Qt.AlignRight
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
                            kind: index === 0 ? PushButton.Kind.Default : PushButton.Kind.Plain
                            onClicked: root.alert.press(index)
                        }
                    }
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
