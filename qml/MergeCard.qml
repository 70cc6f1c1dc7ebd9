import QtQuick 2.15
import CustomUtils 1.0

// One video of the merge strip: its picture, its place in the merge order and a remove button.
Rectangle {
    id: root

    property int number: 1
    property bool current: false
    property string imageSource: ""
    property var handleSelect: null
    property var handleRemove: null

    width: 130
    height: 88
    radius: Theme.radiusTool
    color: Theme.previewArea
    border.width: current ? 1 : 0
    border.color: Theme.accent

    Image {
        anchors.fill: parent
        anchors.margins: 4
        fillMode: Image.PreserveAspectFit
        source: root.imageSource
        cache: false
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: {
            if (typeof root.handleSelect === "function")
                root.handleSelect()
        }
    }

    Rectangle {
        objectName: "badge"
        x: 4
        y: 4
        width: 16
        height: 16
        radius: 2
        color: Theme.badge
        Text {
            anchors.centerIn: parent
            text: root.number
            font.pixelSize: Theme.fontCaption
            color: Theme.textPrimary
        }
    }

    CButton {
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 4
        width: 14
        height: 14
        imageSource: "../Resources/edit/delete"
        onClicked: {
            if (typeof root.handleRemove === "function")
                root.handleRemove()
        }
    }
}
