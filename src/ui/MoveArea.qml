import QtQuick

// Background by which the user drags the window.
Item {
    id: root

    DragHandler {
        target: null
        onActiveChanged: if (active) root.Window.window.startSystemMove()
    }
}
