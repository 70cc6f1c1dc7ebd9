import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// The check group's rules, driven through real buttons clicked by the pointer.
// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 400
    height: 300

    TestCase {
        id: testCase
        name: "CheckButtonGroup"
        when: windowShown

        Component {
            id: groupWithRows
            Column {
                property alias group: group
                property alias rows: rows
                property var calls: []
                CCheckButtonGroup {
                    id: group
                    handleCheckedChanged: function (index) { calls.push(index) }
                }
                Repeater {
                    id: rows
                    model: ["3x", "2x", "1x", "0.5x"]
                    CCheckTextButton {
                        text: modelData
                        checked: index === 2
                        buttonGroup: group
                    }
                }
            }
        }

        function make(exclusive) {
            const view = createTemporaryObject(groupWithRows, scene)
            verify(view)
            view.group.exclusive = exclusive
            return view
        }

        function test_registrationOrderIsTheIndex() {
            const view = make(true)
            compare(view.group.buttons.length, 4)
            for (let i = 0; i < 4; ++i)
                compare(view.group.buttons[i], view.rows.itemAt(i))
            compare(view.group.checkedButton, view.rows.itemAt(2))
        }

        function test_click_data() {
            return [
                { tag: "exclusive: another row", exclusive: true, clicks: [0], checked: [0], calls: [0] },
                { tag: "exclusive: the checked row again", exclusive: true, clicks: [2, 2], checked: [2], calls: [] },
                { tag: "exclusive: back and forth", exclusive: true, clicks: [1, 2, 1], checked: [1], calls: [1, 2, 1] },
                { tag: "non-exclusive toggles", exclusive: false, clicks: [0, 2, 3], checked: [0, 3], calls: [] },
            ]
        }

        function test_click(data) {
            const view = make(data.exclusive)
            for (const i of data.clicks)
                mouseClick(view.rows.itemAt(i))
            const checked = view.group.getCheckedButtons().map(function (b) { return view.group.buttons.indexOf(b) })
            compare(checked, data.checked)
            compare(view.calls, data.calls)
            if (data.exclusive)
                compare(view.group.checkedButton, view.rows.itemAt(data.checked[0]))
        }

        function test_membership() {
            const view = make(true)
            const group = view.group
            group.checkButtonByIndex(7)
            group.checkButtonByIndex(-1)
            compare(view.calls, [])

            group.addButton(view.rows.itemAt(0))
            compare(group.buttons.length, 4)

            // A checked row leaving takes the group's choice with it.
            view.rows.model = ["a", "b"]
            compare(group.buttons.length, 2)
            compare(group.checkedButton, null)

            // A later checked arrival replaces an earlier one.
            view.rows.model = ["a", "b", "c", "d"]
            compare(group.buttons.length, 4)
            compare(group.checkedButton, view.rows.itemAt(2))
        }
    }
}
