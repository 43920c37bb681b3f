import QtQuick

// One of the drawings in symbols/, by its name without ".svg", as big as a capital letter of a font of this size and in
// one colour. It says nothing to a screen reader: its surroundings do.
Image {
    required property string name
    property color color: Theme.primary
    property real size: Theme.body

    width: Math.round(size * 1.25)
    height: width
    sourceSize: Qt.size(width, height)
    source: name === "" ? "" : "image://symbol/" + name + "?" + color.toString().slice(1)
    Accessible.ignored: true
}
