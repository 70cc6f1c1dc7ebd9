import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import QtGraphicalEffects 1.15

// Circular progress: a rounded square of colour, turned and spinning, rises inside a circle as
// `value` approaches `to`. Hovering offers a stop disc, in the loading state too: a job
// whose start is still pending (or a tool whose own checks failed) must be stoppable.
Item {
    id: root

    property real form: 0                  // low end of the optional slider
    property real to: 1
    property real radius: 0
    property real radiusMargin: 5
    property real value: 0
    property real waveSpeed: 3             // seconds per turn
    property color waveColor: Theme.waveFill
    property int progressTextPrecision: 0
    property alias progressTextVisible: label.visible
    property alias progressTextFont: label.font
    property color progressTextColor: Theme.waveText
    property alias sliderVisible: slider.visible
    property alias sliderHeight: slider.height
    property color sliderBackgroundColor: Theme.waveFill
    property color sliderHandleColor: Theme.waveFill
    property color sliderHandleBorderColor: Theme.waveSliderHandleBorder
    property real sliderHandleRadius: 11
    property bool loading: false
    property var handleStop: null

    // Where the top edge of the fill sits inside the inner circle; with `to` at 0 there is no
    // progress to show and the fill stays below sight.
    readonly property real fillTop: to !== 0 ? inner.height * 1.1 * (to - value) / to : inner.height * 1.1
    readonly property bool spinning: value < to
    readonly property string labelText: loading ? qsTr("loading")
                                                : value.toFixed(progressTextPrecision) + "/"
                                                  + to.toFixed(progressTextPrecision)
    readonly property bool stopShown: circleArea.containsMouse

    width: 2 * radius
    implicitHeight: 2 * radius + (slider.visible ? slider.height + 10 : 0)

    Rectangle {
        id: circle
        width: 2 * root.radius
        height: width
        radius: width / 2
        color: Theme.waveBackground

        Item {
            id: inner
            anchors.fill: parent
            anchors.margins: root.radiusMargin
            visible: false

            Rectangle {
                id: wave
                width: 4 * root.radius
                height: width
                radius: 1.5 * root.radius
                x: (inner.width - width) / 2
                y: root.fillTop
                color: root.waveColor
                rotation: 45

                RotationAnimator on rotation {
                    from: 45
                    to: 405
                    duration: Math.max(1, root.waveSpeed * 1000)
                    loops: Animation.Infinite
                    running: root.spinning && root.visible
                }
            }
        }
        Rectangle {
            id: innerMask
            anchors.fill: inner
            radius: width / 2
            visible: false
        }
        OpacityMask {
            anchors.fill: inner
            source: inner
            maskSource: innerMask
        }

        Text {
            id: label
            anchors.centerIn: parent
            text: root.labelText
            font.pointSize: Theme.wavePointSize
            color: root.progressTextColor
        }

        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: Theme.waveStopDisc
            visible: root.stopShown
            Text {
                anchors.centerIn: parent
                text: qsTr("stop")
                font.pointSize: Theme.wavePointSize
                color: Theme.textPrimary
            }
        }

        MouseArea {
            id: circleArea
            anchors.fill: parent
            hoverEnabled: true
            cursorShape: Qt.PointingHandCursor
            onClicked: {
                if (typeof root.handleStop === "function")
                    root.handleStop()
                root.visible = false
            }
        }
    }

    T.Slider {
        id: slider
        anchors.top: circle.bottom
        anchors.topMargin: 10
        width: root.width
        height: 2 * root.sliderHandleRadius
        visible: false
        from: root.form
        to: root.to
        value: root.value
        onMoved: root.value = value

        background: Rectangle {
            x: slider.leftPadding
            y: slider.topPadding + (slider.availableHeight - height) / 2
            width: slider.availableWidth
            height: 8
            radius: 4
            color: root.sliderBackgroundColor
        }
        handle: Rectangle {
            x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
            y: slider.topPadding + (slider.availableHeight - height) / 2
            width: 2 * root.sliderHandleRadius
            height: width
            radius: width / 2
            border.width: 2
            border.color: root.sliderHandleBorderColor
            color: slider.pressed ? Qt.darker(root.sliderHandleColor, 1.2) : root.sliderHandleColor
        }
    }
}
