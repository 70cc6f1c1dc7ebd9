import QtQuick 2.15
import CustomUtils 1.0

// The supported formats from the configuration file, video and audio, each a checked box.
// The audio rows' smaller text is part of the design.
Item {
    function formatButtons() {
        const all = []
        for (const r of [videoFormats, audioFormats])
            for (let i = 0; i < r.count; ++i)
                all.push(r.itemAt(i))
        return all
    }

    Column {
        anchors.fill: parent
        anchors.margins: 20
        spacing: 10

        Text {
            text: qsTr("Video Media Formats")
            font.pixelSize: Theme.fontSmall
            font.weight: Font.Medium
            color: Theme.dialogText
        }
        Grid {
            columns: 4
            spacing: 10
            Repeater {
                id: videoFormats
                model: ConfigHelper.getSupportedVideoFormats()
                CCheckButton {
                    height: 20
                    margins: 0
                    imageSize: 14
                    imageSource: "../Resources/common/check"
                    text: modelData
                    checked: true
                }
            }
        }
        Text {
            text: qsTr("Audio Media Formats")
            font.pixelSize: Theme.fontSmall
            font.weight: Font.Medium
            color: Theme.dialogText
        }
        Grid {
            columns: 4
            spacing: 10
            Repeater {
                id: audioFormats
                model: ConfigHelper.getSupportedAudioFormats()
                CCheckButton {
                    height: 20
                    margins: 0
                    imageSize: 14
                    fontSize: Theme.fontCaption
                    imageSource: "../Resources/common/check"
                    text: modelData
                    checked: true
                }
            }
        }
    }
}
