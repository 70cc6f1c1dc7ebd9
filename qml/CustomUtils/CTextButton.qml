import QtQuick 2.15

// A small secondary button with a text label.
Rectangle {
    id: root

    property string text: ""
    property string toolTip: ""
    property bool hovered: mouseArea.containsMouse
    property bool pressed: mouseArea.held
    property color backgroundColor: hovered || pressed ? Theme.textButtonActive : Theme.textButton

    signal clicked()

    radius: Theme.radiusTool
    color: backgroundColor
    implicitWidth: Math.max(72, label.implicitWidth + 24)
    implicitHeight: 28

    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        font.pixelSize: Theme.fontSmall
        font.weight: Font.Medium
        color: Theme.textPrimary
    }

    CMouseArea {
        id: mouseArea
        anchors.fill: parent
        onClicked: root.clicked()
    }

    CToolTip {
        visible: root.toolTip.length > 0 && root.hovered
        text: root.toolTip
    }
}
