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
        focus: true
        Keys.onSpacePressed: player.pause = !player.pause
        Keys.onLeftPressed: player.position = Math.max(0, player.position - 5)
        Keys.onRightPressed: player.position = Math.min(player.duration, player.position + 5)
        Keys.onUpPressed: player.volume = Math.min(100, player.volume + 5)
        Keys.onDownPressed: player.volume = Math.max(0, player.volume - 5)
        Keys.onPressed: {
            if (event.key === Qt.Key_M)
                player.mute = !player.mute
            else if (event.key === Qt.Key_S)
                player.getScreenshot()
        }
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
