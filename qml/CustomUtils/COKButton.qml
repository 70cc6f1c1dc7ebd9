import QtQuick 2.15

// The primary action of a screen. While not `enable` it ignores the mouse entirely.
Rectangle {
    id: root

    property string text: ""
    property bool enable: true
    property bool hovered: mouseArea.containsMouse
    property bool pressed: mouseArea.held

    signal clicked()

    radius: Theme.radiusTool
    color: !enable ? Theme.okButtonDisabled : (hovered || pressed ? Theme.okButtonActive : Theme.accent)
    implicitWidth: Math.max(72, label.implicitWidth + 32)
    implicitHeight: 30

    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        font.pixelSize: Theme.fontBody
        color: root.enable ? Theme.textPrimary : Theme.okButtonDisabledText
    }

    CMouseArea {
        id: mouseArea
        anchors.fill: parent
        enabled: root.enable
        onClicked: root.clicked()
    }
}
