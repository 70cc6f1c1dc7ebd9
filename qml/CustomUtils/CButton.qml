import QtQuick 2.15
import QtQuick.Window 2.15
import "ImageStem.js" as ImageStem

// An image-only button.
Rectangle {
    id: root

    property string imageSource: ""
    property string toolTip: ""
    property int imageSize: 0            // 0: the image fills the button
    property bool hovered: mouseArea.containsMouse
    property bool pressed: mouseArea.held

    signal clicked()

    color: Theme.transparent
    implicitWidth: 24
    implicitHeight: 24

    Image {
        anchors.centerIn: parent
        width: root.imageSize > 0 ? root.imageSize : root.width
        height: root.imageSize > 0 ? root.imageSize : root.height
        source: ImageStem.source(root.imageSource, root.hovered || root.pressed)
        fillMode: Image.Stretch
        // Scaled once when loaded, at the size shown: a texture with mip levels would need its
        // levels built on the first frame, which software OpenGL does slowly, and could not
        // share the window's texture of small images.
        sourceSize: Qt.size(Math.ceil(width * Screen.devicePixelRatio), Math.ceil(height * Screen.devicePixelRatio))
        smooth: true
    }

    CMouseArea {
        id: mouseArea
        anchors.fill: parent
        onClicked: root.clicked()
    }

    // Made when first wanted: a window has many buttons and few of them are ever hovered.
    Loader {
        active: root.toolTip.length > 0 && root.hovered
        sourceComponent: CToolTip {
            parent: root
            visible: true
            text: root.toolTip
        }
    }
}
