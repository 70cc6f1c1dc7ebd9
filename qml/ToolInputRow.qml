import QtQuick 2.15
import QtQuick.Layouts 1.15
import CustomUtils 1.0

// The input file row of the form tools: what is typed replaces the input, "Select" asks the
// owner to offer a file dialog.
Rectangle {
    id: root

    property string text: ""
    property var handleEdited: null
    property var handleSelect: null

    implicitHeight: 44
    color: Theme.inputRow

    RowLayout {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 6

        Image {
            Layout.preferredWidth: 20
            Layout.preferredHeight: 20
            source: "../Resources/edit/icon.png"
        }
        CTextField {
            id: field
            Layout.fillWidth: true
            borderWidth: 0
            backgroundColor: Theme.transparent
            font.pixelSize: Theme.fontBody
            placeholderText: qsTr("Select a path to save the compressed file")
            text: root.text
            onValueEdited: {
                if (typeof root.handleEdited === "function")
                    root.handleEdited(text)
            }
        }
        CTextButton {
            Layout.preferredWidth: 72
            Layout.preferredHeight: 28
            text: qsTr("Select")
            onClicked: {
                if (typeof root.handleSelect === "function")
                    root.handleSelect()
            }
        }
    }
}
