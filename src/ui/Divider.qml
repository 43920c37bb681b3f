import QtQuick

// A thin line: give it a width or a height.
Rectangle {
    implicitWidth: 1
    implicitHeight: 1
    color: Theme.separator
    Accessible.role: Accessible.Separator
}
