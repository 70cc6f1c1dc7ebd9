import QtQuick 2.15
import QtQuick.Controls 2.15

// The shared tool tip: dark grey text in a white box, shown after a short rest of the pointer.
ToolTip {
    id: tip

    delay: 500
    timeout: 5000
    padding: 6
    font.pixelSize: Theme.fontCaption

    contentItem: Text {
        text: tip.text
        font: tip.font
        color: Theme.toolTipText
    }
    background: Rectangle {
        color: Theme.toolTipBackground
        border.width: 1
        border.color: Theme.toolTipBorder
        radius: Theme.radiusTool
    }
}
