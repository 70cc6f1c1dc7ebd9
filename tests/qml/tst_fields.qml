import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// Text field edits and combo box rows.
// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 400
    height: 300

    TestCase {
        id: testCase
        name: "Fields"
        when: windowShown

        Component {
            id: field
            CTextField {
                property var edits: []
                width: 120
                onValueEdited: edits.push(text)
            }
        }
        Component { id: combo; CComboBox {} }
        Component {
            id: listModel
            ListModel {
                ListElement { name: "H.264"; codec: 27 }
                ListElement { name: "HEVC"; codec: 173 }
            }
        }

        function test_valueEditedOnlyForUserEdits() {
            const f = createTemporaryObject(field, scene, { text: "1080" })
            f.setText("1920")
            compare(f.text, "1920")
            compare(f.edits, [])

            f.forceActiveFocus()
            f.cursorPosition = f.text.length
            keyClick(Qt.Key_Backspace)
            keyClick("5")
            compare(f.edits, ["192", "1925"])

            f.setText("")
            compare(f.edits.length, 2)
        }

        function test_rowText_data() {
            return [
                { tag: "plain list", model: ["mp4", "mkv"], role: "", texts: ["mp4", "mkv"] },
                { tag: "records with a role", model: [{ name: "1080p" }, { name: "720p" }], role: "name",
                  texts: ["1080p", "720p"] },
                { tag: "list model with a role", model: "listModel", role: "name", texts: ["H.264", "HEVC"] },
            ]
        }

        function test_rowText(data) {
            const model = data.model === "listModel" ? createTemporaryObject(listModel, scene) : data.model
            const box = createTemporaryObject(combo, scene, { textRole: data.role, model: model })
            compare(box.width, 140)
            compare(box.height, 30)
            mouseClick(box)
            tryCompare(box.popup, "opened", true)
            const list = box.popup.contentItem
            tryCompare(list, "count", data.texts.length)
            for (let i = 0; i < data.texts.length; ++i) {
                list.currentIndex = i
                compare(list.currentItem.text, data.texts[i])
            }
            verify(String(box.indicator.source).endsWith("down_press.png"))
            list.currentIndex = 1
            mouseClick(list.currentItem)
            tryCompare(box.popup, "visible", false)
            compare(box.currentIndex, 1)
            compare(box.currentText, data.texts[1])
            verify(String(box.indicator.source).endsWith("down.png"))
        }
    }
}
