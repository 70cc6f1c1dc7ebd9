import QtQuick 2.15
import QtQuick.Controls 2.15
import CustomUtils 1.0
import "MainLogic.js" as Logic

// The sliding play list at the right of the main window.
Rectangle {
    id: root

    property var model: null
    property int currentIndex: 0
    property string playingUrl: ""
    property real playingDuration: 0
    property bool open: false
    property var handleOpen: null       // function(url)
    property var handleDelete: null     // function(url, index)
    property var handleAdd: null
    property var handleClear: null

    // Gives the card of `index` its thumbnail, if that card exists.
    function setCardImage(index, source) {
        var card = listLoader.item ? listLoader.item.itemAtIndex(index) : null
        if (!card)
            return
        card.imageSource = ""
        card.imageSource = source
    }

    width: open ? 240 : 1
    visible: width > 1
    color: Theme.panel
    clip: true

    Behavior on width { NumberAnimation { duration: 280; easing.type: Easing.OutCubic } }

    // Keeps clicks and wheel turns from reaching the video below.
    MouseArea { anchors.fill: parent; hoverEnabled: true; onWheel: wheel.accepted = true }

    Item {
        id: header
        width: 240
        height: 48

        Text {
            anchors.left: parent.left
            anchors.leftMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Play List")
            color: Theme.textPrimary
            font.pixelSize: Theme.fontHeading
            font.weight: Font.Medium
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            spacing: 12
            CButton {
                width: 22; height: 22
                imageSource: "../Resources/control/add"
                toolTip: qsTr("Add files")
                onClicked: if (typeof root.handleAdd === "function") root.handleAdd()
            }
            CButton {
                objectName: "clearButton"
                width: 22; height: 22
                imageSource: "../Resources/control/clear"
                toolTip: qsTr("Clear the list")
                onClicked: if (typeof root.handleClear === "function") root.handleClear()
            }
        }
    }

    // The cards, and the thumbnails they ask for, are made when the list is first opened.
    onOpenChanged: if (open) listLoader.active = true

    Loader {
        id: listLoader
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        width: 240
        active: false
        sourceComponent: listComponent
    }

    Component {
        id: listComponent
        ListView {
            id: list
            objectName: "historyList"
            clip: true
            model: root.model
            boundsBehavior: Flickable.StopAtBounds

            delegate: CVideoCard {
                width: 240 - 12
                x: 4
                videoUrl: model.url
                videoTitle: model.filename
                videoPos: model.lastPosition
                readonly property real seconds: Logic.cardSeconds(model.duration, model.url, root.playingUrl, root.playingDuration)
                videoDuration: Logic.cardDuration(seconds, CommonTool.formatTime(seconds))
                indexNum: index
                choosed: index === root.currentIndex
                handleDelete: function () { if (typeof root.handleDelete === "function") root.handleDelete(videoUrl, index) }
                onClicked: if (typeof root.handleOpen === "function") root.handleOpen(videoUrl)
            }

            ScrollBar.vertical: ScrollBar {
                id: bar
                width: 8
                policy: ScrollBar.AlwaysOn
                opacity: list.contentHeight > list.height || listHover.hovered ? 1 : 0
                Behavior on opacity { NumberAnimation { duration: 300 } }
                background: Rectangle {
                    color: bar.hovered || bar.pressed ? Theme.scrollTrackHover : Theme.transparent
                    Behavior on color { ColorAnimation { duration: 150 } }
                }
                contentItem: Rectangle {
                    implicitWidth: bar.hovered || bar.pressed ? 8 : 2
                    x: bar.width - width
                    radius: width / 2
                    color: bar.pressed ? Theme.scrollHandlePressed
                                       : bar.hovered ? Theme.scrollHandleHover : Theme.scrollHandle
                    Behavior on color { ColorAnimation { duration: 150 } }
                    Behavior on implicitWidth { NumberAnimation { duration: 150 } }
                }
            }

            HoverHandler { id: listHover }
        }
    }
}
