import QtQuick
import QtQuick.Layouts
import Brindle

// The erase dialog: asks, tells how the work goes on, and how it ended.
FocusScope {
    id: root
    required property EraseProgressPresenter erase

    Keys.onEscapePressed: erase.escape()

    MoveArea { anchors.fill: parent }
    Item {
        anchors.fill: parent
        anchors.margins: 32

        // Always in sight, and at the same place in every stage.
        Column {
            id: head
            width: parent.width
            spacing: 4
            Symbol {
                objectName: "eraseSymbol"
                anchors.horizontalCenter: parent.horizontalCenter
                name: root.erase.symbol
                color: Theme.color(root.erase.symbolColor)
                size: 44
            }
            PlainText {
                objectName: "eraseTitle"
                topPadding: 8
                width: parent.width
                text: root.erase.title
                font.pixelSize: Theme.title3
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.Heading
            }
            PlainText {
                objectName: "eraseName"
                width: parent.width
                visible: text !== ""
                text: root.erase.name
                font.pixelSize: Theme.title2
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
                ToolTipArea { tip: (parent as Text).truncated ? root.erase.name : "" }
            }
            PlainText {
                objectName: "eraseLine"
                width: parent.width
                visible: text !== ""
                text: root.erase.line
                color: Theme.secondary
                font.pixelSize: Theme.callout
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
                ToolTipArea { tip: (parent as Text).truncated ? root.erase.line : "" }
            }
        }
        ScrollFrame {
            id: frame
            objectName: "eraseBody"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: head.bottom
            anchors.topMargin: 20
            anchors.bottom: buttons.visible ? buttons.top : parent.bottom
            anchors.bottomMargin: buttons.visible ? 20 : 0
            Loader {
                width: frame.width
                sourceComponent: root.erase.stage === EraseProgressPresenter.Confirming ? confirming
                               : root.erase.stage === EraseProgressPresenter.InProgress ? inProgress : ended
                onSourceComponentChanged: fadeIn.restart()
                NumberAnimation on opacity {
                    id: fadeIn
                    from: 0
                    to: 1
                    duration: 200
                    easing.type: Easing.InOutQuad
                }
            }
        }
        Row {
            id: buttons
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            visible: root.erase.offersErase || root.erase.offersDone
            spacing: 12
            PushButton {
                objectName: "cancelButton"
                visible: root.erase.offersErase
                text: "Cancel"
                onClicked: root.erase.dismiss()
            }
            PushButton {
                objectName: "eraseButton"
                visible: root.erase.offersErase
                kind: PushButton.Kind.Destructive
                returnPresses: false
                text: "Erase"
                onClicked: root.erase.confirm()
            }
            PushButton {
                objectName: "doneButton"
                visible: root.erase.offersDone
                text: "Done"
                onClicked: root.erase.dismiss()
                onVisibleChanged: if (visible) forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }

    Component {
        id: confirming
        EraseConfirmation {
            erase: root.erase
            Component.onCompleted: focusName()
            onRevealWanted: item => frame.reveal(item)
        }
    }
    Component {
        id: inProgress
        Column {
            spacing: 20
            Component.onCompleted: root.forceActiveFocus()
            PlainText {
                objectName: "eraseStatus"
                width: parent.width
                text: root.erase.statusMessage
                color: Theme.secondary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
            BusyBar {
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(280, parent.width)
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 5
                Symbol {
                    name: "exclamationmark.triangle.fill"
                    color: Theme.orange
                    size: Theme.caption
                }
                PlainText {
                    text: "Do not disconnect the disk"
                    color: Theme.orange
                    font.pixelSize: Theme.caption
                }
            }
        }
    }
    Component {
        id: ended
        Column {
            PlainText {
                objectName: "eraseResult"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(340, parent.width)
                text: root.erase.resultMessage
                color: Theme.secondary
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
        }
    }
}
