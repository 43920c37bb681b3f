import QtQuick

// A dialog in place of the list, which has the keyboard as long as it is there.
Loader {
    anchors.fill: parent
    visible: active
    focus: active
}
