import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Controls 2.15
import QtQuick.Dialogs 1.3
import CustomUtils 1.0
import "ToolLogic.js" as Logic

// Joins several videos end to end, in the order they were added. Cards can be removed but
// not reordered.
Item {
    id: root

    property int currentVideoIndex: 0
    property bool exportEnabled: videoModel.count > 1
    property var parentId: null
    readonly property alias videoModel: videoModel

    function openFile(url) {
        videoModel.append({ path: String(url) })
        currentVideoIndex = videoModel.count - 1
    }

    function openFiles(urls) {
        for (var i = 0; i < urls.length; ++i)
            videoModel.append({ path: String(urls[i]) })
        if (urls.length > 0)
            currentVideoIndex = videoModel.count - 1
    }

    function removeVideo(index) {
        videoModel.remove(index)
        currentVideoIndex = Logic.indexAfterRemoval(currentVideoIndex, videoModel.count)
    }

    function paths() {
        var list = []
        for (var i = 0; i < videoModel.count; ++i)
            list.push(videoModel.get(i).path)
        return list
    }

    // A failed check ends the export without a word and leaves the window busy: the page
    // returns false and the window keeps that state until it is next opened.
    function handleExport() {
        var problem = Logic.mergeProblem(paths(), function (path) {
            return FileHelper.fileExists(FileHelper.getFilePath(path))
        })
        if (problem.length > 0) {
            console.warn("merge refused:", problem)
            return false
        }
        saveDialog.open()
        return true
    }

    function performMerge(outputPath) {
        if (String(outputPath).length === 0) {
            console.warn("merge refused: no output path")
            return
        }
        var inputs = paths().map(function (path) { return FileHelper.getFilePath(path) })
        // The merge keeps a cancel left over from an earlier stop; no job runs now (the
        // window allows one at a time), so that cancel is stale.
        CommonTool.resetCancelState()
        CommonTool.mergeVideoAsync(inputs, FileHelper.getFilePath(outputPath, false))
        parentId.jobStarted()
    }

    function exportTo(url) {
        var output = Logic.withDefaultSuffix(FileHelper.getFilePath(url, false), saveDialog.defaultSuffix)
        performMerge(output)
        parentId.handleOpenFile = function () { FileHelper.openDirectoryByFile(output) }
    }

    function cancelExport() {
        parentId.resetLoading()
    }

    onCurrentVideoIndexChanged: {
        if (currentVideoIndex >= videoModel.count)
            return
        var url = videoModel.get(currentVideoIndex).path
        preview.loadThumbnailFromUrl(url, 0)
        scrubSlider.to = CommonTool.getVideoDurationFromUrl(url)
        scrubSlider.value = 0
    }

    Connections {
        target: ImageProvider
        function onImageLoaded(index, filePath) {
            if (!Logic.isStripImage(filePath))
                return
            var card = cards.itemAt(index)
            if (card)
                card.imageSource = "image://ImageProvider/" + filePath
        }
    }

    FileDialog {
        id: saveDialog
        title: "保存文件到..."
        selectExisting: false
        selectMultiple: false
        folder: FileHelper.isExists(shortcuts.desktop) ? shortcuts.desktop : shortcuts.home
        nameFilters: ConfigHelper.getSupportedVideoFormats()
        defaultSuffix: "mp4"
        onAccepted: root.exportTo(fileUrl)
        onRejected: root.cancelExport()
    }

    CFileDialog {
        id: fileDialog
        title: qsTr("Select Video Files")
        handleSelected: function (urls) { root.openFiles(urls) }
    }

    DropArea {
        anchors.fill: parent
        onDropped: {
            if (drop.hasUrls && drop.urls.length > 0)
                root.openFile(drop.urls[0])
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 10

        Rectangle {
            id: previewArea
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: Theme.previewArea
            radius: Theme.radiusMain
            clip: true

            Component.onCompleted: preview.setMaxSize(width - 10, height - 10)
            onWidthChanged: preview.setMaxSize(width - 10, height - 10)
            onHeightChanged: preview.setMaxSize(width - 10, height - 10)

            YUVPaintedItem {
                id: preview
                anchors.centerIn: parent
                visible: videoModel.count > 0
            }

            ToolEmptyState {
                anchors.centerIn: parent
                width: parent.width - 40
                pictureHeight: Math.min(200, Math.max(0, parent.height - 130))
                visible: videoModel.count === 0
            }

            MouseArea {
                anchors.fill: parent
                enabled: videoModel.count === 0
                cursorShape: Qt.PointingHandCursor
                onClicked: fileDialog.open()
            }
        }

        CSlider {
            id: scrubSlider
            Layout.fillWidth: true
            Layout.preferredHeight: 40
            stepSize: 1
            from: 0
            to: 0
            onMoved: {
                if (root.currentVideoIndex < videoModel.count)
                    preview.loadThumbnailFromUrl(videoModel.get(root.currentVideoIndex).path, value)
            }
        }

        Flickable {
            id: strip
            Layout.fillWidth: true
            Layout.preferredHeight: 100
            contentWidth: cardRow.width
            contentHeight: height
            clip: true
            interactive: false
            boundsBehavior: Flickable.StopAtBounds

            // Wheel turns add up from where the strip is heading, not from where the animation is.
            property real scrollTarget: 0

            Behavior on contentX {
                NumberAnimation { duration: 200; easing.type: Easing.OutQuad }
            }

            ScrollBar.horizontal: ScrollBar {
                id: stripBar
                height: 12
                policy: ScrollBar.AsNeeded
                contentItem: Rectangle {
                    implicitHeight: 6
                    radius: 3
                    color: stripBar.pressed ? Theme.stripScrollHandlePressed : Theme.stripScrollHandle
                    opacity: stripBar.active ? 0.8 : 0.4
                    Behavior on opacity { NumberAnimation { duration: 300 } }
                }
                background: Rectangle {
                    color: Theme.stripScrollTrack
                }
            }

            Row {
                id: cardRow
                objectName: "cardRow"
                spacing: 12

                Repeater {
                    id: cards
                    model: videoModel
                    delegate: MergeCard {
                        number: index + 1
                        current: index === root.currentVideoIndex
                        handleSelect: function () { root.currentVideoIndex = index }
                        handleRemove: function () { root.removeVideo(index) }
                        Component.onCompleted: ImageProvider.loadThumbnailFromUrl(index, path, 0, "CImageListView")
                    }
                }

                Rectangle {
                    width: 130
                    height: 88
                    radius: Theme.radiusTool
                    color: Theme.transparent
                    border.width: 1
                    border.color: Theme.accent

                    Column {
                        anchors.centerIn: parent
                        spacing: 6
                        Image {
                            anchors.horizontalCenter: parent.horizontalCenter
                            width: 24
                            height: 24
                            source: "../Resources/edit/add.png"
                        }
                        Text {
                            text: qsTr("Select a video")
                            font.pixelSize: Theme.fontSmall
                            color: Theme.textPrimary
                        }
                    }

                    MouseArea {
                        anchors.fill: parent
                        cursorShape: Qt.PointingHandCursor
                        onClicked: fileDialog.open()
                    }
                }
            }

            MouseArea {
                anchors.fill: parent
                acceptedButtons: Qt.NoButton
                onWheel: {
                    var delta = wheel.angleDelta.y !== 0 ? wheel.angleDelta.y : wheel.angleDelta.x
                    strip.scrollTarget = Logic.wheelTarget(strip.scrollTarget, delta, strip.contentWidth, strip.width)
                    strip.contentX = strip.scrollTarget
                }
            }
        }
    }

    ListModel {
        id: videoModel
    }
}
