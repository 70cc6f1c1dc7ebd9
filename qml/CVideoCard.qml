import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// One history row: thumbnail, title, duration and a delete button. The picture arrives later:
// the card asks for it on creation and the window hands the answer back as imageSource.
Rectangle {
    id: root

    property string videoUrl: ""
    property real videoPos: 0
    property int indexNum: 0
    property string videoTitle: ""
    property string videoDuration: ""
    property string imageSource: ""
    property var handleDelete: null
    property bool choosed: false

    signal clicked()

    height: 64
    radius: Theme.radiusMain
    color: area.containsMouse || choosed ? Theme.hover : Theme.transparent

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.clicked()
    }

    Rectangle {
        id: thumb
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 94
        height: 54
        radius: Theme.radiusMain
        color: Theme.hover

        Image {
            anchors.fill: parent
            source: root.imageSource
            fillMode: Image.PreserveAspectFit
            // Asked for at the box's size: the stored picture is a whole video frame.
            sourceSize: Qt.size(Math.ceil(width * Screen.devicePixelRatio), Math.ceil(height * Screen.devicePixelRatio))
            // Every load of a row files its picture under the same key.
            cache: false
            asynchronous: true
        }
    }

    Column {
        anchors.left: thumb.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6

        Text {
            width: Math.min(120, parent.width)
            text: root.videoTitle
            color: Theme.textPrimary
            font.pixelSize: Theme.fontBody
            font.weight: Font.Medium
            elide: Text.ElideRight
        }
        Item {
            width: parent.width
            height: 18
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: root.videoDuration
                color: Theme.textSecondary
                font.pixelSize: Theme.fontSmall
            }
            CButton {
                objectName: "deleteButton"
                anchors.right: parent.right
                width: 18
                height: 18
                imageSource: "../Resources/control/delete"
                onClicked: if (typeof root.handleDelete === "function") root.handleDelete()
            }
        }
    }

    // Files that never played may hold a position of -1: show their first frame.
    Component.onCompleted: ImageProvider.loadThumbnailFromUrl(indexNum, videoUrl, Math.max(0, videoPos), "CVideoCard")
}
