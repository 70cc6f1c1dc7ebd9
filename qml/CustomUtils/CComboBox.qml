import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Templates 2.15 as T

// The form drop-down. Rows read `textRole` when the model is made of records, else the plain
// entry.
T.ComboBox {
    id: root

    // One row's text, for models of records and plain lists alike. Read through the row's
    // `model`: a list model whose rows are appended at run time gives its delegates no
    // `modelData` at all.
    function rowText(model) {
        if (!textRole)
            return model.modelData
        return Array.isArray(root.model) ? model.modelData[textRole] : model[textRole]
    }

    implicitWidth: 140
    implicitHeight: 30
    leftPadding: 12
    rightPadding: indicator.width
    font.pixelSize: Theme.fontSmall

    background: Rectangle {
        color: Theme.comboBackground
        radius: Theme.radiusTool
    }

    contentItem: Text {
        text: root.displayText
        font: root.font
        color: Theme.textPrimary
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    indicator: Image {
        x: root.width - width
        anchors.verticalCenter: parent.verticalCenter
        width: 22
        height: 22
        source: root.popup.visible ? "../Resources/edit/down_press.png" : "../Resources/edit/down.png"
        smooth: true
        mipmap: true
    }

    delegate: ItemDelegate {
        id: row
        width: ListView.view ? ListView.view.width : root.width
        height: 28
        padding: 0
        leftPadding: 7
        rightPadding: 7
        highlighted: root.highlightedIndex === index
        hoverEnabled: true
        text: root.rowText(model)
        contentItem: Text {
            text: row.text
            font: root.font
            color: Theme.textPrimary
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        background: Rectangle {
            radius: Theme.radiusTool
            color: row.highlighted ? Theme.comboHighlight : Theme.transparent
        }
    }

    popup: T.Popup {
        y: root.height
        width: root.width
        padding: 5
        implicitHeight: Math.min(list.contentHeight, 200) + topPadding + bottomPadding

        contentItem: ListView {
            id: list
            clip: true
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            ScrollIndicator.vertical: ScrollIndicator {}
        }
        background: Rectangle {
            color: Theme.comboPopup
            radius: Theme.radiusTool
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
