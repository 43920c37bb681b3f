import QtQuick
import Brindle

// A dialog in place of the list, which has the keyboard as long as it is there. Most windows never show one, so its view
// is loaded when it is first wanted.
Loader {
    required property url view
    required property string role // the view's property for the presenter
    required property var presenter // null: there is no dialog

    anchors.fill: parent
    anchors.margins: WindowBridge.isComposited ? 0 : 1 // the window's own line
    visible: false
    onPresenterChanged: {
        visible = presenter !== null; // before the view comes, which chooses what gets the keyboard
        focus = visible;
        if (visible)
            setSource(view, { [role]: presenter });
        else
            source = "";
    }
}
