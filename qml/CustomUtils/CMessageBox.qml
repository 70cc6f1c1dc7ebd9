pragma Singleton
import QtQuick 2.15
import QtQuick.Window 2.15

// One message box for the whole program. It has no queue: a second message while it is open
// replaces the text and the callback. With a callback it asks (Cancel / OK), else it informs.
Window {
    id: box

    property string text: ""
    property var handleOK: null

    function showMessage(message, onAccept) {
        text = message
        handleOK = typeof onAccept === "function" ? onAccept : null
        placeOver(transientParent)
        show()
        raise()
        requestActivate()
    }

    // Closes first, so a callback that shows another message keeps it on screen.
    function accept() {
        const callback = handleOK
        handleOK = null
        close()
        if (callback)
            callback()
    }

    function reject() {
        handleOK = null
        close()
    }

    function placeOver(window) {
        const area = window && window.visible ? window : { x: screen.virtualX, y: screen.virtualY,
                                                           width: screen.width, height: screen.height }
        x = area.x + (area.width - width) / 2
        y = area.y + (area.height - height) / 2
    }

    width: 380
    height: 250
    title: qsTr("Message")
    flags: Qt.FramelessWindowHint | Qt.Dialog
    modality: Qt.ApplicationModal
    color: Theme.transparent

    Shortcut {
        sequences: [StandardKey.Cancel]
        onActivated: box.reject()
    }
    Shortcut {
        sequences: ["Return", "Enter"]
        onActivated: box.accept()
    }

    CShadowRectangle {
        target: body
    }

    Rectangle {
        id: body
        anchors.fill: parent
        anchors.margins: Theme.dialogShadowMargin
        radius: Theme.radiusDialog
        color: Theme.dialogCard

        Image {
            id: picture
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: parent.top
            anchors.topMargin: 24
            width: 64
            height: 64
            source: "../Resources/common/OK.png"
            fillMode: Image.PreserveAspectFit
            mipmap: true
        }

        Text {
            objectName: "messageText"
            anchors.top: picture.bottom
            anchors.topMargin: 14
            anchors.bottom: buttons.top
            anchors.bottomMargin: 10
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 30
            anchors.rightMargin: 30
            text: box.text
            font.pixelSize: Theme.fontBody
            font.weight: Font.Medium
            color: Theme.dialogText
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }

        Row {
            id: buttons
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.margins: 20
            spacing: 12

            CCancelButton {
                objectName: "cancelButton"
                visible: box.handleOK !== null
                width: 72
                height: 30
                onClicked: box.reject()
            }
            COKButton {
                objectName: "okButton"
                width: 72
                height: 30
                text: qsTr("OK")
                onClicked: box.accept()
            }
        }
    }
}
