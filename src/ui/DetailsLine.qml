import QtQuick
import Brindle

// The details of a disk with bullets between them. Where they are too long, "+n" stands for the last indicators.
Row {
    id: root
    required property DiskRowContentPresenter presenter
    readonly property int hidden: presenter.indicatorCount - shownIndicators
    property int shownIndicators: 0
    readonly property int firstHidden: 2 + shownIndicators
    readonly property int firstAfter: 2 + presenter.indicatorCount

    function fit(): void {
        const widths = [];
        for (let i = 0; i < items.count; ++i)
            widths.push((items.itemAt(i) as RowText)?.implicitWidth ?? 0);
        shownIndicators = presenter.fittingIndicators(widths, bullet.implicitWidth + 2 * spacing, more.implicitWidth,
                                                      width);
    }

    spacing: 4
    onWidthChanged: fit()
    Component.onCompleted: fit()
    Connections {
        target: root.presenter
        function onChanged(): void { Qt.callLater(root.fit); }
    }

    RowText { id: bullet; value: root.presenter.bullet; visible: false }
    RowText {
        id: more
        value: ({ text: "+" + Math.max(1, root.hidden), size: 11, weight: "regular", color: "secondary" })
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
            readonly property bool isMore: root.hidden > 0 && index === root.firstHidden
            readonly property real implicitWidth: text.implicitWidth

            spacing: root.spacing
            visible: index <= root.firstHidden || index >= root.firstAfter || root.hidden === 0
            RowText { value: root.presenter.bullet; visible: item.index > 0 }
            RowText {
                id: text
                objectName: "detail"
                value: item.isMore ? more.value : item.modelData
            }
        }
    }
}
