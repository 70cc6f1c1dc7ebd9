import QtQuick 2.15
import "ImageStem.js" as ImageStem

// Icon with a label, for menus and bars. The label hides when the parent that owns the
// button (see setParentId) says it is too narrow to show text.
Rectangle {
    id: root

    property string text: ""
    property string imageSource: ""
    property int imageSize: 22
    property int textSize: Theme.fontHeading
    property bool checked: false
    property string toolTip: ""
    property bool hovered: mouseArea.containsMouse
    property bool pressed: mouseArea.held
    property var parentId: null
    property alias image: icon

    signal clicked()

    function setParentId(id) {
        parentId = id
    }

    readonly property bool active: hovered || checked

    color: Theme.transparent
    implicitHeight: 30
    implicitWidth: row.x + row.implicitWidth + 10

    Row {
        id: row
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: 5

        Image {
            id: icon
            anchors.verticalCenter: parent.verticalCenter
            width: root.imageSize
            height: root.imageSize
            source: ImageStem.source(root.imageSource, root.active)
            visible: root.imageSource.length > 0
            smooth: true
            mipmap: true
        }
        Text {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            visible: !root.parentId || root.parentId.showText === true
            font.pixelSize: root.textSize
            color: root.active ? Theme.toolButtonActiveText : Theme.textSecondary
        }
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
