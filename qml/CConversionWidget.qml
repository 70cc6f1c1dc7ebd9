import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Dialogs 1.3
import CustomUtils 1.0
import "ToolLogic.js" as Logic

// Re-encodes one video into another container with the chosen codecs, size, bit rates and
// frame rate. The validation texts are the compress page's on purpose.
Item {
    id: root

    property bool isVideo: true
    property bool resolutionMutexed: true
    property string currentFileUrl: ""
    property string suffix: "mp4"
    property real scale: 1
    property bool exportEnabled: currentFileUrl.length > 0
    property var parentId: null

    property alias outputName: nameField.text
    property alias saveDirectory: directoryField.text

    // Rows change in place, so the combo keeps its choice while the custom fields are typed in.
    property ListModel resolutionModel: ListModel {}
    readonly property var audioFormats: ConfigHelper.getSupportedAudioFormats()
    readonly property bool customResolution: resolutionBox.currentIndex === Logic.customResolutionRow

    Component.onCompleted: {
        resolutionModel.append(Logic.resolutions(qsTr("original size"), qsTr("Custom")))
        resolutionBox.currentIndex = 0
    }

    onSuffixChanged: nameField.setText(Logic.replaceSuffix(outputName, suffix))

    function openFiles(urls) {
        if (urls.length === 0) {
            CMessageBox.showMessage(qsTr("No files selected"))
            return
        }
        openFile(urls[0])
    }

    function openFile(url) {
        currentFileUrl = url
        var info = CommonTool.getVideoInfoFromUrl(url)
        setResolutionRow(0, info.width, info.height)
        widthField.setText(String(info.width))
        heightField.setText(String(info.height))
        scale = info.width / info.height
        nameField.setText(Logic.exportName(FileHelper.getFileBaseName(FileHelper.getFilePath(url)), suffix))
    }

    function setResolutionRow(row, width, height) {
        resolutionModel.setProperty(row, "width", width)
        resolutionModel.setProperty(row, "height", height)
    }

    function editCustomWidth(text) {
        var width = Number(text)
        var height = resolutionModel.get(Logic.customResolutionRow).height
        if (resolutionMutexed) {
            height = Logic.lockedHeight(width, scale)
            heightField.setText(String(height))
        }
        setResolutionRow(Logic.customResolutionRow, width, height)
    }

    function editCustomHeight(text) {
        var height = Number(text)
        var width = resolutionModel.get(Logic.customResolutionRow).width
        if (resolutionMutexed) {
            width = Logic.lockedWidth(height, scale)
            widthField.setText(String(width))
        }
        setResolutionRow(Logic.customResolutionRow, width, height)
    }

    function toggleLock() {
        resolutionMutexed = !resolutionMutexed
        if (resolutionMutexed)
            scale = Number(widthField.text) / Number(heightField.text)
    }

    function videoInfoMap() {
        return Logic.settingsMap(isVideo, Logic.codecs[codecBox.currentIndex], Logic.bitrates[bitrateBox.currentIndex],
                                 Logic.framerates[fpsBox.currentIndex], resolutionModel.get(resolutionBox.currentIndex),
                                 audioBox.currentText, Logic.audioBitrates[audioBitrateBox.currentIndex])
    }

    function formMessage(problem) {
        if (problem === "input")
            return qsTr("Please select a file to compress")
        if (problem === "name")
            return qsTr("Please enter an output file name")
        return qsTr("Please select a directory to save the compressed file")
    }

    // A failed check leaves the window busy until the user stops it.
    function handleExport() {
        var problem = Logic.formProblem(currentFileUrl, outputName, saveDirectory)
        if (problem.length > 0) {
            CMessageBox.showMessage(formMessage(problem))
            return
        }
        var output = Logic.outputPath(saveDirectory, outputName)
        CommonTool.convertVideoFormatAsync(FileHelper.getFilePath(currentFileUrl), output, videoInfoMap())
        parentId.jobStarted()
        parentId.handleOpenFile = function () { FileHelper.openDirectoryByFile(output) }
    }

    function chooseDirectory(url) {
        var path = FileHelper.getFilePath(url)
        directoryField.setText(path)
        ConfigHelper.setDefaultDir(path)
    }

    CFileDialog {
        id: fileDialog
        handleSelected: function (urls) { root.openFiles(urls) }
    }

    FileDialog {
        id: folderDialog
        title: qsTr("Select a directory to save the compressed file")
        selectFolder: true
        folder: root.saveDirectory.length > 0 ? FileHelper.getUrlByPath(root.saveDirectory) : shortcuts.home
        onAccepted: root.chooseDirectory(fileUrl)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 10

        ToolInputRow {
            Layout.fillWidth: true
            text: root.currentFileUrl
            handleEdited: function (text) { root.currentFileUrl = text }
            handleSelect: function () { fileDialog.open() }
        }

        ToolHeading { text: qsTr("Output") }

        CCheckButton {
            Layout.preferredWidth: 200
            Layout.preferredHeight: 40
            imageSource: "../Resources/edit/check"
            imageSize: 14
            textColor: Theme.textPrimary
            text: qsTr("Video")
            checked: true
            handleChecked: function () {}
            background: Rectangle {
                radius: Theme.radiusTool
                color: parent.checked ? Theme.optionChecked : Theme.optionUnchecked
            }

            CComboBox {
                id: formatBox
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                width: 70
                height: 28
                model: ConfigHelper.getSupportedVideoFormats()
                onCurrentTextChanged: {
                    if (currentText.length > 0)
                        root.suffix = currentText
                }
            }
        }

        RowLayout {
            spacing: 10
            ToolOption { id: codecBox; objectName: "codecBox"; title: qsTr("Video encode"); model: Logic.codecs }
            ToolOption { id: bitrateBox; objectName: "bitrateBox"; title: qsTr("Video bitrate"); model: Logic.bitrates }
            ToolOption { id: fpsBox; objectName: "fpsBox"; title: qsTr("Video framerate"); model: Logic.framerates }
            ToolOption { id: resolutionBox; objectName: "resolutionBox"; title: qsTr("Resolution"); model: root.resolutionModel }
        }

        ToolHeading { text: qsTr("Custom") }

        Row {
            Layout.preferredHeight: 24
            spacing: 6
            CTextField {
                id: widthField
                objectName: "widthField"
                width: 54
                height: 24
                topPadding: 2
                bottomPadding: 2
                leftPadding: 6
                rightPadding: 6
                enabled: root.customResolution
                color: enabled ? Theme.textPrimary : Theme.fieldDisabledText
                validator: IntValidator { bottom: 1; top: 16384 }
                Component.onCompleted: setText("1920")
                onValueEdited: root.editCustomWidth(text)
            }
            CButton {
                width: 24
                height: 24
                enabled: root.customResolution
                imageSource: enabled ? "../Resources/edit/lock" : "../Resources/edit/lock_disabled.png"
                onClicked: root.toggleLock()
            }
            CTextField {
                id: heightField
                objectName: "heightField"
                width: 54
                height: 24
                topPadding: 2
                bottomPadding: 2
                leftPadding: 6
                rightPadding: 6
                enabled: root.customResolution
                color: enabled ? Theme.textPrimary : Theme.fieldDisabledText
                validator: IntValidator { bottom: 1; top: 16384 }
                Component.onCompleted: setText("1080")
                onValueEdited: root.editCustomHeight(text)
            }
        }

        RowLayout {
            spacing: 10
            ToolOption { id: audioBox; objectName: "audioBox"; title: qsTr("Audio encode"); model: root.audioFormats; textRole: "" }
            ToolOption { id: audioBitrateBox; objectName: "audioBitrateBox"; title: qsTr("Audio bitrate"); model: Logic.audioBitrates }
        }

        ToolHeading { text: qsTr("Output File Name") }

        CTextField {
            id: nameField
            Layout.fillWidth: true
            placeholderText: qsTr("Enter the name of the output file")
            rightPadding: 32
            Component.onCompleted: setText("compressed_video.mp4")

            CButton {
                anchors.right: parent.right
                anchors.rightMargin: 5
                anchors.verticalCenter: parent.verticalCenter
                width: 20
                height: 20
                imageSource: "../Resources/titleBar/closeOne"
                visible: nameField.text.length > 0
                onClicked: nameField.setText("")
            }
        }

        ToolHeading { text: qsTr("Save Directory") }

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            CTextField {
                id: directoryField
                Layout.fillWidth: true
                placeholderText: qsTr("Select a directory to save the compressed file")
                Component.onCompleted: setText(ConfigHelper.getDefaultDir())
            }
            CTextButton {
                Layout.preferredWidth: 72
                Layout.preferredHeight: 28
                text: qsTr("Change")
                onClicked: folderDialog.open()
            }
        }

        Item { Layout.fillHeight: true }
    }
}
