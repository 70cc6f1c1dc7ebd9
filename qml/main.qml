import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// Stand-in main window until the full player window exists: a player filling the window
// that plays files handed over on the command line or by a second instance.
Window {
    id: root
    width: 1280
    height: 760
    visible: true
    color: "black"
    title: player.mediaTitle.length > 0 ? player.mediaTitle : qsTr("Player")

    property bool isReady: false
    // A file requested before the player was ready; only the last request survives.
    property string url: ""

    function openFile(fileUrl) {
        if (!FileHelper.fileExists(fileUrl))
            return
        if (!isReady) {
            url = fileUrl
            return
        }
        player.loadFile(fileUrl)
    }

    MpvView {
        id: player
        anchors.fill: parent
        onReady: {
            root.isReady = true
            if (root.url.length > 0)
                root.openFile(root.url)
        }
    }

    Connections {
        target: FileHelper
        function onOpenFile(commamd, filePath) {
            root.openFile(filePath)
        }
    }

    onClosing: player.stop()
}
