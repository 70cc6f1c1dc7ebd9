import QtQuick 2.15
import QtQuick.Controls 2.15
import CustomUtils 1.0
import "MainLogic.js" as Logic

// The 120-px bar under the video: seek bar with hover preview, time, transport buttons,
// volume, and the tool, settings and speed menus.
Item {
    id: root

    property var player: null
    property bool playerVisible: false  // a file is on screen, not the empty state
    property bool canPrevious: false
    property bool canNext: false
    property bool fullScreen: false
    property var handlePrevious: null
    property var handleNext: null
    property var handleTool: null       // function(index)
    property var handleSmall: null
    property var handleFullScreen: null
    property var handleNoFile: null     // settings, mini-player or full screen without a file

    readonly property string fileUrl: player ? player._fileUrl : ""
    readonly property bool playing: fileUrl.length > 0 && player && !player.pause

    height: 120

    function call(handler, arg) {
        if (typeof handler === "function")
            handler(arg)
    }

    // Makes the preview's item, framebuffer and first picture while its box is still hidden.
    // The first picture compiles the preview's shader, a wait that would otherwise fall on the
    // first hover; this runs once the pointer comes over the window or the bar, when a hover
    // is likely next, and only once the file plays.
    function preparePreview() {
        if (fileUrl.length > 0 && player.position > 0)
            thumbnailLoader.active = true
    }

    function withFile(action) {
        if (playerVisible)
            action()
        else
            call(handleNoFile)
    }

    // Picks a group's row without running its choice callback: the player already has it.
    function selectSilently(group, index) {
        var handler = group.handleCheckedChanged
        group.handleCheckedChanged = null
        group.checkButtonByIndex(index)
        group.handleCheckedChanged = handler
    }

    function indexOfId(tracks, id) {
        for (var i = 0; i < tracks.length; ++i) {
            if (tracks[i].id === id)
                return i
        }
        return -1
    }

    function syncChoices() {
        if (!player)
            return
        selectSilently(aspectGroup, player.aspectRatio)
        selectSilently(subtitleGroup, indexOfId(player.subtitleTracks, player.currentSubtitleTrack))
        selectSilently(audioGroup, indexOfId(player.audioTracks, player.currentAudioTrack))
        for (var i = 0; i < speedModel.count; ++i) {
            if (speedModel.get(i).speed === player.speed)
                selectSilently(speedGroup, i)
        }
    }

    function openMenu(menu, button) {
        menu.baseY = speedButton.mapToItem(root, 0, 0).y
        menu.anchorX = button.mapToItem(root, button.width / 2, 0).x
        syncChoices()
        menu.open()
    }

    Connections {
        target: root.player
        function onAudioTrackChanged() { settingsMenu.updateHeight() }
        function onSubtitleTrackChanged() { settingsMenu.updateHeight() }
    }

    ListModel {
        id: radioModel
        ListElement { title: qsTr("default") }
        ListElement { title: "4:3" }
        ListElement { title: "16:9" }
        ListElement { title: qsTr("Full") }
    }
    ListModel {
        id: toolModel
        ListElement { title: qsTr("Video compression"); icon: "../Resources/edit/compress" }
        ListElement { title: qsTr("Video capture"); icon: "../Resources/edit/crop" }
        ListElement { title: qsTr("Video Merger"); icon: "../Resources/edit/puzzle" }
        ListElement { title: qsTr("Format Conversion"); icon: "../Resources/edit/conversion" }
    }
    ListModel {
        id: speedModel
        ListElement { speed: 3; title: "3x" }
        ListElement { speed: 2; title: "2x" }
        ListElement { speed: 1.75; title: "1.75x" }
        ListElement { speed: 1.5; title: "1.5x" }
        ListElement { speed: 1.25; title: "1.25x" }
        ListElement { speed: 1; title: "1x" }
        ListElement { speed: 0.75; title: "0.75x" }
        ListElement { speed: 0.5; title: "0.5x" }
    }
    property alias toolModel: toolModel

    HoverHandler {
        onHoveredChanged: {
            if (hovered)
                root.preparePreview()
        }
    }

    // ---- seek bar and its preview -------------------------------------------------------

    CSlider {
        id: seekBar
        objectName: "seekBar"
        anchors.top: parent.top
        width: parent.width
        height: 10
        weight: 6
        handleSize: 12
        from: 0
        to: root.player ? Math.max(0, root.player.duration) : 0
        value: root.player ? root.player.position : 0
        stepSize: 0.01
        focusPolicy: Qt.NoFocus
        customGradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: Theme.seekGrooveStart }
            GradientStop { position: 1; color: Theme.accent }
        }
        // Only the user's moves seek: a write-back of the bound value would undo a resume seek
        // whenever the duration arrives after the position.
        onMoved: root.player.position = value

        MouseArea {
            id: seekHover
            anchors.fill: parent
            anchors.topMargin: -4
            acceptedButtons: Qt.NoButton
            hoverEnabled: true
            property real last: -1e9
            property real seconds: 0
            function showPreview(x) {
                var now = Date.now()
                if (root.fileUrl.length === 0 || !Logic.previewDue(now, last, 300))
                    return
                last = now
                seconds = Logic.previewSeconds(x, width, root.player.duration)
                preview.x = Logic.previewX(x, preview.width, width)
                if (thumbnailLoader.item) {
                    thumbnailLoader.fit()
                    thumbnailLoader.item.loadThumbnailFromUrl(root.fileUrl, seconds)
                } else {
                    thumbnailLoader.active = true
                }
            }
            // Entering is the first move over the bar: the box shows at once, so must its frame.
            onEntered: showPreview(mouseX)
            onPositionChanged: showPreview(mouse.x)
        }
    }

    Rectangle {
        id: preview
        objectName: "preview"
        y: seekBar.y - height - 8
        width: 210
        height: 130
        radius: Theme.radiusMain
        color: Theme.panel
        visible: seekHover.containsMouse && root.fileUrl.length > 0

        // The decoder and its textures are made ahead (preparePreview) or on the first hover,
        // and then kept.
        Loader {
            id: thumbnailLoader
            anchors.centerIn: parent
            width: 210
            height: 130
            active: false
            sourceComponent: ThumbnailItem {
                x: (thumbnailLoader.width - width) / 2
                y: (thumbnailLoader.height - height) / 2
                // A load that changes the item's size drops its frame: ask again at the new size.
                onSignalUpdate: {
                    if ((width > 0 || height > 0) && root.fileUrl.length > 0)
                        loadThumbnailFromUrl(root.fileUrl, seekHover.seconds)
                }
            }
            // The item takes the size of the file's picture before its first frame: a frame
            // that changes the size is dropped and fetched again, which would double the wait.
            property string fittedUrl: ""
            function fit() {
                if (fittedUrl === root.fileUrl)
                    return
                // Unknown sizes (no video yet) come as 0, leave the item as it is and are
                // asked again on the next load.
                var size = item.fittedSize(Number(root.player.getProperty("video-params/dw")) || 0,
                                           Number(root.player.getProperty("video-params/dh")) || 0, width, height)
                if (size.width > 0) {
                    fittedUrl = root.fileUrl
                    item.width = size.width
                    item.height = size.height
                }
            }
            onLoaded: {
                fit()
                item.loadThumbnailFromUrl(root.fileUrl, seekHover.seconds)
            }
        }
        // The time on a dimmed pill reads on any picture. An outlined text would need a
        // shader of its own, built on the first hover and making it several times slower.
        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 4
            width: previewTime.implicitWidth + 12
            height: previewTime.implicitHeight + 2
            radius: height / 2
            color: Theme.dim

            Text {
                id: previewTime
                anchors.centerIn: parent
                text: CommonTool.formatTime(seekHover.seconds)
                color: Theme.textPrimary
                font.pixelSize: Theme.fontSmall
            }
        }
    }

    // ---- time ---------------------------------------------------------------------------

    Text {
        objectName: "timeLabel"
        anchors.left: parent.left
        anchors.leftMargin: 24
        anchors.verticalCenter: parent.verticalCenter
        text: root.player ? CommonTool.formatTime(root.player.position) + "/" + CommonTool.formatTime(root.player.duration) : ""
        color: Theme.textSecondary
        font.pixelSize: Theme.fontBody
    }

    // ---- transport ----------------------------------------------------------------------

    Row {
        anchors.centerIn: parent
        width: 300
        height: 80
        spacing: 30
        leftPadding: (300 - childrenRect.width) / 2

        CButton {
            anchors.verticalCenter: parent.verticalCenter
            width: 26; height: 26
            imageSource: "../Resources/control/stop"
            toolTip: qsTr("Stop")
            onClicked: root.player.stop()
        }
        CButton {
            objectName: "previousButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 26; height: 26
            enabled: root.canPrevious
            DisabledVeil {}
            imageSource: "../Resources/control/previous"
            toolTip: qsTr("Previous")
            onClicked: root.call(root.handlePrevious)
        }
        CButton {
            objectName: "playButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 66; height: 66
            imageSource: root.playing ? "../Resources/control/pause" : "../Resources/control/play"
            onClicked: root.player.setPause(!root.player.pause)
        }
        CButton {
            objectName: "nextButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 26; height: 26
            enabled: root.canNext
            DisabledVeil {}
            imageSource: "../Resources/control/next"
            toolTip: qsTr("Next")
            onClicked: root.call(root.handleNext)
        }
        CButton {
            id: muteButton
            anchors.verticalCenter: parent.verticalCenter
            width: 26; height: 26
            imageSource: root.player && root.player.mute ? "../Resources/control/mute" : "../Resources/control/unMute"
            onClicked: root.player.setMute(!root.player.mute)

            // The volume pop-up unrolls above the button while the pointer is on either.
            Rectangle {
                id: volumePopup
                readonly property bool wanted: muteButton.hovered || popupHover.hovered || volumeSlider.pressed
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.bottom: parent.top
                width: 56
                height: wanted ? 142 : 0
                visible: height > 0
                clip: true
                radius: Theme.radiusMain
                color: Theme.popup
                Behavior on height { NumberAnimation { duration: 280; easing.type: Easing.OutCubic } }

                HoverHandler { id: popupHover }

                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 6
                    text: Math.round(volumeSlider.value) + "%"
                    color: Theme.textPrimary
                    font.pixelSize: Theme.fontSmall
                }
                CSlider {
                    id: volumeSlider
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 24
                    width: 12
                    height: 112
                    orientation: Qt.Vertical
                    from: 0
                    to: 100
                    stepSize: 1
                    weight: 2
                    grooveColor: Theme.volumeTrack
                    fillColor: Theme.accent
                    handleSize: 12
                    handleColor: Theme.accent
                    focusPolicy: Qt.NoFocus
                    value: root.player ? root.player.volume : 0
                    onMoved: {
                        root.player.volume = Math.round(value)
                        if (root.player.mute)
                            root.player.setMute(false)
                    }
                }
            }
        }
    }

    // ---- right-hand buttons -------------------------------------------------------------

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 28
        anchors.verticalCenter: parent.verticalCenter
        spacing: 24

        CButton {
            objectName: "screenshotButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 24; height: 24
            imageSource: "../Resources/control/screenshot"
            toolTip: qsTr("Screenshot")
            onClicked: root.player.getScreenshot()
        }
        CButton {
            id: toolButton
            anchors.verticalCenter: parent.verticalCenter
            width: 24; height: 24
            imageSource: "../Resources/control/tool"
            toolTip: qsTr("Tools")
            onClicked: root.openMenu(toolMenu, toolButton)
        }
        CButton {
            id: settingsButton
            objectName: "settingsButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 24; height: 24
            imageSource: "../Resources/control/setting"
            toolTip: qsTr("Settings")
            onClicked: root.withFile(function () { root.openMenu(settingsMenu, settingsButton) })
        }
        Item {
            id: speedButton
            anchors.verticalCenter: parent.verticalCenter
            width: 40; height: 30
            Text {
                anchors.centerIn: parent
                text: (root.player ? root.player.speed : 1) + "x"
                color: speedArea.containsMouse ? Theme.accent : Theme.textPrimary
                font.pixelSize: Theme.fontLarge
            }
            MouseArea {
                id: speedArea
                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: root.openMenu(speedMenu, speedButton)
            }
        }
        CButton {
            objectName: "smallButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 24; height: 24
            imageSource: "../Resources/control/small"
            toolTip: qsTr("Mini player")
            onClicked: root.withFile(function () { root.call(root.handleSmall) })
        }
        CButton {
            objectName: "fullButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 24; height: 24
            imageSource: root.fullScreen ? "../Resources/control/exit" : "../Resources/control/full"
            toolTip: qsTr("Full screen")
            onClicked: root.withFile(function () { root.call(root.handleFullScreen) })
        }
    }

    // ---- menus --------------------------------------------------------------------------

    CMenu {
        id: toolMenu
        objectName: "toolMenu"
        property real anchorX: 0
        x: anchorX - width / 2
        minimumWidth: 112

        Repeater {
            model: toolModel
            Rectangle {
                id: toolRow
                implicitWidth: toolRowContent.implicitWidth + 8
                height: 24
                radius: Theme.radiusMain
                color: toolRowArea.containsMouse ? Theme.hover : Theme.transparent
                Row {
                    id: toolRowContent
                    x: 8
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 6
                    Image {
                        width: 20; height: 20
                        source: model.icon + (toolRowArea.containsMouse ? "_press.png" : ".png")
                    }
                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        text: model.title
                        color: toolRowArea.containsMouse ? Theme.accent : Theme.textSecondary
                        font.pixelSize: Theme.fontSmall
                    }
                }
                MouseArea {
                    id: toolRowArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: {
                        toolMenu.close()
                        root.call(root.handleTool, index)
                    }
                }
            }
        }
    }

    CCheckButtonGroup {
        id: speedGroup
        handleCheckedChanged: function (i) {
            root.player.setSpeed(speedModel.get(i).speed)
            speedMenu.close()
        }
    }
    CMenu {
        id: speedMenu
        objectName: "speedMenu"
        property real anchorX: 0
        x: anchorX - width / 2
        minimumWidth: 84

        Repeater {
            model: speedModel
            CCheckTextButton {
                text: model.title
                checked: index === 5
                buttonGroup: speedGroup
            }
        }
    }

    CCheckButtonGroup {
        id: aspectGroup
        handleCheckedChanged: function (i) {
            root.player.setAspectRatio(i)
            settingsMenu.close()
        }
    }
    CCheckButtonGroup {
        id: subtitleGroup
        handleCheckedChanged: function (i) {
            root.player.setSubtitleTrack(root.player.subtitleTracks[i].id)
            settingsMenu.close()
        }
    }
    CCheckButtonGroup {
        id: audioGroup
        handleCheckedChanged: function (i) {
            root.player.setAudioTrack(root.player.audioTracks[i].id)
            settingsMenu.close()
        }
    }
    CMenu {
        id: settingsMenu
        objectName: "settingsMenu"
        property real anchorX: 0
        x: anchorX - width / 2
        minimumWidth: 104

        Text {
            text: qsTr("video")
            leftPadding: 8
            height: 24
            verticalAlignment: Text.AlignVCenter
            color: Theme.textPrimary
            font.pixelSize: Theme.fontSmall
        }
        Repeater {
            model: radioModel
            CCheckTextButton {
                text: model.title
                buttonGroup: aspectGroup
            }
        }
        Text {
            text: qsTr("subTitle")
            leftPadding: 8
            height: 24
            verticalAlignment: Text.AlignVCenter
            color: Theme.textPrimary
            font.pixelSize: Theme.fontSmall
        }
        Repeater {
            model: root.player ? root.player.subtitleTracks : []
            CCheckTextButton {
                text: modelData.title
                buttonGroup: subtitleGroup
            }
        }
        Text {
            text: qsTr("audio")
            leftPadding: 8
            height: 24
            verticalAlignment: Text.AlignVCenter
            color: Theme.textPrimary
            font.pixelSize: Theme.fontSmall
        }
        Repeater {
            model: root.player ? root.player.audioTracks : []
            CCheckTextButton {
                text: modelData.title
                buttonGroup: audioGroup
            }
        }
    }
}
