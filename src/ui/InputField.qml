import QtQuick
import QtQuick.Templates as T

// One line of text. For a password set echoMode to TextInput.Password.
T.TextField {
    id: root
    implicitWidth: 280
    implicitHeight: 28
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: TextInput.AlignVCenter
    font.family: Theme.fontFamily
    font.pixelSize: Theme.body
    color: Theme.primary
    selectionColor: Theme.accent
    selectedTextColor: Theme.onFilled
    placeholderTextColor: Theme.secondary
    selectByMouse: true
    renderType: Text.NativeRendering
    opacity: enabled ? 1 : Theme.disabledPercent / 100
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText

    PlainText {
        anchors.fill: parent
        leftPadding: root.leftPadding
        rightPadding: root.rightPadding
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        text: root.placeholderText
        font: root.font
        color: root.placeholderTextColor
        visible: root.length === 0 && root.preeditText === ""
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radius
        color: Theme.field
        border.width: 1
        border.color: Theme.fieldBorder
        FocusRing { control: root; visible: root.activeFocus }
    }
}
