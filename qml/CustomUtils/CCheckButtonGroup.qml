import QtQuick 2.15

// Ties check buttons together. The index of a button is its registration order, which for
// repeater-made rows is their model order.
QtObject {
    property var buttons: []
    property var checkedButton: null
    property bool exclusive: true
    property var handleCheckedChanged: null

    function addButton(b) {
        if (!b || buttons.indexOf(b) >= 0)
            return
        buttons = buttons.concat([b])
        if (b.checked)
            checkedButton = b
    }

    function removeButton(b) {
        const i = buttons.indexOf(b)
        if (i < 0)
            return
        const rest = buttons.slice()
        rest.splice(i, 1)
        buttons = rest
        if (checkedButton === b)
            checkedButton = null
    }

    function checkButtonByIndex(i) {
        if (i < 0 || i >= buttons.length)
            return
        checkButton(buttons[i])
    }

    function checkButton(b) {
        const i = buttons.indexOf(b)
        if (i < 0)
            return
        if (!exclusive) {
            b.checked = !b.checked
            if (b.checked)
                checkedButton = b
            else if (checkedButton === b)
                checkedButton = getCheckedButtons()[0] || null
            return
        }
        if (checkedButton === b)
            return
        if (checkedButton)
            checkedButton.checked = false
        b.checked = true
        checkedButton = b
        if (typeof handleCheckedChanged === "function")
            handleCheckedChanged(i)
    }

    function getCheckedButtons() {
        return buttons.filter(function (b) { return b.checked })
    }
}
