import QtQuick 2.15
import CustomUtils 1.0

// What a tool's preview area shows before a file is there: a picture, the "Open file" shape
// and a hint. The owner lays its own mouse and drop areas over it.
Column {
    // The picture gives way first when the area is short.
    property real pictureHeight: 200

    spacing: 16

    Image {
        anchors.horizontalCenter: parent.horizontalCenter
        height: parent.pictureHeight
        width: parent.width
        fillMode: Image.PreserveAspectFit
        source: "../Resources/control/default.png"
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 140
        height: 50
        radius: Theme.radiusOpenFileButton
        color: Theme.openFileButton

        Row {
            anchors.centerIn: parent
            spacing: 6
            Image {
                anchors.verticalCenter: parent.verticalCenter
                width: 22
                height: 22
                source: "../Resources/control/folder.png"
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Open file")
                font.pixelSize: Theme.fontXLarge
                font.weight: Font.Medium
                color: Theme.textPrimary
            }
        }
    }

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        text: qsTr("Drag your video here to open or click to add files")
        font.pixelSize: Theme.fontHeading
        color: Theme.textPrimary
    }
}
