import QtQuick 2.15
import QtQuick.Templates 2.15 as T

// A checkable menu row.
T.AbstractButton {
    id: root

    property var buttonGroup: null
    property color fontColor: hovered || checked ? Theme.accent : Theme.textSecondary
    property color backgroundColor: hovered || checked ? Theme.hover : Theme.transparent

    // Setting `checked` makes the template checkable, and a checkable template toggles itself
    // on every click; the state must change only in onClicked below.
    checkable: false
    onCheckableChanged: checkable = false
    hoverEnabled: true
    padding: 0
    implicitHeight: 24
    implicitWidth: Math.max(72, label.implicitWidth)
    font.pixelSize: Theme.fontSmall

    background: Rectangle {
        radius: Theme.radiusMain
        color: root.backgroundColor
    }
    contentItem: Item {
        Text {
            id: label
            x: 20
            width: Math.max(0, parent.width - x)
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            font: root.font
            color: root.fontColor
            elide: Text.ElideRight
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    onClicked: {
        if (buttonGroup)
            buttonGroup.checkButton(root)
        else
            checked = !checked
    }

    GroupMembership {
        button: root
        group: root.buttonGroup
    }
}
