import QtQuick

// Background by which the user drags the window.
Item {
    id: root

    // The desktop keeps the release of a move for itself; what it sends then looks like another drag.
    property bool isMoved: false
    PointHandler {
        onActiveChanged: if (active) root.isMoved = false
    }
    DragHandler {
        target: null
        onActiveChanged: {
            if (!active || root.isMoved)
                return;
            root.isMoved = true;
            root.Window.window.startSystemMove();
        }
    }
}
