import QtQuick 2.15
import QtQuick.Templates 2.15 as T

// A single-line field. `valueEdited` reports later changes of the text; the initial text and
// text set through setText() stay silent, so a screen can mirror one field into another
// without feeding the change back.
T.TextField {
    id: root

    property color borderColor: Theme.fieldBorder
    property color focusBorderColor: Theme.accent
    property color backgroundColor: Theme.fieldBackground
    property int borderWidth: 1
    property int radius: Theme.radiusTool

    property bool settingText: false
    property bool completed: false

    signal valueEdited(string text)

    function setText(newText) {
        settingText = true
        text = newText
        settingText = false
    }

    onTextChanged: {
        if (completed && !settingText)
            valueEdited(text)
    }
    Component.onCompleted: completed = true

    implicitWidth: 56
    implicitHeight: 32
    leftPadding: 12
    rightPadding: 12
    topPadding: 6
    bottomPadding: 6
    color: Theme.textPrimary
    selectionColor: Theme.accent
    selectedTextColor: Theme.textPrimary
    placeholderTextColor: Theme.textSecondary
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true

    // The template leaves the placeholder to the style.
    Text {
        x: root.leftPadding
        y: root.topPadding
        width: root.width - root.leftPadding - root.rightPadding
        height: root.height - root.topPadding - root.bottomPadding
        text: root.placeholderText
        font: root.font
        color: root.placeholderTextColor
        verticalAlignment: root.verticalAlignment
        elide: Text.ElideRight
        visible: root.length === 0 && !root.preeditText
    }

    background: Rectangle {
        radius: root.radius
        color: root.backgroundColor
        border.width: root.borderWidth
        border.color: root.activeFocus ? root.focusBorderColor : root.borderColor
        Behavior on border.color {
            ColorAnimation { duration: 150 }
        }
    }

    HoverHandler {
        cursorShape: Qt.IBeamCursor
    }
}
