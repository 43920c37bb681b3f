import QtQuick
import Brindle

// Which row of the list has the keyboard, and where keys take it.
QtObject {
    id: root
    required property DiskRowsModel rows
    required property int pageRows          // as many as a page shows
    property string currentIdentifier: "" // the row that has the keyboard, or gets it with Tab
    property bool isByKeyboard: false     // it was brought there by keys: the focus shows
    property string typed: ""
    signal focusRequested(identifier: string)
    signal revealRequested(item: Item)

    // Whether the key was one of the list's.
    function handleKey(event: KeyEvent): bool {
        const steps = { [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -pageRows, [Qt.Key_PageDown]: pageRows,
                        [Qt.Key_Home]: -100000, [Qt.Key_End]: 100000 }[event.key];
        if (steps === undefined || event.modifiers & ~Qt.KeypadModifier)
            return typeAhead(event);
        focusRequested(rows.neighbour(currentIdentifier, steps));
        return true;
    }
    function typeAhead(event: KeyEvent): bool {
        if (event.text.trim() === "" || event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
            return false;
        const isNext = typed === "" || typed === event.text; // the same letter again goes on to the next row
        typed = isNext ? event.text : typed + event.text;
        forget.restart();
        focusRequested(rows.find(currentIdentifier, typed, isNext));
        return true;
    }

    // The current row is the first one until a key or a click has chosen another, and again when that has gone.
    function chooseCurrent(): void {
        if (rows.indexOf(currentIdentifier) < 0)
            currentIdentifier = rows.neighbour("", 0);
    }

    property Timer forget: Timer {
        interval: 1000
        onTriggered: root.typed = ""
    }
    property Connections follow: Connections {
        target: root.rows
        function onRowsInserted(): void { root.chooseCurrent(); }
        function onRowsRemoved(): void { root.chooseCurrent(); }
    }
    Component.onCompleted: chooseCurrent()
}
