import QtQuick

// Content that scrolls up and down where it is higher than the frame; it is as wide as the frame.
Flickable {
    id: root
    default property alias content: holder.data

    contentWidth: width
    contentHeight: holder.childrenRect.height
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    property Item revealed: null

    readonly property int air: 12 // around what is revealed, where there is any

    // Brings a child into sight, for one that has got the keyboard. It stays there while the content is laid out.
    function reveal(item: Item): void {
        revealed = item;
        const top = item.mapToItem(holder, 0, 0).y;
        scrollTo(Math.max(top + item.height + air - height, Math.min(contentY, top - air)));
    }

    function scrollBy(distance: real): void {
        scrollTo(contentY + distance);
    }

    function scrollTo(y: real): void {
        contentY = Math.max(0, Math.min(y, contentHeight - height));
    }

    onHeightChanged: if (revealed) reveal(revealed)
    onContentHeightChanged: if (revealed) reveal(revealed)
    onMovementStarted: revealed = null

    Item {
        id: holder
        width: root.width
        height: childrenRect.height
    }

    ScrollBar {
        objectName: "scrollBar"
        parent: root // not of what scrolls
        flickable: root
    }
}
