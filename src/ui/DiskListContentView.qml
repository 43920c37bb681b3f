import QtQuick
import Brindle

// The rows of the disks, or what there is to say instead.
Item {
    id: root
    required property string listState
    required property DiskRowsModel rows

    // With the air that stands between rows, so that a focus ring touches nothing.
    function reveal(item: Item): void {
        const top = item.mapToItem(list.contentItem, 0, 0).y - list.spacing;
        const lowest = top + item.height + 2 * list.spacing - list.height;
        list.contentY = Math.max(lowest, list.originY, Math.min(list.contentY, top));
    }
    function focusRow(identifier: string): void {
        const index = rows.indexOf(identifier);
        if (index < 0)
            return;
        list.positionViewAtIndex(index, ListView.Contain);
        (list.itemAtIndex(index) as WindowDiskRowView)?.focusRow(identifier);
    }

    // Gives the keyboard to the current row, if there is any.
    function takeFocus(): void {
        keyboard.chooseCurrent();
        focusRow(keyboard.currentIdentifier);
    }

    // A row that goes leaves the keyboard to the list, which keeps it for a row that is only out of sight.
    readonly property bool hasLostItsRow: Window.activeFocusItem === list
    onHasLostItsRowChanged: if (hasLostItsRow) Qt.callLater(replaceRow)
    function replaceRow(): void {
        const index = rows.indexOf(keyboard.currentIdentifier);
        if (hasLostItsRow && (index < 0 || list.itemAtIndex(index)))
            takeFocus();
    }

    // A row that is out of sight is shown before it obeys a key.
    function handleKey(event: KeyEvent): void {
        const isOfRow = [Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter, Qt.Key_Left, Qt.Key_Right, Qt.Key_Menu]
                        .includes(event.key) || event.matches(StandardKey.Copy)
                        || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier;
        keyboard.isByKeyboard = true;
        if (isOfRow)
            takeFocus();
        event.accepted = isOfRow || keyboard.handleKey(event);
    }

    // A window that isn't drawn lays nothing out by itself: rows would outlive the disks that they show.
    Connections {
        target: root.rows
        function onRowsRemoved(): void { list.forceLayout(); }
    }
    ListFocus {
        id: keyboard
        rows: root.rows
        pageRows: Math.max(1, Math.floor(root.height / 72))
        onFocusRequested: identifier => root.focusRow(identifier)
        onRevealRequested: item => root.reveal(item)
    }
    MoveArea {
        y: list.visible ? list.contentHeight : 0
        width: parent.width
        height: Math.max(0, parent.height - y)
    }

    ListView {
        id: list
        objectName: "diskList"
        anchors.fill: parent
        anchors.leftMargin: Theme.listMargin
        anchors.rightMargin: Theme.listMargin
        visible: root.listState === "rows"
        model: visible ? root.rows : null
        spacing: 4
        bottomMargin: 4
        clip: true
        interactive: contentHeight + bottomMargin > height
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: 400
        reuseItems: false
        currentIndex: -1 // that of the keyboard knows also of partitions
        keyNavigationEnabled: false
        Keys.onPressed: event => root.handleKey(event)
        Accessible.role: Accessible.List
        Accessible.name: "Disks"
        delegate: WindowDiskRowView {
            list: keyboard
            width: ListView.view.width
        }
    }
    Loader {
        id: scrollBar
        anchors.right: parent.right
        height: list.height
    }
    Timer { // few lists are that long, and a window takes a moment to become as high as its list
        interval: 300
        running: list.visible && list.interactive && scrollBar.status === Loader.Null
        onTriggered: scrollBar.setSource("ScrollBar.qml", { objectName: "listScrollBar", flickable: list })
    }
    ListNotice {
        objectName: "firstScan"
        width: parent.width
        visible: root.listState === "firstScan"
        title: "Scanning disks..."
        titleSize: Theme.subheadline
        note: "Verifying current state"
    }
    ListNotice {
        objectName: "scanning"
        width: parent.width
        visible: root.listState === "scanning"
        title: "Scanning disks..."
    }
    ListNotice {
        objectName: "noDisks"
        width: parent.width
        visible: root.listState === "empty"
        symbol: "externaldrive.badge.questionmark"
        title: "No disks found"
        titleSize: Theme.subheadline
    }
}
