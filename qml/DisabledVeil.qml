import QtQuick 2.15
import CustomUtils 1.0

// Dims a disabled button of the control bar to 35 %, as an opacity of 0.35 would, by laying the
// bar's own background over it at 65 %. The button's icon then keeps the texture shader of
// every other icon: an icon drawn with opacity needs a shader of its own, which software
// OpenGL builds slowly on a first start, and the previous/next buttons are disabled at start.
// Only valid where the bar's background is what lies beneath.
Rectangle {
    anchors.fill: parent
    visible: !parent.enabled
    color: Theme.windowBackground
    opacity: 0.65
    // Antialiased for the same reason: the rounded rectangles use that colour shader already.
    antialiasing: true
}
