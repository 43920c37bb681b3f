import QtQuick
import Brindle

// How full a disk is.
Column {
    id: root
    required property DiskRowContentPresenter presenter
    readonly property color barColor: Theme.color(presenter.barColor)
    property real ratio: presenter.usedRatio

    spacing: 3
    Behavior on ratio { NumberAnimation { duration: 350; easing.type: Easing.InOutQuad } }

    Rectangle {
        width: parent.width
        height: 5
        radius: 3
        color: Qt.alpha(Theme.separator, 0.5)
        Rectangle {
            objectName: "spaceFill"
            width: root.presenter.fillWidth(root.ratio, parent.width)
            height: parent.height
            radius: parent.radius
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: Qt.alpha(root.barColor, 0.85) }
                GradientStop { position: 1; color: root.barColor }
            }
        }
    }
    Item {
        width: parent.width
        height: space.height
        RowText {
            id: space
            objectName: "space"
            value: root.presenter.space
            width: parent.width - percent.width - 8
            elide: Text.ElideRight
        }
        RowText {
            id: percent
            objectName: "percent"
            anchors.right: parent.right
            value: root.presenter.percent
        }
    }
}
