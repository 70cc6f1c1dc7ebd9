import QtQuick 2.15
import QtQuick.Window 2.15

// The frame of the light dialogs: a frameless window with a shadow margin, a heading with a
// close button, and a white card for the content. Dragging anywhere moves it, since there is
// no system title bar to grab.
Window {
    id: dialog

    property string heading: ""
    default property alias content: card.data
    readonly property alias card: card

    function centreOnScreen() {
        x = screen.virtualX + (screen.width - width) / 2
        y = screen.virtualY + (screen.height - height) / 2
    }

    width: 366
    height: 440
    flags: Qt.FramelessWindowHint | Qt.Dialog
    color: Theme.transparent

    Component.onCompleted: centreOnScreen()

    Shortcut {
        sequences: [StandardKey.Cancel]
        onActivated: dialog.close()
    }

    CShadowRectangle {
        target: body
    }

    Rectangle {
        id: body
        anchors.fill: parent
        anchors.margins: Theme.dialogShadowMargin
        radius: Theme.radiusDialog
        color: Theme.dialogBody

        MouseArea {
            property point grab

            anchors.fill: parent
            acceptedButtons: Qt.LeftButton
            onPressed: grab = Qt.point(mouse.x, mouse.y)
            onPositionChanged: {
                dialog.x += mouse.x - grab.x
                dialog.y += mouse.y - grab.y
            }
        }

        Item {
            id: titleRow
            width: parent.width
            height: 40

            Text {
                anchors.centerIn: parent
                text: dialog.heading
                font.pixelSize: Theme.fontTitle
                font.bold: true
                color: Theme.accent
            }
            CButton {
                objectName: "closeButton"
                anchors.right: parent.right
                anchors.rightMargin: 14
                anchors.verticalCenter: parent.verticalCenter
                width: 14
                height: 14
                imageSource: "../Resources/titleBar/closeOne"
                onClicked: dialog.close()
            }
        }

        Rectangle {
            id: card
            anchors.top: titleRow.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            width: 320
            height: 360
            radius: Theme.radiusMain
            color: Theme.dialogCard
        }
    }
}
