import QtQuick 2.15
import CustomUtils 1.0

// The empty state: artwork and an "Open file" shape. Files chosen or dropped here go to
// handleOpenFile (the first one only) or, without a handler, all into the tools' file list.
Item {
    id: root

    property var handleOpenFile: null
    // The picture behind the button, scaled to cover the widget.
    property url artwork: "../Resources/control/default.png"
    // Set when the program decodes the artwork in advance: the first picture is then taken at
    // once, in time for the window's first frame; later sizes decode in the background.
    property bool artworkDecoded: false

    // The dialog is made on first use: most starts never open it, and it is not small.
    property var dialog: null

    function openFile() {
        if (!dialog) {
            var component = Qt.createComponent("CFileDialog.qml")
            dialog = component.createObject(root)
            if (!dialog) {
                console.warn("The file dialog is not available:", component.errorString())
                return
            }
            dialog.handleSelected = function (urls) { root.take(urls) }
        }
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

    // Decoded at the size shown rather than at the artwork's full 1920 x 1080: the picture and
    // its texture stay in memory for as long as the empty state exists. A resize settles
    // before the artwork is decoded again; meanwhile the last decode is stretched.
    property size decodeSize: Qt.size(0, 0)
    // The artwork is asked for only once a size is set; sizes after the first always decode
    // in the background.
    property bool sized: false
    property bool resized: false

    function settleSize() {
        resized = sized
        decodeSize = Qt.size(Math.ceil(width), Math.ceil(height))
        // Only now, with the size in place: a source set first would be decoded at full size.
        sized = decodeSize.width > 0 && decodeSize.height > 0
    }

    Image {
        anchors.fill: parent
        source: root.sized ? root.artwork : ""
        sourceSize: root.decodeSize
        fillMode: Image.PreserveAspectCrop
        asynchronous: !root.artworkDecoded || root.resized
    }
    Timer {
        id: settle
        interval: 150
        onTriggered: root.settleSize()
    }
    onWidthChanged: settle.restart()
    onHeightChanged: settle.restart()
    Component.onCompleted: settleSize()

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
}
