import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// The title bar of a frameless window: drag to move, double-click to maximize, window
// buttons on the right, and on the main window the file name, pin and help.
Rectangle {
    id: root

    property bool isMain: false
    property bool showImage: true
    property string logoSource: ""
    property string titleText: ""
    property string fileName: ""
    property bool isPin: false
    property var handlePin: null
    property var handleClose: null
    property var parentWindow: null

    readonly property bool maximized: parentWindow !== null && parentWindow.visibility === Window.Maximized

    function setParentWindow(w) {
        parentWindow = w
    }

    function toggleMaximized() {
        if (!parentWindow)
            return
        if (maximized)
            parentWindow.showNormal()
        else
            parentWindow.showMaximized()
    }

    height: 40
    color: Theme.panel
    radius: maximized ? 0 : Theme.radiusMain

    // Square the lower corners; only the top ones follow the window's rounding. Antialiased
    // like the rounded rectangles around them (the look of a pixel-aligned square does not
    // change), so the first frame needs one colour shader fewer: with software OpenGL every
    // distinct shader costs tens of milliseconds to build on a first start.
    Rectangle { anchors.left: parent.left; anchors.bottom: parent.bottom; width: 10; height: 10; color: root.color; antialiasing: true }
    Rectangle { anchors.right: parent.right; anchors.bottom: parent.bottom; width: 10; height: 10; color: root.color; antialiasing: true }

    // Without a window manager there is no system move: follow the pointer instead.
    DragHandler {
        target: null
        property point origin
        onActiveChanged: {
            if (!active || !root.parentWindow)
                return
            if (!root.parentWindow.startSystemMove())
                origin = Qt.point(root.parentWindow.x, root.parentWindow.y)
            else
                origin = Qt.point(-1e9, -1e9)
        }
        onTranslationChanged: {
            if (active && root.parentWindow && origin.x > -1e9) {
                root.parentWindow.x = origin.x + translation.x
                root.parentWindow.y = origin.y + translation.y
            }
        }
    }
    TapHandler {
        onDoubleTapped: root.toggleMaximized()
    }

    Row {
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8

        Image {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.showImage && root.logoSource.length > 0
            width: 22
            height: 22
            source: root.logoSource
            sourceSize: Qt.size(44, 44)
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.titleText
            color: Theme.textPrimary
            font.pixelSize: Theme.fontHeading
            font.weight: Font.Medium
        }
    }

    Text {
        anchors.centerIn: parent
        width: root.maximized ? 800 : 200
        horizontalAlignment: Text.AlignHCenter
        visible: root.isMain
        text: root.fileName
        color: Theme.textPrimary
        font.pixelSize: Theme.fontLarge
        elide: Text.ElideRight
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        spacing: 16

        CButton {
            objectName: "pinButton"
            visible: root.isMain
            anchors.verticalCenter: parent.verticalCenter
            width: 22; height: 22
            imageSource: root.isPin ? "../Resources/titleBar/pin" : "../Resources/titleBar/unPin"
            toolTip: root.isPin ? qsTr("Unpin") : qsTr("Pin to the top of the list")
            onClicked: if (typeof root.handlePin === "function") root.handlePin()
        }
        CButton {
            id: helpButton
            visible: root.isMain
            anchors.verticalCenter: parent.verticalCenter
            width: 22; height: 22
            imageSource: "../Resources/titleBar/help"
            onClicked: helpMenu.open()

            Popup {
                id: helpMenu
                y: parent.height + 6
                x: (parent.width - width) / 2
                width: 112
                height: 64
                padding: 0
                background: Rectangle { color: Theme.lightMenu; radius: Theme.radiusMain }

                Column {
                    anchors.fill: parent
                    Repeater {
                        model: [qsTr("About us"), qsTr("Settings")]
                        Rectangle {
                            width: 112; height: 32
                            radius: Theme.radiusMain
                            color: rowArea.containsMouse ? Theme.lightMenuHover : Theme.transparent
                            Text {
                                anchors.centerIn: parent
                                text: modelData
                                color: Theme.lightMenuText
                                font.pixelSize: Theme.fontBody
                            }
                            MouseArea {
                                id: rowArea
                                anchors.fill: parent
                                hoverEnabled: true
                                cursorShape: Qt.PointingHandCursor
                                onClicked: {
                                    helpMenu.close()
                                    var dialog = index === 0 ? AboutUsDialog : RelevanceDialog
                                    dialog.show()
                                    dialog.raise()
                                }
                            }
                        }
                    }
                }
            }
        }
        CButton {
            anchors.verticalCenter: parent.verticalCenter
            width: 22; height: 22
            imageSource: "../Resources/titleBar/min"
            onClicked: if (root.parentWindow) root.parentWindow.showMinimized()
        }
        CButton {
            anchors.verticalCenter: parent.verticalCenter
            width: 22; height: 22
            imageSource: root.maximized ? "../Resources/titleBar/normal" : "../Resources/titleBar/max"
            onClicked: root.toggleMaximized()
        }
        CButton {
            objectName: "closeButton"
            anchors.verticalCenter: parent.verticalCenter
            width: 20; height: 20
            imageSource: "../Resources/titleBar/close"
            onClicked: {
                if (typeof root.handleClose === "function")
                    root.handleClose()
                else if (root.parentWindow)
                    root.parentWindow.close()
            }
        }
    }
}
