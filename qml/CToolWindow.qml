import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// The second top-level window: the four media tools as pages, one "Export" button and the
// progress of the one job the window runs at a time. Closing only hides it; the main window
// shows the same object again.
//
// A page offers openFiles(urls), handleExport(), exportEnabled and parentId (set to this
// window), through which it hands over what to do after a successful export, reports the
// job it started (jobStarted) or gives up the running state when its own save dialog is
// cancelled.
Window {
    id: root

    property string iconSource: ""
    property int currentIndex: 0
    property bool isRunning: false
    property real value: 0
    property real to: 100
    property var handleOpenFile: null
    readonly property var objects: [compressPage, clipPage, mergePage, conversionPage]
    readonly property var currentPage: objects[currentIndex]
    // Jobs started whose finish has not come yet. Stop frees the window at once, but a stopped
    // job ends only at its next look at the shared cancel flag; a new job started before that
    // would clear the flag and let the old one run on, and the old one's finish would end the
    // new one's display.
    property int pendingJobs: 0
    readonly property bool exportAllowed: !isRunning && pendingJobs === 0 && currentPage.exportEnabled
    readonly property alias progressVisible: progress.visible
    // A page refused to start without a word; the next opening of the window clears it.
    property bool stalled: false

    width: 560
    height: 600
    flags: Qt.Window | Qt.FramelessWindowHint
    color: Theme.transparent
    title: qsTr("Video tools")

    function showIndex(index) {
        currentIndex = index
    }

    function openFile(url) {
        currentPage.openFiles([url])
    }

    function resetLoading() {
        progress.visible = false
        progress.loading = false
        isRunning = false
    }

    function startExport() {
        isRunning = true
        if (currentPage.handleExport() === false) {
            stalled = true
            return
        }
        progress.loading = true
        progress.visible = true
    }

    function jobStarted() {
        ++pendingJobs
    }

    function stop() {
        if (!isRunning)
            return
        CommonTool.cancelVideoOperation()
        isRunning = false
        progress.visible = false
    }

    onVisibleChanged: {
        if (visible && stalled) {
            stalled = false
            resetLoading()
        }
    }

    Connections {
        target: CommonTool
        function onVideoCompressionFrameTotal(total) {
            if (!root.isRunning)
                return
            root.to = total
            root.value = 0
            progress.loading = false
            progress.visible = total > 0
        }
        function onVideoCompressionProgress(progressValue) {
            root.value = progressValue
        }
        function onVideoCompressionFinished(success) {
            root.pendingJobs = Math.max(0, root.pendingJobs - 1)
            progress.visible = false
            progress.loading = false
            root.isRunning = false
            console.info("export finished:", success)
            CMessageBox.showMessage(success ? qsTr("Export success") : qsTr("Export failed"))
            if (success && typeof root.handleOpenFile === "function")
                root.handleOpenFile()
            root.handleOpenFile = null
        }
    }

    Rectangle {
        id: body
        anchors.centerIn: parent
        width: 520
        height: 560
        radius: Theme.radiusTool
        color: Theme.toolBody

        DropArea {
            anchors.fill: parent
            onDropped: {
                if (drop.hasUrls)
                    root.currentPage.openFiles(drop.urls)
            }
        }

        MouseArea {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            height: 40
            onPressed: root.startSystemMove()
        }

        Item {
            id: titleRow
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.leftMargin: 14
            anchors.rightMargin: 14
            height: 40

            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8
                Image {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 22
                    height: 22
                    source: root.iconSource
                    visible: root.iconSource.length > 0
                }
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: root.title
                    font.pixelSize: Theme.fontSmall
                    font.weight: Font.Medium
                    color: Theme.textPrimary
                }
            }

            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 12
                CButton {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 22
                    height: 22
                    imageSource: "../Resources/titleBar/min"
                    onClicked: root.showMinimized()
                }
                CButton {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 18
                    height: 18
                    imageSource: "../Resources/titleBar/close"
                    onClicked: root.close()
                }
            }
        }

        Item {
            id: pages
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: titleRow.bottom
            anchors.bottom: exportButton.top
            anchors.leftMargin: 25
            anchors.rightMargin: 25
            anchors.bottomMargin: 14

            CCompressWidget {
                id: compressPage
                anchors.fill: parent
                parentId: root
                visible: root.currentIndex === 0
            }
            CClipWidget {
                id: clipPage
                anchors.fill: parent
                parentId: root
                visible: root.currentIndex === 1
            }
            CPuzzleWidget {
                id: mergePage
                anchors.fill: parent
                parentId: root
                visible: root.currentIndex === 2
            }
            CConversionWidget {
                id: conversionPage
                anchors.fill: parent
                parentId: root
                visible: root.currentIndex === 3
            }
        }

        COKButton {
            id: exportButton
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.rightMargin: 25
            anchors.bottomMargin: 30
            width: 88
            height: 28
            radius: Theme.radiusTool
            text: qsTr("Export")
            enable: root.exportAllowed
            onClicked: root.startExport()
        }

        WaveProgress {
            id: progress
            anchors.centerIn: parent
            radius: 100
            radiusMargin: 4
            waveColor: Theme.toolProgressWave
            sliderVisible: false
            to: root.to
            value: root.value
            visible: false
            handleStop: function () { root.stop() }
        }
    }
}
