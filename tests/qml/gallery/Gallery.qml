import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// Every control in its states side by side; the message box and the two dialogs open beside
// the window. States that normally need the pointer are forced through the controls' own
// `hovered` / `pressed` properties.
Window {
    id: gallery

    width: 900
    height: 890
    x: 0
    y: 0
    visible: true
    color: Theme.windowBackground
    title: "Gallery"

    component Caption: Text {
        color: Theme.textSecondary
        font.pixelSize: Theme.fontSmall
    }

    Column {
        x: 16
        y: 10
        width: 490
        spacing: 10

        Caption { text: "CButton: idle, hovered, pressed, fixed .png, 66 px play" }
        Row {
            spacing: 16
            CButton { width: 26; height: 26; imageSource: "../Resources/control/stop" }
            CButton { width: 26; height: 26; imageSource: "../Resources/control/stop"; hovered: true }
            CButton { width: 26; height: 26; imageSource: "../Resources/control/next"; pressed: true }
            CButton { width: 26; height: 26; imageSource: "../Resources/edit/lock_disabled.png"; hovered: true }
            CButton { width: 66; height: 66; imageSource: "../Resources/control/play" }
            CButton { width: 66; height: 66; imageSource: "../Resources/control/pause"; hovered: true }
            CButton { width: 24; height: 24; imageSource: "../Resources/control/screenshot"; toolTip: "Screenshot" }
            CButton { width: 24; height: 24; imageSource: "../Resources/titleBar/pin"; imageSize: 16 }
        }

        Caption { text: "CToolButton: idle, hovered, checked, label hidden by its parent" }
        Flow {
            id: toolRow
            property bool showText: false
            width: parent.width
            spacing: 4
            CToolButton { text: qsTr("Video compression"); imageSource: "../Resources/edit/compress" }
            CToolButton { text: qsTr("Video capture"); imageSource: "../Resources/edit/crop"; hovered: true }
            CToolButton { text: qsTr("Video Merger"); imageSource: "../Resources/edit/puzzle"; checked: true }
            CToolButton {
                text: "hidden"
                imageSource: "../Resources/edit/conversion"
                Component.onCompleted: setParentId(toolRow)
            }
        }

        Caption { text: "CTextButton idle / hovered, COKButton normal / hovered / disabled, CCancelButton" }
        Flow {
            width: parent.width
            spacing: 12
            CTextButton { text: qsTr("Select") }
            CTextButton { text: qsTr("Select"); hovered: true }
            COKButton { width: 88; height: 28; text: qsTr("Export") }
            COKButton { width: 88; height: 28; text: qsTr("Export"); hovered: true }
            COKButton { width: 88; height: 28; text: qsTr("Export"); enable: false }
            Rectangle {
                width: 150
                height: 30
                color: Theme.dialogCard
                radius: Theme.radiusTool
                Row {
                    anchors.centerIn: parent
                    spacing: 8
                    CCancelButton {}
                    CCancelButton { hovered: true }
                }
            }
        }

        Caption { text: "CCheckButton: off / on, dark rows; CCheckTextButton group (1x checked)" }
        Row {
            spacing: 12
            Repeater {
                model: 2
                Rectangle {
                    width: 150
                    height: 32
                    radius: Theme.radiusTool
                    color: index === 1 ? Theme.optionChecked : Theme.optionUnchecked
                    CCheckButton {
                        anchors.verticalCenter: parent.verticalCenter
                        imageSource: "../Resources/edit/check"
                        imageSize: 14
                        textColor: Theme.textPrimary
                        text: index === 1 ? "High" : "Low"
                        checked: index === 1
                    }
                }
            }
            Rectangle {
                width: 96
                height: 120
                radius: Theme.radiusMain
                color: Theme.popup
                CCheckButtonGroup { id: speeds }
                Column {
                    anchors.centerIn: parent
                    Repeater {
                        model: ["2x", "1.5x", "1x", "0.5x"]
                        CCheckTextButton { width: 84; text: modelData; checked: index === 2; buttonGroup: speeds }
                    }
                }
            }
        }
        // Opened a moment later so the drop-down finds its window laid out.
        Timer { id: openTimer; interval: 300; onTriggered: openCombo.popup.open() }

        Caption { text: "CSlider: plain, seek-bar gradient, vertical; CTextField: placeholder, text, focused" }
        Row {
            spacing: 20
            Column {
                spacing: 14
                CSlider { width: 200; value: 0.3 }
                CSlider {
                    width: 200
                    weight: 10
                    value: 0.6
                    customGradient: Gradient {
                        orientation: Gradient.Horizontal
                        GradientStop { position: 0; color: Theme.seekGrooveStart }
                        GradientStop { position: 1; color: Theme.accent }
                    }
                }
            }
            CSlider { orientation: Qt.Vertical; height: 100; value: 0.7 }
            Column {
                spacing: 6
                CTextField { width: 160; placeholderText: qsTr("Select a path to save the compressed file") }
                CTextField { width: 54; text: "1920" }
                CTextField { width: 160; text: "focused"; Component.onCompleted: forceActiveFocus() }
            }
        }

        Caption { text: "WaveProgress: loading, 40/100, done with slider" }
        Row {
            spacing: 10
            Rectangle {
                width: 150
                height: 150
                color: Theme.toolBody
                WaveProgress { anchors.centerIn: parent; radius: 60; radiusMargin: 4; to: 100; loading: true }
            }
            Rectangle {
                width: 150
                height: 150
                color: Theme.toolBody
                WaveProgress {
                    anchors.centerIn: parent
                    radius: 60
                    radiusMargin: 4
                    to: 100
                    value: 40
                    waveColor: Theme.toolProgressWave
                }
            }
            Rectangle {
                width: 150
                height: 170
                color: Theme.toolBody
                WaveProgress {
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 8
                    radius: 60
                    to: 100
                    value: 100
                    sliderVisible: true
                }
            }
        }
    }

    // The drop-downs on the right, one open, so its list hangs over empty space.
    Column {
        x: 540
        y: 34
        spacing: 10
        Caption { text: "CComboBox: closed, open" }
        CComboBox { model: ["MP4", "MKV", "MOV", "AVI"] }
        CComboBox {
            id: openCombo
            model: ["H.264", "HEVC", "MPEG-4", "VP9", "AV1", "ProRes", "MJPEG", "FLV1", "Theora"]
            Component.onCompleted: openTimer.start()
        }
    }
    Item {
        x: 720
        y: 34
        width: 150
        height: 100
        CShadowRectangle { target: shadowed }
        Rectangle {
            id: shadowed
            anchors.fill: parent
            anchors.margins: 10
            radius: Theme.radiusMain
            color: Theme.panel
            Caption { anchors.centerIn: parent; text: "shadowed card" }
        }
    }

    // The stack as the main window places it, bottom right, with three rows.
    CNotification {
        id: notes
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 14
        Component.onCompleted: {
            notify(CNotification.Notice, "", 600000)
            notify(CNotification.Warning, "/home/user/screenshots/shot-1.png", 600000)
            notify(CNotification.Error, "/home/user/screenshots/shot-2.png", 600000)
        }
    }

    Component.onCompleted: {
        AboutUsDialog.x = gallery.width + 10
        AboutUsDialog.y = 0
        AboutUsDialog.show()
        RelevanceDialog.x = gallery.width + 10
        RelevanceDialog.y = 450
        RelevanceDialog.show()
        if (!showMessageBox)
            return
        CMessageBox.showMessage(qsTr("Are you sure you want to delete this video?"), function () {})
        CMessageBox.x = 520
        CMessageBox.y = 380
    }
}
