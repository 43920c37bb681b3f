import QtQuick

// A part of a screen that comes and goes: it is there while it is shown, and on its way out it takes no input.
Loader {
    id: root
    required property bool shown
    required property int duration
    property real hiddenScale: 1

    active: visible
    visible: shown || opacity > 0
    enabled: shown
    z: shown ? 1 : 0
    opacity: shown ? 1 : 0
    scale: shown ? 1 : hiddenScale
    Behavior on opacity {
        NumberAnimation {
            duration: root.duration
            easing.type: Easing.InOutQuad
        }
    }
    Behavior on scale {
        NumberAnimation {
            duration: root.duration
            easing.type: Easing.InOutQuad
        }
    }
}
