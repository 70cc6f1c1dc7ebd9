import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "ImageStem.js" as ImageStem

// A check icon with a text. The button never checks itself when someone else decides:
// a `handleChecked` owner first, else its group, and only a free button toggles.
T.AbstractButton {
    id: root

    property string imageSource: ""
    property var buttonGroup: null
    property int imageSize: 18
    property int fontSize: Theme.fontBody
    property int margins: text.length > 0 ? 8 : 0
    property color textColor: Theme.checkButtonText
    property var handleChecked: null

    // Setting `checked` makes the template checkable, and a checkable template toggles itself
    // on every click; the state must change only in onClicked below.
    checkable: false
    onCheckableChanged: checkable = false
    hoverEnabled: true
    padding: 0
    leftPadding: margins
    rightPadding: margins
    implicitWidth: leftPadding + rightPadding + row.implicitWidth
    implicitHeight: Math.max(row.implicitHeight, imageSize)
    font.pixelSize: fontSize

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.verticalCenter: parent.verticalCenter
            spacing: 8
            Image {
                anchors.verticalCenter: parent.verticalCenter
                width: root.imageSize
                height: root.imageSize
                source: ImageStem.source(root.imageSource, root.checked)
                visible: root.imageSource.length > 0
                smooth: true
                mipmap: true
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: root.text
                visible: text.length > 0
                font: root.font
                color: root.textColor
            }
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    onClicked: {
        if (typeof handleChecked === "function")
            handleChecked()
        else if (buttonGroup)
            buttonGroup.checkButton(root)
        else
            checked = !checked
    }

    GroupMembership {
        button: root
        group: root.buttonGroup
    }
}
