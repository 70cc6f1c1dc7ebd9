import QtQuick 2.15

// The outlined "Cancel" of the light dialogs.
Rectangle {
    id: root

    property string text: qsTr("Cancel")
    property bool hovered: mouseArea.containsMouse
    property bool pressed: mouseArea.held

    signal clicked()

    implicitWidth: Math.max(56, label.implicitWidth + 24)
    implicitHeight: 26
    radius: Theme.radiusTool
    color: Theme.transparent
    border.width: 1
    border.color: hovered ? Theme.accent : Theme.cancelBorder

    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        font.pixelSize: Theme.fontSmall
        color: root.hovered ? Theme.accent : Theme.cancelText
    }

    CMouseArea {
        id: mouseArea
        anchors.fill: parent
        onClicked: root.clicked()
    }
}
