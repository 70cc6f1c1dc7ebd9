import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Dialogs 1.3
import CustomUtils 1.0
import "ToolLogic.js" as Logic

// Re-encodes one video to a smaller file in the chosen folder. The level rows only move
// their check mark: every export asks the service for level 0, which is how this tool has
// always behaved and is kept so.
Item {
    id: root

    property int level: 0
    property string currentFileUrl: ""
    property bool exportEnabled: currentFileUrl.length > 0
    property var parentId: null

    property alias outputName: nameField.text
    property alias saveDirectory: directoryField.text

    readonly property var compressModel: [
        { title: qsTr("Low"), description: qsTr("Large file size, high quality") },
        { title: qsTr("Medium"), description: qsTr("Medium file size, medium quality") },
        { title: qsTr("High"), description: qsTr("Small file size, lower quality") }
    ]

    function openFiles(urls) {
        if (urls.length === 0) {
            CMessageBox.showMessage(qsTr("No files selected"))
            return
        }
        openFile(urls[0])
    }

    function openFile(url) {
        currentFileUrl = url
        var path = FileHelper.getFilePath(url)
        nameField.setText(Logic.exportName(FileHelper.getFileBaseName(path), FileHelper.getFileSuffix(path)))
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
        CommonTool.compressVideoAsync(FileHelper.getFilePath(currentFileUrl), output, parentId.currentIndex)
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

    CCheckButtonGroup {
        id: levelGroup
        handleCheckedChanged: function (index) { root.level = index }
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

        ToolHeading { text: qsTr("Compression Settings") }

        Repeater {
            model: root.compressModel
            delegate: CCheckButton {
                Layout.fillWidth: true
                Layout.preferredHeight: 32
                imageSource: "../Resources/edit/check"
                imageSize: 14
                textColor: Theme.textPrimary
                text: modelData.title + "  " + modelData.description
                checked: index === 0
                buttonGroup: levelGroup
                background: Rectangle {
                    radius: Theme.radiusTool
                    color: parent.checked ? Theme.optionChecked : Theme.optionUnchecked
                }
            }
        }

        ToolHeading { text: qsTr("Output File Name") }

        CTextField {
            id: nameField
            Layout.fillWidth: true
            placeholderText: qsTr("Enter the name of the output file")
            rightPadding: 32

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
