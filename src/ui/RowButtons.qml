import QtQuick
import Brindle

// The buttons at the right of a row.
Row {
    id: root
    required property RowPresenter presenter
    property bool isCurrent: false // Tab goes on to them
    readonly property bool isHovered: hover.hovered

    HoverHandler { id: hover }

    Repeater {
        model: root.presenter.buttons
        IconButton {
            required property var modelData

            objectName: modelData.name
            frame: 22
            symbol: modelData.symbol
            tip: modelData.tip
            activeFocusOnTab: root.isCurrent
            enabled: !root.presenter.isLoading
            onClicked: root.presenter.perform(modelData.action)
        }
    }
}
