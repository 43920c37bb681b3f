import QtQuick
import Brindle

// The row of a disk, and beneath it, where it is open, those of its EFI partitions.
Column {
    id: root
    required property DiskRowPresenter row
    required property ListFocus list

    // The row with the identifier, or the one of its partitions that has it.
    function rowOf(identifier: string): Item {
        if (frame.presenter.identifier === identifier)
            return frame;
        for (let i = 0; i < partitions.count; ++i) {
            const partition = partitions.itemAt(i) as WindowEFIPartitionRowView;
            if (partition && partition.presenter.identifier === identifier)
                return partition;
        }
        return null;
    }
    function focusRow(identifier: string): void {
        const wanted = rowOf(identifier);
        if (!wanted)
            return;
        wanted.forceActiveFocus(Qt.TabFocusReason);
        list.revealRequested(wanted);
    }

    // The list has the keyboard for a row that is out of sight.
    function takeKeyboardFromList(): void {
        if (Window.activeFocusItem === ListView.view)
            rowOf(list.currentIdentifier)?.forceActiveFocus(Qt.TabFocusReason);
    }

    spacing: 4
    height: row.wholeHeight
    Component.onCompleted: takeKeyboardFromList()

    RowFrame {
        id: frame
        presenter: root.row
        list: root.list
        isOverButton: buttons.isHovered || chevron.hovered
        width: root.width
        height: root.row.height

        DiskRowContent {
            presenter: root.row.content
            anchors.left: parent.left
            anchors.right: buttons.left
            anchors.rightMargin: 2
            height: parent.height
        }
        RowButtons {
            id: buttons
            presenter: root.row
            list: root.list
            anchors.right: chevron.left
            anchors.rightMargin: chevron.reach
            anchors.verticalCenter: parent.verticalCenter
        }
        IconButton { // its place stays free in other rows, so that their buttons stand beneath one another
            id: chevron
            objectName: "chevron"
            anchors.right: parent.right
            anchors.rightMargin: reach
            anchors.verticalCenter: parent.verticalCenter
            visible: root.row.hasChevron
            frame: 12
            reach: 4
            size: 10
            symbol: root.row.chevron
            tip: root.row.isExpanded ? "Collapse EFI List" : "Expand EFI List"
            activeFocusOnTab: frame.isCurrent || activeFocus
            onClicked: root.row.setOpen(!root.row.isExpanded)
        }
    }
    Repeater {
        id: partitions
        model: root.row.partitions
        onItemRemoved: (index, item) => {
            if (!root.row.isExpanded && (item as WindowEFIPartitionRowView)?.isCurrent)
                root.list.currentIdentifier = root.row.identifier;
        }
        WindowEFIPartitionRowView {
            required property EFIPartitionRowPresenter modelData
            partition: modelData
            list: root.list
            width: root.width
        }
    }
}
