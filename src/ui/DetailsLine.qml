import QtQuick
import Brindle

// The details of a disk with bullets between them. Where they are too long, "+n" stands for those that give way.
Row {
    id: root
    required property DiskRowContentPresenter presenter
    property var hidden: [] // indices of details

    function fit(): void {
        const widths = [];
        for (let i = 0; i < items.count; ++i)
            widths.push(items.itemAt(i)?.textWidth ?? 0);
        hidden = presenter.hiddenDetails(widths, bullet.implicitWidth + 2 * spacing, more.implicitWidth, width);
    }

    spacing: 3
    onWidthChanged: fit()
    Component.onCompleted: fit()
    Connections {
        target: root.presenter
        function onChanged(): void { Qt.callLater(root.fit); }
    }

    RowText { id: bullet; value: root.presenter.bullet; visible: false }
    RowText {
        id: more
        value: ({ text: "+" + Math.max(1, root.hidden.length), size: 11, weight: "regular", color: "secondary" })
        visible: false
    }

    Repeater {
        id: items
        model: root.presenter.details
        onCountChanged: Qt.callLater(root.fit)
        Row {
            id: item
            required property int index
            required property var modelData
            readonly property bool isMore: root.hidden.length > 0 && index === root.hidden[0]
            readonly property real textWidth: whole.implicitWidth

            spacing: root.spacing
            visible: isMore || !root.hidden.includes(index)
            RowText { value: root.presenter.bullet; visible: item.index > 0 }
            RowText { id: whole; value: item.modelData; visible: false }
            RowText {
                objectName: "detail"
                value: item.isMore ? more.value : item.modelData
            }
        }
    }
}
