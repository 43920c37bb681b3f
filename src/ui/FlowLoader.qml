import QtQuick
import Brindle

// A dialog in place of the list, which has the keyboard as long as it is there.
Loader {
    anchors.fill: parent
    anchors.margins: WindowBridge.isComposited ? 0 : 1 // the window's own line
    visible: active
    focus: active
}
