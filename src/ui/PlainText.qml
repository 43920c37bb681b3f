import QtQuick

// Text as it is: a stranger's name is never markup.
Text {
    textFormat: Text.PlainText
    color: Theme.primary
    font.pixelSize: Theme.body
    renderType: Text.NativeRendering
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
