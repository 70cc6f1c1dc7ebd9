import QtQuick 2.15
import QtGraphicalEffects 1.15

// A soft shadow all around `target`, drawn together with the target itself.
DropShadow {
    property Item target: null

    anchors.fill: target
    source: target
    horizontalOffset: 0
    verticalOffset: 0
    radius: 10
    samples: 25
    color: Theme.shadow
    // The blur is drawn once into a texture and only redrawn when the target changes. Left
    // live, its 25-tap shader runs over the whole window in every scene-graph frame: under
    // the main window that is every video frame, and with software OpenGL it cost more than
    // decoding and drawing the video together (about 65 ms a frame).
    cached: true
}
