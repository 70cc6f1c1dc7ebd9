pragma Singleton
import QtQuick 2.15

// The file types the program offers to open. The choices are not stored: every opening
// builds the card afresh with all formats checked, and both buttons only close.
CDialogWindow {
    id: dialog

    function formatButtons() {
        return card.item ? card.item.formatButtons() : []
    }

    title: qsTr("Filerelevance")
    heading: qsTr("Relevance")

    onVisibleChanged: {
        if (visible) {
            card.active = false
            card.active = true
        }
    }

    // In its own file for the reason given in AboutUsDialog.qml.
    Loader {
        id: card
        anchors.fill: parent
        source: "RelevanceCard.qml"
    }

    Row {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 20
        spacing: 10

        CCancelButton {
            objectName: "cancelButton"
            width: 56
            height: 26
            onClicked: dialog.close()
        }
        COKButton {
            objectName: "okButton"
            width: 56
            height: 26
            text: qsTr("OK")
            onClicked: dialog.close()
        }
    }
}
