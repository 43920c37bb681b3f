import QtQuick
import Brindle

// Put into an item, shows a tip after the pointer has rested on it.
HoverHandler {
    id: root
    property string tip: ""

    property Timer delay: Timer {
        interval: 600
        running: root.hovered && root.tip !== ""
        onTriggered: ToolTips.show(root.tip)
    }

    onHoveredChanged: if (!hovered) ToolTips.hide()
}
