import QtQuick 2.15
import CustomUtils 1.0

// The toast stack in the corner of the player: newest on top, each row leaving on its own
// timer. Rows are right-aligned and may be wider than the stack; only the height is capped.
Item {
    id: root

    enum NotificationType { Notice, Warning, Error }

    readonly property alias model: entries
    readonly property alias view: list
    readonly property int maxHeight: 500

    function notify(type, path, timeout) {
        entries.insert(0, {
            type: type === undefined ? CNotification.Notice : type,
            path: path === undefined || path === null ? "" : String(path),
            timeout: timeout === undefined ? 3000 : timeout
        })
    }

    function messageFor(path) {
        return path.length > 0 ? qsTr("Screenshot saved") : qsTr("There is currently no file playing")
    }

    width: 200
    height: Math.min(list.contentHeight, maxHeight)

    ListModel { id: entries }

    // Clips above and below only: the clip region reaches far to the left so long rows show
    // whole.
    Item {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: root.width + 600
        clip: true

        ListView {
            id: list
            anchors.right: parent.right
            width: root.width
            height: Math.max(contentHeight, root.maxHeight)
            spacing: 5
            interactive: false
            model: entries

            delegate: Item {
                id: row

                readonly property string message: root.messageFor(model.path)
                readonly property string rowPath: model.path

                width: ListView.view ? ListView.view.width : root.width
                height: 34

                Rectangle {
                    anchors.right: parent.right
                    height: parent.height
                    width: content.implicitWidth + 20
                    radius: Theme.radiusTool
                    color: Theme.notification

                    Row {
                        id: content
                        anchors.centerIn: parent
                        spacing: 6
                        Text {
                            text: row.message
                            font.pixelSize: Theme.fontBody
                            color: Theme.textPrimary
                        }
                        Text {
                            visible: row.rowPath.length > 0
                            text: qsTr("Open file")
                            font.pixelSize: Theme.fontBody
                            font.underline: true
                            color: Theme.accent
                            MouseArea {
                                anchors.fill: parent
                                cursorShape: Qt.PointingHandCursor
                                onClicked: FileHelper.openDirectoryByFile(row.rowPath)
                            }
                        }
                    }
                }

                Timer {
                    interval: model.timeout
                    running: true
                    onTriggered: {
                        if (index >= 0)
                            entries.remove(index)
                    }
                }
            }

            add: Transition {
                NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 500 }
            }
            addDisplaced: Transition {
                SpringAnimation { property: "y"; spring: 5; damping: 0.5; epsilon: 1 }
            }
            displaced: Transition {
                NumberAnimation { property: "y"; duration: 300; easing.type: Easing.InQuart }
            }
            remove: Transition {
                NumberAnimation { property: "scale"; to: 0; duration: 500 }
            }
        }
    }
}
