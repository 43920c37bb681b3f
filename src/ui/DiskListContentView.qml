import QtQuick
import QtQuick.Templates as T
import Brindle

// The rows of the disks, or what there is to say instead.
Item {
    id: root
    required property string listState
    required property DiskRowsModel rows

    property string currentIdentifier: "" // the row that has the keyboard, or gets it with Tab
    property bool isByKeyboard: false     // it was brought there by keys: the focus shows
    property string typed: ""

    function reveal(item: Item): void {
        const top = item.mapToItem(list.contentItem, 0, 0).y;
        list.contentY = Math.max(top + item.height - list.height, Math.min(list.contentY, top));
    }
    function focusRow(identifier: string): void {
        const index = rows.indexOf(identifier);
        if (index < 0)
            return;
        list.positionViewAtIndex(index, ListView.Contain);
        (list.itemAtIndex(index) as WindowDiskRowView)?.focusRow(identifier);
    }
    function handleKey(event: KeyEvent): bool {
        const pageRows = Math.max(1, Math.floor(height / 72));
        const steps = { [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -pageRows, [Qt.Key_PageDown]: pageRows,
                        [Qt.Key_Home]: -100000, [Qt.Key_End]: 100000 }[event.key];
        if (steps !== undefined && event.modifiers === Qt.NoModifier) {
            focusRow(rows.neighbour(currentIdentifier, steps));
            return true;
        }
        return typeAhead(event);
    }
    function typeAhead(event: KeyEvent): bool {
        if (event.text.trim() === "" || event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
            return false;
        const isNext = typed === "" || typed === event.text; // the same letter again goes on to the next row
        typed = isNext ? event.text : typed + event.text;
        forget.restart();
        focusRow(rows.find(currentIdentifier, typed, isNext));
        return true;
    }

    // The current row is the first one until a key or a click has chosen another, and again when that has gone.
    function chooseCurrent(): void {
        if (rows.indexOf(currentIdentifier) < 0)
            currentIdentifier = rows.neighbour("", 0);
    }

    Timer {
        id: forget
        interval: 1000
        onTriggered: root.typed = ""
    }
    Connections {
        target: root.rows
        function onRowsInserted(): void { root.chooseCurrent(); }
        function onRowsRemoved(): void { root.chooseCurrent(); }
    }
    Component.onCompleted: chooseCurrent()

    DragHandler {
        target: null
        onActiveChanged: if (active) root.Window.window.startSystemMove()
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
        Accessible.role: Accessible.List
        Accessible.name: "Disks"
        delegate: WindowDiskRowView {
            list: root
            width: ListView.view.width
        }
        T.ScrollBar.vertical: ScrollBar {
            parent: root
            anchors.right: parent.right
            height: list.height
        }
    }
    ListNotice {
        objectName: "firstScan"
        width: parent.width
        visible: root.listState === "firstScan"
        title: "Scanning disks..."
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
    }
}
