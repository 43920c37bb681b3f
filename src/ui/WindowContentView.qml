import QtQuick
import Brindle

// All that the window shows: the list of disks in its frame, or the dialog of a copy or an erase in its place.
Rectangle {
    id: root
    required property WindowContentPresenter presenter

    readonly property var menuColors: [Theme.row, Theme.primary, Theme.secondary, Theme.accent, Theme.onFilled]

    function paintMenus(): void {
        WindowBridge.paintMenus(menuColors[0], menuColors[1], menuColors[2], menuColors[3], menuColors[4]);
    }
    onMenuColorsChanged: paintMenus()
    Component.onCompleted: paintMenus()

    focus: true // until a row or a button has the keyboard
    color: Theme.window
    radius: WindowBridge.isComposited ? Theme.windowRadius : 0
    border.width: WindowBridge.isComposited ? 0 : 1
    border.color: Theme.controlBorder

    function popUpMenu(place: point): void {
        WindowBridge.requestApplicationMenu(mapToGlobal(place.x, place.y));
    }

    // A row that has the keyboard takes the Menu key for itself.
    Keys.onMenuPressed: popUpMenu(Qt.point(Theme.margin, header.height))
    Shortcut { sequence: "F10"; onActivated: root.popUpMenu(Qt.point(Theme.margin, header.height)) }
    // By their keys: a standard key that is the same on a desktop would make them ambiguous, and do nothing.
    Shortcut { sequences: ["Ctrl+R", "F5"]; onActivated: root.presenter.refresh() }
    Shortcut { sequence: "Ctrl+W"; onActivated: root.Window.window.close() }
    Shortcut { sequence: "Ctrl+Q"; onActivated: root.presenter.quit() }

    Item { // all of it stays in sight when the notice comes
        anchors.fill: parent
        anchors.bottomMargin: notice.visible ? notice.height : 0

        Item {
            objectName: "diskListFrame"
            anchors.fill: parent
            visible: root.presenter.content === "diskList"
            onVisibleChanged: {
                if (visible) { // again, after a dialog: keys find somebody
                    root.forceActiveFocus(Qt.OtherFocusReason);
                    list.takeFocus();
                }
            }

            DiskListHeaderView {
                id: header
                objectName: "header"
                width: parent.width
                isLoading: root.presenter.isLoading
                onMenuRequested: place => root.popUpMenu(place)
                onRefreshTapped: root.presenter.refresh()
            }
            DiskListContentView {
                id: list
                anchors.top: header.bottom
                anchors.bottom: footer.top
                width: parent.width
                listState: root.presenter.listState
                rows: root.presenter.rows
            }
            DiskListFooterView {
                id: footer
                objectName: "footer"
                anchors.bottom: parent.bottom
                width: parent.width
                presenter: root.presenter
            }
        }
        FlowLoader {
            view: "EFIDestinationSelectionView.qml"
            role: "dialog"
            presenter: root.presenter.copy.dialog
        }
        FlowLoader {
            view: "EraseProgressView.qml"
            role: "erase"
            presenter: root.presenter.content === "erase" ? root.presenter.erase : null
        }
    }
    QuitNotice {
        id: notice
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: root.border.width
        text: root.presenter.quitNotice
    }
}
