import QtQuick 2.15
import QtQuick.Templates 2.15 as T

// A slider with a rounded groove, horizontal or vertical. The filled part runs from the low
// end (left, or bottom when vertical) to the handle.
T.Slider {
    id: root

    property var customGradient: null
    property int weight: 8
    property color grooveColor: Theme.sliderGroove
    property color fillColor: Theme.accent
    property int handleSize: 16
    property color handleColor: Theme.sliderHandle

    implicitWidth: horizontal ? 200 : Math.max(weight, handleSize)
    implicitHeight: horizontal ? Math.max(weight, handleSize) : 200
    padding: 0

    background: Rectangle {
        x: root.leftPadding + (root.horizontal ? 0 : (root.availableWidth - width) / 2)
        y: root.topPadding + (root.horizontal ? (root.availableHeight - height) / 2 : 0)
        width: root.horizontal ? root.availableWidth : root.weight
        height: root.horizontal ? root.weight : root.availableHeight
        radius: root.weight / 2
        color: root.grooveColor

        Rectangle {
            x: 0
            y: root.horizontal ? 0 : root.visualPosition * parent.height
            width: root.horizontal ? root.visualPosition * parent.width : parent.width
            height: root.horizontal ? parent.height : parent.height - y
            radius: parent.radius
            color: root.fillColor
            gradient: root.customGradient ? root.customGradient : undefined
        }
    }

    handle: Rectangle {
        x: root.leftPadding + (root.horizontal ? root.visualPosition * (root.availableWidth - width)
                                               : (root.availableWidth - width) / 2)
        y: root.topPadding + (root.horizontal ? (root.availableHeight - height) / 2
                                              : root.visualPosition * (root.availableHeight - height))
        width: root.handleSize
        height: root.handleSize
        radius: width / 2
        color: root.handleColor
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
