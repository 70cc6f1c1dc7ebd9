import QtQuick 2.15
import QtQuick.Controls 2.15
import CustomUtils 1.0
import "MainLogic.js" as Logic

// A pop-up menu that unrolls upwards from a baseline. Rows go into the content column; rows a
// Repeater makes all take the width of the widest row.
Popup {
    id: menu

    // y in the parent's coordinates that the menu grows up from; the control bar gives every
    // menu the same one so they all open along one line.
    property real baseY: 0
    property int minimumWidth: 104
    property real maxWidth: 0
    default property alias content: column.data

    padding: 0
    modal: false
    closePolicy: Popup.CloseOnReleaseOutside
    width: maxWidth > 0 ? maxWidth : column.implicitWidth + 12
    height: 0
    y: baseY
    background: Item {}

    contentItem: Rectangle {
        color: Theme.popup
        radius: Theme.radiusMain
        clip: true

        Column {
            id: column
            x: 6
            y: 6
            width: menu.width - 12
        }
    }

    enter: Transition {
        NumberAnimation { property: "height"; from: 0; to: menu.fullHeight(); duration: 200; easing.type: Easing.OutQuad }
        NumberAnimation { property: "y"; from: menu.baseY; to: menu.baseY - menu.fullHeight(); duration: 200; easing.type: Easing.OutQuad }
    }
    exit: Transition {
        NumberAnimation { property: "height"; to: 0; duration: 200; easing.type: Easing.InQuad }
        NumberAnimation { property: "y"; to: menu.baseY; duration: 200; easing.type: Easing.InQuad }
    }

    function fullHeight() {
        return column.implicitHeight + 12
    }

    // Rows in the column: plain children as they are, a Repeater by the items it made.
    function rows() {
        var found = []
        for (var i = 0; i < column.children.length; ++i) {
            var child = column.children[i]
            if (child instanceof Repeater) {
                for (var j = 0; j < child.count; ++j) {
                    if (child.itemAt(j))
                        found.push({ item: child.itemAt(j), repeated: true })
                }
            } else {
                found.push({ item: child, repeated: false })
            }
        }
        return found
    }

    function calculateMaxWidth() {
        var widths = rows().filter(function (r) { return r.item.visible || r.repeated })
                           .map(function (r) { return r.item.implicitWidth })
        maxWidth = Logic.menuWidth(widths, minimumWidth)
        return maxWidth
    }

    function applyMaxWidth() {
        rows().forEach(function (r) {
            if (r.repeated)
                r.item.width = maxWidth - 12
        })
    }

    // Track lists arrive after the menu was built; measure once their rows are laid out.
    function updateHeight() {
        Qt.callLater(function () {
            Qt.callLater(function () {
                Qt.callLater(function () {
                    calculateMaxWidth()
                    applyMaxWidth()
                    if (menu.opened) {
                        menu.height = fullHeight()
                        menu.y = baseY - fullHeight()
                    }
                })
            })
        })
    }

    onAboutToShow: {
        // Rows that changed while the menu was hidden are not laid out yet.
        column.forceLayout()
        calculateMaxWidth()
        applyMaxWidth()
    }

}
