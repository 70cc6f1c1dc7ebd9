import QtQuick 2.15
import CustomUtils 1.0

// One labelled drop-down of a tool form. Rows of records show their "text" field.
Column {
    id: root

    property alias title: heading.text
    property alias model: box.model
    property alias textRole: box.textRole
    property alias currentIndex: box.currentIndex
    property alias currentText: box.currentText

    width: 100
    spacing: 4

    ToolHeading { id: heading }

    CComboBox {
        id: box
        width: root.width
        height: 28
        textRole: "text"
    }
}
