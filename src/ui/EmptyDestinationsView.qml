import QtQuick

// No EFI partition is mounted that could be a destination.
Column {
    id: root
    signal refresh

    spacing: 16
    padding: 32
    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        name: "externaldrive.badge.questionmark"
        color: Theme.secondary
        size: 48
    }
    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "No Available Destinations"
        font.pixelSize: Theme.headline
        font.weight: Font.Medium
    }
    PlainText {
        x: root.padding
        width: root.width - 2 * root.padding
        text: "No other EFI partitions are currently mounted. Mount additional EFI partitions to use as destinations."
        color: Theme.secondary
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    PushButton {
        objectName: "refreshButton"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Refresh"
        onClicked: root.refresh()
    }
}
