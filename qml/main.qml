import QtQuick 2.15
import QtQuick.Window 2.15

// Stand-in main window until the full player window exists.
Window {
    id: root
    width: 1280
    height: 760
    visible: true
    color: "#1c1c1e"
    title: qsTr("Player")

    Text {
        anchors.centerIn: parent
        color: "#8e8e93"
        font.pixelSize: 18
        text: qsTr("Player")
    }
}
