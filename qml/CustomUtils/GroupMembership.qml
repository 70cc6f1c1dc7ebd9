import QtQuick 2.15

// Keeps a button registered with whatever group it is given, in creation order, and takes it
// out again when the group changes or the button goes away.
QtObject {
    property var button: null
    property var group: null

    property var joined: null
    property bool ready: false

    function sync() {
        if (!ready || joined === group)
            return
        if (joined)
            joined.removeButton(button)
        joined = group
        if (joined)
            joined.addButton(button)
    }

    onGroupChanged: sync()
    Component.onCompleted: {
        ready = true
        sync()
    }
    Component.onDestruction: {
        if (joined)
            joined.removeButton(button)
    }
}
