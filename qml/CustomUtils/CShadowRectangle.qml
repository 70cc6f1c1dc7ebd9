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
}
