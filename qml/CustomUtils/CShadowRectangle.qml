import QtQuick 2.15

// A soft shadow all around `target`: rounded outlines, one per pixel outwards, each fainter
// than the last. Unlike a blurred copy of the target it needs no offscreen buffers, which on
// a software renderer cost several window-sized textures and a redraw whenever the target
// changes. Declare it before the target so it lies beneath.
Item {
    id: root

    property Item target: null
    // How far the shadow reaches beyond the target, in pixels.
    property int spread: 10

    anchors.fill: target

    Repeater {
        model: root.target ? root.spread : 0
        Rectangle {
            readonly property int step: index + 1
            x: -step
            y: -step
            width: root.width + 2 * step
            height: root.height + 2 * step
            radius: (root.target && root.target.radius !== undefined ? root.target.radius : 0) + step
            color: Theme.transparent
            border.width: 1
            border.color: Theme.shadow
            // A Gaussian fall-off, as a blur of the edge would give.
            opacity: 0.55 * Math.exp(-(step * step) / (root.spread * root.spread / 3))
            antialiasing: true
        }
    }
}
