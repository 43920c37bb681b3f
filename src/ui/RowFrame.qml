import QtQuick
import Brindle

// What the rows of disks and of partitions have in common: the surface under their content, pointer and keys.
Item {
    id: root
    required property RowPresenter presenter
    required property ListFocus list
    property bool isOverButton: false // which has a tip of its own
    default property alias content: holder.data
    readonly property bool isCurrent: list.currentIdentifier === presenter.identifier

    function popUpMenu(place: point): void {
        forceActiveFocus(Qt.PopupFocusReason);
        ContextMenu.popUp(presenter, root, place);
    }

    objectName: presenter.identifier
    activeFocusOnTab: isCurrent || activeFocus
    onActiveFocusChanged: if (activeFocus) list.currentIdentifier = presenter.identifier

    Accessible.role: Accessible.ListItem
    Accessible.name: presenter.accessibleName
    Accessible.description: presenter.accessibleDescription
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: if (WindowBridge.isInReach(root)) root.presenter.activate()

    Keys.onPressed: event => {
        list.isByKeyboard = true;
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            presenter.activate();
        else if (event.key === Qt.Key_Right || event.key === Qt.Key_Left)
            presenter.setOpen(event.key === Qt.Key_Right);
        else if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier)
            popUpMenu(Qt.point(width / 2, height / 2));
        else if (event.matches(StandardKey.Copy))
            WindowBridge.copyToClipboard(presenter.identifier);
        else if (!list.handleKey(event))
            return;
        event.accepted = true;
    }

    Rectangle {
        objectName: "rowSurface"
        anchors.fill: parent
        radius: 8
        color: root.focus ? // also while its menu or a dialog has the keyboard
                Theme.rowSelected : hover.hovered ? Theme.rowHover : Theme.row
        border.width: root.activeFocus && root.list.isByKeyboard ? 2 : 0
        border.color: Theme.focus

        TapHandler { // not for what a button above has taken
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: root.forceActiveFocus(Qt.MouseFocusReason)
            onDoubleTapped: root.presenter.doubleClick()
        }
        TapHandler {
            acceptedButtons: Qt.RightButton
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: point => root.popUpMenu(point.position)
        }
        ToolTipArea {
            id: hover
            tip: root.isOverButton ? "" : root.presenter.toolTip
        }
    }
    Item {
        id: holder
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 6
    }
}
