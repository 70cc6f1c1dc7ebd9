import QtQuick 2.15
import CustomUtils 1.0

// The About card: icon, name, version and contacts from the configuration file, and the two
// documents on the web.
Item {
    property string privacyPolicyUrl: ""
    property string userAgreementUrl: ""

    Column {
        anchors.top: parent.top
        anchors.topMargin: 40
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 50
        anchors.rightMargin: 50
        spacing: 14

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 52
            height: 52
            source: ConfigHelper.appIcon()
            fillMode: Image.PreserveAspectFit
            mipmap: true
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: ConfigHelper.appName()
            font.pixelSize: Theme.fontHeading
            font.bold: true
            color: Theme.dialogText
            elide: Text.ElideRight
        }
        Item { width: 1; height: 6 }
        Repeater {
            model: [
                { label: qsTr("Version"), value: "7.1.1.6" },
                { label: qsTr("Developers"), value: ConfigHelper.developer() },
                { label: qsTr("Customer Service Hotline"), value: ConfigHelper.phone() }
            ]
            Row {
                width: parent.width
                spacing: 10
                // Long labels shrink a little rather than break inside a word.
                Text {
                    width: 60
                    text: modelData.label
                    font.pixelSize: Theme.fontSmall
                    font.weight: Font.Medium
                    color: Theme.dialogText
                    wrapMode: Text.WordWrap
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: 9
                }
                Text {
                    width: parent.width - 70
                    text: modelData.value
                    font.pixelSize: Theme.fontSmall
                    color: Theme.dialogValue
                    wrapMode: Text.Wrap
                }
            }
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 30
        spacing: 30

        Repeater {
            model: [
                { text: qsTr("Privacy Policy"), url: privacyPolicyUrl },
                { text: qsTr("User Agreement"), url: userAgreementUrl }
            ]
            Text {
                text: modelData.text
                font.pixelSize: Theme.fontSmall
                font.underline: true
                color: Theme.dialogValue
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: Qt.openUrlExternally(modelData.url)
                }
            }
        }
    }
}
