import QtQuick 2.15

// The pointer handling every clickable control shares: a pointing hand, a pressed look only
// while the pointer is over the control, and MouseArea's own rule that a click needs the
// release inside.
MouseArea {
    // MouseArea's `pressed` stays true outside the area; this one does not.
    readonly property bool held: pressed && containsMouse

    hoverEnabled: true
    cursorShape: Qt.PointingHandCursor
}
