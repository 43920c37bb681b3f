import QtQuick
import QtQuick.Layouts

// A symbol, a text or both in a line of text.
RowLayout {
    id: root
    required property var sign // a SignValue
    property color symbolColor: Theme.color(sign.color)
    property color textColor: Theme.color(sign.color)
    property int size: Theme.caption

    spacing: Theme.tight
    Symbol {
        visible: root.sign.symbol !== ""
        name: root.sign.symbol
        color: root.symbolColor
        size: root.size
    }
    PlainText {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.sign.text
        color: root.textColor
        font.pixelSize: root.size
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
