pragma Singleton
import QtQuick 2.15

// Who makes the program and how to reach them.
CDialogWindow {
    id: dialog

    property string privacyPolicyUrl: "https://www.example.com/vidora/privacy"
    property string userAgreementUrl: "https://www.example.com/vidora/terms"

    title: qsTr("About us")
    heading: qsTr("About us")

    // The card lives in its own file, loaded when the dialog is made: it reads the
    // configuration through this module's native half, and a singleton of the module cannot
    // import the module itself.
    Loader {
        anchors.fill: parent
        source: "AboutUsCard.qml"
        onLoaded: {
            item.privacyPolicyUrl = Qt.binding(function () { return dialog.privacyPolicyUrl })
            item.userAgreementUrl = Qt.binding(function () { return dialog.userAgreementUrl })
        }
    }
}
