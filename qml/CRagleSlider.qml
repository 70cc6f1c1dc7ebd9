import QtQuick 2.15
import CustomUtils 1.0
import "ToolLogic.js" as Logic

// A slider with two handles selecting a range. Values snap to multiples of `step`. A handle
// that has been dragged stays where the user left it, even when the values are set again
// from outside.
Item {
    id: root

    property real from: 0
    property real to: 100
    property real minValue: 0
    property real maxValue: 0
    property real step: 1
    property var handleMinValueChanged: null
    property var handleMaxValueChanged: null

    readonly property real handleSize: 20

    function moveStart(x) {
        startHandle.x = Logic.clampStartX(x, endHandle.x, handleSize)
        minValue = Math.min(Logic.valueAt(startHandle.x, from, to, width, handleSize, step), maxValue)
        if (typeof handleMinValueChanged === "function")
            handleMinValueChanged(minValue)
    }

    function moveEnd(x) {
        endHandle.x = Logic.clampEndX(x, startHandle.x, width, handleSize)
        maxValue = Math.max(Logic.valueAt(endHandle.x, from, to, width, handleSize, step), minValue)
        if (typeof handleMaxValueChanged === "function")
            handleMaxValueChanged(maxValue)
    }

    implicitWidth: 300
    implicitHeight: 40

    Rectangle {
        id: track
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: 4
        radius: Theme.radiusRangeTrack
        color: Theme.rangeTrack

        Rectangle {
            x: startHandle.x + root.handleSize / 2
            width: Math.max(0, endHandle.x - startHandle.x)
            height: parent.height
            radius: parent.radius
            color: Theme.rangeSelection
        }
    }

    Rectangle {
        id: startHandle
        // The first drag replaces this binding for good.
        x: Logic.handleX(root.minValue, root.from, root.to, root.width, root.handleSize)
        y: track.y - 8
        width: root.handleSize
        height: width
        radius: width / 2
        color: Theme.rangeStartHandle

        MouseArea {
            anchors.fill: parent
            cursorShape: Qt.PointingHandCursor
            property real grab: 0
            onPressed: grab = mouse.x
            onPositionChanged: {
                root.moveStart(startHandle.x + mouse.x - grab)
            }
        }
    }

    Rectangle {
        id: endHandle
        // The first drag replaces this binding for good.
        x: Logic.handleX(root.maxValue, root.from, root.to, root.width, root.handleSize)
        y: track.y - 8
        width: root.handleSize
        height: width
        radius: width / 2
        color: Theme.rangeEndHandle

        MouseArea {
            anchors.fill: parent
            cursorShape: Qt.PointingHandCursor
            property real grab: 0
            onPressed: grab = mouse.x
            onPositionChanged: {
                root.moveEnd(endHandle.x + mouse.x - grab)
            }
        }
    }
}
