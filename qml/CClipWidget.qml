import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Dialogs 1.3
import CustomUtils 1.0
import "ToolLogic.js" as Logic

// Cuts one time range out of one video, without re-encoding; the output keeps the input's
// container. The preview follows the handle being dragged.
Item {
    id: root

    property url currentFileUrl: ""
    property real startTime: 0
    property real endTime: 0
    property real duration: 0
    property bool exportEnabled: currentFileUrl.toString().length > 0
    property var parentId: null

    function openFiles(urls) {
        if (urls.length === 0) {
            CMessageBox.showMessage(qsTr("No files selected"))
            return
        }
        openFile(urls[0])
    }

    function openFile(url) {
        currentFileUrl = url
        Qt.callLater(showFrame, 0)
        duration = CommonTool.getVideoDurationFromUrl(url)
        startTime = 0
        rangeSlider.from = 0
        rangeSlider.minValue = 0
        endTime = duration
        rangeSlider.to = duration
        rangeSlider.maxValue = duration
    }

    function showFrame(seconds) {
        preview.loadThumbnailFromUrl(currentFileUrl.toString(), seconds)
        preview.visible = true
    }

    // A failed check leaves the window busy until the user stops it; only a cancelled save
    // dialog returns it to idle.
    function handleExport() {
        if (!exportEnabled) {
            CMessageBox.showMessage(qsTr("Please select a file to export"))
            return
        }
        var suffix = FileHelper.getFileSuffix(FileHelper.getFilePath(currentFileUrl))
        if (suffix.length === 0) {
            CMessageBox.showMessage(qsTr("The file format is not supported!"))
            return
        }
        saveDialog.defaultSuffix = suffix
        saveDialog.nameFilters = [qsTr("Video files") + " (*." + suffix + ")"]
        saveDialog.open()
    }

    function exportTo(url) {
        var output = Logic.withDefaultSuffix(FileHelper.getFilePath(url, false), saveDialog.defaultSuffix)
        CommonTool.cropVideoAsync(FileHelper.getFilePath(currentFileUrl), output, startTime, endTime)
        parentId.jobStarted()
        parentId.handleOpenFile = function () { FileHelper.openDirectoryByFile(output) }
    }

    function cancelExport() {
        parentId.resetLoading()
    }

    FileDialog {
        id: saveDialog
        title: qsTr("Save File to ...")
        selectExisting: false
        selectMultiple: false
        folder: FileHelper.isExists(shortcuts.desktop) ? shortcuts.desktop : shortcuts.home
        onAccepted: root.exportTo(fileUrl)
        onRejected: root.cancelExport()
    }

    CFileDialog {
        id: fileDialog
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

            Component.onCompleted: preview.setMaxSize(width, height)
            onWidthChanged: preview.setMaxSize(width, height)
            onHeightChanged: preview.setMaxSize(width, height)

            YUVPaintedItem {
                id: preview
                anchors.centerIn: parent
                visible: false
            }

            ToolEmptyState {
                anchors.centerIn: parent
                width: parent.width - 40
                visible: !root.exportEnabled
            }

            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: fileDialog.open()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.preferredHeight: 40
            spacing: 10

            Text {
                text: CommonTool.formatTime(root.startTime)
                color: Theme.textPrimary
                font.weight: Font.Medium
            }
            CRagleSlider {
                id: rangeSlider
                Layout.fillWidth: true
                Layout.preferredHeight: 40
                handleMinValueChanged: function (value) {
                    root.showFrame(value)
                    root.startTime = value
                }
                handleMaxValueChanged: function (value) {
                    root.showFrame(value)
                    root.endTime = value
                }
            }
            Text {
                text: CommonTool.formatTime(root.endTime)
                color: Theme.textPrimary
                font.weight: Font.Medium
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.preferredHeight: 40

            Repeater {
                model: [
                    { label: qsTr("start"), seconds: root.startTime },
                    { label: qsTr("duration"), seconds: root.endTime - root.startTime },
                    { label: qsTr("end"), seconds: root.endTime }
                ]
                delegate: Item {
                    Layout.fillWidth: true
                    Layout.preferredHeight: 28

                    Rectangle {
                        anchors.centerIn: parent
                        width: 118
                        height: 28
                        radius: Theme.radiusTool
                        color: Theme.transparent
                        border.width: 1
                        border.color: Theme.outlineBox

                        Row {
                            anchors.centerIn: parent
                            spacing: 8
                            Text {
                                anchors.verticalCenter: parent.verticalCenter
                                text: modelData.label
                                font.pixelSize: Theme.fontSmall
                                color: Theme.textPrimary
                            }
                            Rectangle {
                                anchors.verticalCenter: parent.verticalCenter
                                width: 1
                                height: 12
                                color: Theme.outlineBox
                            }
                            Text {
                                anchors.verticalCenter: parent.verticalCenter
                                text: CommonTool.formatTime(modelData.seconds)
                                font.pixelSize: Theme.fontSmall
                                color: Theme.textPrimary
                            }
                        }
                    }
                }
            }
        }
    }
}
