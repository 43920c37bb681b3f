import QtQuick
import QtQuick.Layouts

// A warning that informs and forbids nothing.
Rectangle {
    id: root
    required property var box // a BoxValue
    readonly property color tint: Theme.color(box.color)
    // Faded, and dark enough to be read all the same.
    readonly property color messageColor: Qt.alpha(Theme.isDark ? tint : Qt.darker(tint, 1.5), 0.8)

    implicitHeight: line.implicitHeight + 24
    radius: 8
    color: Qt.alpha(tint, 0.1)
    border.width: 1
    border.color: Qt.alpha(tint, 0.3)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: box.title
    Accessible.description: box.text

    RowLayout {
        id: line
        anchors.fill: parent
        anchors.margins: 12
        spacing: 12
        Symbol {
            name: root.box.icon
            color: root.tint
            size: Theme.headline
        }
        ColumnLayout {
            spacing: 2
            PlainText {
                Layout.fillWidth: true
                text: root.box.title
                color: root.tint
                font.pixelSize: Theme.callout
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            PlainText {
                Layout.fillWidth: true
                text: root.box.text
                color: root.messageColor
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
}
