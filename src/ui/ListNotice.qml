import QtQuick

// What stands in place of the rows.
Item {
    id: root
    property string symbol: "" // a spinner where there is none
    required property string title
    property int titleSize: Theme.body
    property string note: ""

    height: 120

    Column {
        anchors.centerIn: parent
        spacing: 12
        Spinner {
            objectName: "noticeSpinner"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.symbol === ""
            size: 24
        }
        Symbol {
            objectName: "noticeSymbol"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.symbol !== ""
            name: root.symbol
            size: Theme.largeTitle
            color: Theme.secondary
        }
        PlainText {
            objectName: "noticeTitle"
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.title
            font.pixelSize: root.titleSize
            color: Theme.secondary
        }
        PlainText {
            objectName: "noticeNote"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: text !== ""
            text: root.note
            font.pixelSize: Theme.caption
            color: Theme.secondary
        }
    }
}
