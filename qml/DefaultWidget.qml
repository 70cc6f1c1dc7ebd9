import QtQuick 2.15
import CustomUtils 1.0

// The empty state: artwork and an "Open file" shape. Files chosen or dropped here go to
// handleOpenFile (the first one only) or, without a handler, all into the tools' file list.
Item {
    id: root

    property var handleOpenFile: null

    function openFile() {
        dialog.open()
    }

    function take(urls) {
        if (urls.length === 0)
            return
        if (typeof handleOpenFile === "function") {
            handleOpenFile(String(urls[0]))
        } else {
            for (var i = 0; i < urls.length; ++i)
                FileModel.append(String(urls[i]), 0, "")
        }
    }

    Image {
        anchors.fill: parent
        source: "../Resources/control/default.png"
        fillMode: Image.PreserveAspectCrop
        asynchronous: true
    }

    // The free space above and below the button is shared 8 : 3.
    Rectangle {
        x: (parent.width - width) / 2
        y: (parent.height - height) * 8 / 11
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

    DropArea {
        anchors.fill: parent
        onDropped: root.take(drop.urls)
    }

    CFileDialog {
        id: dialog
        handleSelected: function (urls) { root.take(urls) }
    }
}
