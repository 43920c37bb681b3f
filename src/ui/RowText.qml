import QtQuick

// A piece of text with the size, weight and colour that a presenter gives it.
PlainText {
    required property var value

    text: value.text
    color: Theme.color(value.color)
    font.pixelSize: Math.max(1, value.size)
    font.weight: Theme.weight(value.weight)
    Accessible.ignored: true
}
