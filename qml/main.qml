import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0
import "MainLogic.js" as Logic

// The main window: title bar, player, control bar and the sliding play list, plus the one way
// into playback (openFile) that every entry point uses.
Window {
    id: window

    property bool showDafault: true
    property bool showList: false
    property int currentIndex: 0
    property bool isSmall: false
    property bool isFullParent: false
    property bool moveFlag: false
    property var toolDialogInstance: null
    property bool isReady: false
    property string url: ""
    property int bw: 10
    // Made on first use, like the other windows and pop-ups that are not on screen at start:
    // the dialog brings its own module and, without a desktop's dialog, a whole QML one.
    property var fileDialog: null

    readonly property bool fillsWindow: isSmall || visibility === Window.Maximized
                                        || visibility === Window.FullScreen
    // Size to come back to from the mini-player.
    property size normalSize: Qt.size(998, 680)

    flags: Qt.FramelessWindowHint | Qt.Window
    color: Theme.transparent
    width: 998
    height: 680
    minimumWidth: isSmall ? 320 : 950
    minimumHeight: isSmall ? 200 : 580
    visible: true
    title: qsTr("Player")

    // ---- the decisions every entry point shares -------------------------------------------

    function openFile(fileUrl) {
        if (visibility === Window.Minimized) {
            show()
            raise()
        }
        var action = Logic.openAction(FileHelper.fileExists(FileHelper.getFilePath(fileUrl)), isReady)
        if (action === "missing") {
            CMessageBox.showMessage(qsTr("File does not exist"))
            return
        }
        if (action === "remember") {
            url = fileUrl
            return
        }
        player.loadFile(fileUrl)
        // A file someone opens is one they want to watch, even if the last one stood paused.
        if (player.pause)
            player.setPause(false)
        currentIndex = Logic.indexOfUrl(historyUrls(), player.fileUrl(), currentIndex)
    }

    function historyUrls() {
        var urls = []
        for (var i = 0; i < historyModel.count; ++i)
            urls.push(historyModel.get(i).url)
        return urls
    }

    function openRow(index) {
        if (index >= 0 && index < historyModel.count)
            openFile(historyModel.get(index).url)
    }

    function playPrevious() {
        if (Logic.canPrevious(currentIndex))
            openRow(currentIndex - 1)
    }

    function playNext() {
        if (Logic.canNext(currentIndex, historyModel.count))
            openRow(currentIndex + 1)
    }

    function openFileDialog() {
        if (!fileDialog) {
            var component = Qt.createComponent("CFileDialog.qml")
            fileDialog = component.createObject(window)
            if (!fileDialog) {
                console.warn("The file dialog is not available:", component.errorString())
                return
            }
            fileDialog.handleSelected = function (urls) {
                if (urls.length > 0)
                    window.openFile(urls[0])
            }
        }
        fileDialog.open()
    }

    function togglePause() {
        if (player.fileUrl().length > 0)
            player.setPause(!player.pause)
    }

    function setSmall(small) {
        if (small === isSmall)
            return
        if (small && !fillsWindow)
            normalSize = Qt.size(width, height)
        isSmall = small
        isFullParent = small
        if (small) {
            width = 320
            height = 200
        } else {
            width = normalSize.width
            height = normalSize.height
        }
    }

    function setFullScreen(full) {
        isFullParent = full
        visibility = full ? Window.FullScreen : Window.AutomaticVisibility
    }

    function showTool(index, fileUrl) {
        if (!toolDialogInstance) {
            var component = Qt.createComponent("CToolWindow.qml")
            if (component.status !== Component.Ready) {
                console.warn("The tool window is not available:", component.errorString())
                return
            }
            toolDialogInstance = component.createObject(null)
            if (!toolDialogInstance)
                return
        }
        var tool = controlBar.toolModel.get(index)
        toolDialogInstance.show()
        toolDialogInstance.showIndex(index)
        toolDialogInstance.iconSource = tool.icon + "_press.png"
        toolDialogInstance.title = tool.title
        toolDialogInstance.raise()
        if (fileUrl)
            toolDialogInstance.openFile(fileUrl)
    }

    function notifyNoFile() {
        notification.notify(CNotification.Notice, "", 5000)
    }

    function touchPlayer() {
        moveFlag = true
        moveTimer.restart()
        controlBar.preparePreview()
    }

    onClosing: player.stop()

    // ---- services ---------------------------------------------------------------------------

    VideoHistoryModel {
        id: historyModel
        onDataChanged: {
            window.currentIndex = Logic.indexOfUrl(window.historyUrls(), player.fileUrl(), window.currentIndex)
            titleBar.isPin = historyModel.get(window.currentIndex).is_top > 0
            // Deliberately also when nothing plays: a changed list is shown over the empty state.
            window.showDafault = false
        }
    }

    Connections {
        target: FileHelper
        function onOpenFile(commamd, filePath) {
            var tool = Logic.toolForCommand(commamd)
            if (tool === -1)
                window.openFile(filePath)
            else if (tool >= 0)
                window.showTool(tool, filePath)
        }
    }

    // Media keys and the desktop's player widgets step through the history like the buttons.
    Connections {
        target: MprisService
        function onNextRequested() { window.playNext() }
        function onPreviousRequested() { window.playPrevious() }
    }

    Connections {
        target: ImageProvider
        function onImageLoaded(index, filePath) {
            if (Logic.isCardImage(filePath))
                historyPanel.setCardImage(index, "image://ImageProvider/" + filePath)
        }
    }

    Timer {
        id: moveTimer
        interval: 1000
        onTriggered: window.moveFlag = false
    }

    Shortcut { sequence: "F"; onActivated: window.openFileDialog() }
    Shortcut { sequence: "Space"; onActivated: window.togglePause() }
    Shortcut { sequence: "Left"; onActivated: player.position = Logic.stepBack(player.position) }
    Shortcut { sequence: "Right"; onActivated: player.position = Logic.stepForward(player.position, player.duration) }
    Shortcut {
        sequence: "Esc"
        onActivated: {
            if (window.isSmall)
                window.setSmall(false)
            else if (window.visibility === Window.FullScreen)
                window.setFullScreen(false)
        }
    }

    // ---- frame --------------------------------------------------------------------------------

    CShadowRectangle {
        target: mainWindow
        spread: 5
        visible: !window.fillsWindow
    }

    Rectangle {
        id: mainWindow
        anchors.centerIn: parent
        width: window.fillsWindow ? window.width : window.width - 10
        height: window.fillsWindow ? window.height : window.height - 10
        radius: window.fillsWindow ? 0 : Theme.radiusMain
        // The video item fills the player area opaquely (black before its first picture) and is
        // drawn in every frame, so the body is painted only where the bars lie: with software
        // OpenGL a blended fill under the whole picture costs milliseconds per video frame.
        color: Theme.transparent

        Repeater {
            model: [titleBar, controlBar]
            Item {
                readonly property Item bar: modelData
                y: bar.y
                width: mainWindow.width
                height: bar.height
                clip: true
                Rectangle {
                    y: -parent.y
                    width: mainWindow.width
                    height: mainWindow.height
                    radius: mainWindow.radius
                    color: Theme.windowBackground
                }
            }
        }

        TitleBar {
            id: titleBar
            anchors.top: parent.top
            anchors.left: parent.left
            anchors.right: parent.right
            isMain: true
            logoSource: ConfigHelper.appIcon()
            titleText: qsTr("Player")
            handlePin: function () {
                var row = historyModel.get(window.currentIndex)
                if (row.url)
                    SqlHelper.setVideoTop(row.url, !(row.is_top > 0))
            }
            Component.onCompleted: setParentWindow(window)
        }

        Item {
            id: playerArea
            anchors.top: titleBar.bottom
            anchors.bottom: controlBar.top
            anchors.left: parent.left
            anchors.right: parent.right

            // Stays visible under the empty state: it reports ready only once it has been drawn.
            MpvView {
                id: player
                objectName: "player"
                parent: window.isFullParent ? mainWindow : playerArea
                anchors.fill: parent
                z: window.isFullParent ? 100 : 0

                onReady: {
                    window.isReady = true
                    if (window.url.length > 0) {
                        var pending = window.url
                        window.url = ""
                        window.openFile(pending)
                    }
                }
                onCurrentUrlChanged: {
                    var current = fileUrl()
                    titleBar.fileName = current.length > 0 ? FileHelper.getFileName(FileHelper.getFilePath(current)) : ""
                    window.showDafault = current.length === 0
                }
                onScreenshotTaken: notification.notify(CNotification.Notice, filePath, 5000)
                onPlayEnd: window.playNext()
            }

            DefaultWidget {
                id: defaultWidget
                objectName: "defaultWidget"
                anchors.fill: parent
                visible: window.showDafault
                // Decoded by the program while the scene loads, in time for the first frame.
                artwork: "image://prefetched/artwork"
                artworkDecoded: true
                handleOpenFile: function (u) { window.openFile(u) }
            }

            MouseArea {
                anchors.fill: parent
                hoverEnabled: true
                acceptedButtons: window.showDafault ? Qt.LeftButton : Qt.NoButton
                cursorShape: window.showDafault ? Qt.PointingHandCursor : Qt.ArrowCursor
                onPositionChanged: window.touchPlayer()
                onClicked: window.openFileDialog()
            }

            Rectangle {
                objectName: "pauseOverlay"
                anchors.fill: parent
                color: Theme.dim
                visible: player.pause && !window.isSmall && !window.showDafault
                Column {
                    anchors.centerIn: parent
                    spacing: 12
                    Image {
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: 36; height: 36
                        source: "../Resources/control/play.png"
                    }
                    Text {
                        text: qsTr("Continue Playing")
                        color: Theme.textPrimary
                        font.pixelSize: Theme.fontLarge
                    }
                }
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: player.setPause(false)
                }
            }

            DropArea {
                anchors.fill: parent
                onDropped: {
                    if (drop.urls.length > 0)
                        window.openFile(String(drop.urls[0]))
                }
            }
        }

        ControlBar {
            id: controlBar
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            z: 1
            player: player
            playerVisible: !window.showDafault
            canPrevious: Logic.canPrevious(window.currentIndex)
            canNext: Logic.canNext(window.currentIndex, historyModel.count)
            fullScreen: window.visibility === Window.FullScreen
            handlePrevious: window.playPrevious
            handleNext: window.playNext
            handleTool: function (index) { window.showTool(index, "") }
            handleSmall: function () { window.setSmall(!window.isSmall) }
            handleFullScreen: function () { window.setFullScreen(true) }
            handleNoFile: window.notifyNoFile
        }

        HistoryPanel {
            id: historyPanel
            objectName: "historyPanel"
            anchors.right: parent.right
            anchors.top: titleBar.bottom
            anchors.bottom: parent.bottom
            z: 2
            open: window.showList
            model: historyModel
            currentIndex: window.currentIndex
            playingUrl: player._fileUrl
            playingDuration: player.duration
            handleOpen: function (u) { window.openFile(u) }
            handleDelete: function (u, index) { player.deleteVideoByUrl(u) }
            handleAdd: window.openFileDialog
            handleClear: function () {
                if (historyModel.count > 0)
                    CMessageBox.showMessage(qsTr("Are you sure you want to delete this video?"),
                                            function () { SqlHelper.clearHistory() })
            }
        }

        // The tab that slides the play list open, shown while the pointer moves over the video.
        Rectangle {
            id: expandTab
            objectName: "expandTab"
            readonly property bool wanted: tabArea.containsMouse || window.moveFlag
            anchors.right: historyPanel.left
            anchors.verticalCenter: historyPanel.verticalCenter
            z: 2
            width: wanted ? 36 : 1
            height: 100
            visible: width > 1
            color: tabArea.containsMouse ? Theme.hover : Theme.panel
            radius: Theme.radiusMain
            Behavior on width { NumberAnimation { duration: 180 } }

            Image {
                anchors.centerIn: parent
                width: 26; height: 26
                source: window.showList ? "../Resources/control/right.png" : "../Resources/control/left.png"
            }
            MouseArea {
                id: tabArea
                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: window.showList = !window.showList
            }
        }

        CNotification {
            id: notification
            objectName: "notification"
            anchors.right: parent.right
            anchors.rightMargin: 20
            anchors.bottom: window.isFullParent ? parent.bottom : playerArea.bottom
            anchors.bottomMargin: 14
            z: 200
        }

        // Mini-player: the video moves the window; a row of buttons shows while hovered.
        Item {
            anchors.fill: parent
            visible: window.isSmall
            z: 101

            MouseArea {
                id: miniArea
                anchors.fill: parent
                hoverEnabled: true
                property point grab
                onPressed: grab = Qt.point(mouse.x, mouse.y)
                onPositionChanged: {
                    if (pressed) {
                        window.x += mouse.x - grab.x
                        window.y += mouse.y - grab.y
                    }
                }
            }
            Row {
                anchors.centerIn: parent
                spacing: 15
                visible: miniArea.containsMouse || miniPlay.hovered || miniBig.hovered || miniClose.hovered
                CButton {
                    id: miniPlay
                    width: 32; height: 32
                    imageSource: player.pause ? "../Resources/control/play" : "../Resources/control/pause"
                    onClicked: window.togglePause()
                }
                CButton {
                    id: miniBig
                    objectName: "bigButton"
                    width: 32; height: 32
                    imageSource: "../Resources/control/big"
                    onClicked: window.setSmall(false)
                }
            }
            CButton {
                id: miniClose
                anchors.top: parent.top
                anchors.topMargin: 23
                anchors.right: parent.right
                anchors.rightMargin: 27
                width: 14; height: 14
                visible: miniArea.containsMouse || miniPlay.hovered || miniBig.hovered || hovered
                imageSource: "../Resources/control/close"
                onClicked: window.close()
            }
        }
    }

    // ---- resizing -----------------------------------------------------------------------------

    Repeater {
        // Strips along the four edges, each as deep as the resize zone.
        model: ["left", "right", "top", "bottom"]
        MouseArea {
            readonly property int zone: window.bw + 10
            x: modelData === "right" ? window.width - zone : 0
            y: modelData === "bottom" ? window.height - zone : 0
            width: modelData === "left" || modelData === "right" ? zone : window.width
            height: modelData === "top" || modelData === "bottom" ? zone : window.height
            z: 1000
            enabled: !window.fillsWindow
            hoverEnabled: true
            property int edges: 0
            cursorShape: Logic.resizeCursor(edges)
            function edgesAt(mx, my) {
                return Logic.resizeEdges(x + mx, y + my, window.width, window.height, zone)
            }
            onPositionChanged: edges = edgesAt(mouse.x, mouse.y)
            onPressed: window.startSystemResize(edgesAt(mouse.x, mouse.y))
        }
    }
}
