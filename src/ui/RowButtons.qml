import QtQuick
import Brindle

// The buttons at the right of a row.
Row {
    id: root
    required property RowPresenter presenter
    required property ListFocus list
    readonly property bool isCurrent: list.currentIdentifier === presenter.identifier // Tab goes on to them
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
            activeFocusOnTab: root.isCurrent || activeFocus
            enabled: !root.presenter.isLoading
            onClicked: {
                root.list.currentIdentifier = root.presenter.identifier;
                root.presenter.perform(modelData.action);
            }
        }
    }
}
