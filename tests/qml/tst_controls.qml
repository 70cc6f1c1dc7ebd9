import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// The control library: every type it lists, the clickable controls' pointer conventions and
// icon stem rule, the check group, the fields and the wave progress.
// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 400
    height: 300

    TestCase {
        name: "Module"
        when: windowShown

        // Makes one type the qmldir lists and puts it in its pointer states, shown or open.
        function exercise(kind, name, file) {
            let item
            if (kind === "singleton")
                item = createTemporaryQmlObject("import QtQml 2.15; import CustomUtils 1.0; QtObject { property var it: "
                                                + name + " }", scene).it
            else if (kind === "internal")
                item = createTemporaryObject(Qt.createComponent("qrc:/CustomUtils/" + file), scene)
            else
                item = createTemporaryQmlObject("import CustomUtils 1.0; " + name + " {}", scene)
            verify(item, name)
            for (const state of ["hovered", "pressed", "checked"]) {
                try { item[state] = true } catch (readOnly) {}
            }
            if (typeof item.notify === "function")
                [CNotification.Notice, CNotification.Warning, CNotification.Error].forEach(function (t) { item.notify(t, "/shots/1.png") })
            if (typeof item.showMessage === "function")
                item.showMessage("Delete?", function () {})
            else if ("transientParent" in item)
                item.show()
            else if (typeof item.open === "function")
                item.open()
            if (item.popup && typeof item.popup.open === "function")
                item.popup.open()
            return item
        }

        // Every type, made and exercised, runs a moment without a single warning from the
        // library's files.
        function test_everyTypeRunsWithoutWarnings() {
            const types = qmlWarnings.moduleTypes()
            verify(types.length > 20)
            const windows = []
            let warnings = 0
            qmlWarnings.start()
            try {
                for (const [kind, name, file] of types) {
                    const item = exercise(kind, name, file)
                    if ("transientParent" in item)
                        windows.push(item)
                }
                wait(1000)
            } finally {
                windows.forEach(function (window) { window.hide() })
                warnings = qmlWarnings.stop()
            }
            compare(warnings, 0)
        }
    }

    TestCase {
        name: "Controls"
        when: windowShown

        Component { id: cButton; CButton { width: 40; height: 40 } }
        Component { id: cToolButton; CToolButton { width: 120 } }
        Component { id: cTextButton; CTextButton { width: 80 } }
        Component { id: cOkButton; COKButton { width: 80 } }
        Component { id: cCheckButton; CCheckButton { width: 80; height: 24 } }
        Component { id: cCheckTextButton; CCheckTextButton { width: 80 } }
        Component { id: cSpy; SignalSpy { signalName: "clicked" } }

        function make(component, props) {
            const item = createTemporaryObject(component, scene, props || {})
            verify(item)
            return item
        }

        function iconOf(item) {
            // The first Image below the control is its icon.
            const queue = [item]
            while (queue.length > 0) {
                const it = queue.shift()
                if (it !== item && it.source !== undefined && it.fillMode !== undefined)
                    return it
                for (let i = 0; i < it.children.length; ++i)
                    queue.push(it.children[i])
                if (it.contentItem && it.contentItem !== it)
                    queue.push(it.contentItem)
            }
            return null
        }

        function test_stem_data() {
            return [
                { tag: "button idle", component: cButton, props: {}, hover: false, file: "play.png" },
                { tag: "button hovered", component: cButton, props: {}, hover: true, file: "play_press.png" },
                { tag: "fixed png never switches", component: cButton, props: { imageSource: "../Resources/images/logo.png" },
                  hover: true, file: "images/logo.png" },
                { tag: "tool button checked", component: cToolButton, props: { checked: true }, hover: false,
                  file: "play_press.png" },
                { tag: "check button checked", component: cCheckButton, props: { checked: true }, hover: false,
                  file: "play_press.png" },
                { tag: "check button hovered stays plain", component: cCheckButton, props: {}, hover: true,
                  file: "play.png" },
            ]
        }

        function test_stem(data) {
            const props = Object.assign({ imageSource: "../Resources/control/play" }, data.props)
            const item = make(data.component, props)
            if (data.hover)
                mouseMove(item, 5, 5)
            const icon = iconOf(item)
            verify(icon)
            const source = String(icon.source)
            const file = data.file.indexOf("/") < 0 ? "control/" + data.file : data.file
            verify(source.endsWith("/Resources/" + file), source)
            compare(icon.status, Image.Ready)
            mouseMove(scene, scene.width - 1, scene.height - 1)
        }

        function test_click_data() {
            return [
                { tag: "CButton", component: cButton, props: {} },
                { tag: "CToolButton", component: cToolButton, props: { text: "Tools" } },
                { tag: "CTextButton", component: cTextButton, props: { text: "Select" } },
                { tag: "COKButton", component: cOkButton, props: { text: "OK" } },
                { tag: "CCheckTextButton", component: cCheckTextButton, props: { text: "1x" } },
            ]
        }

        // A click needs press and release inside; leaving drops the pressed look.
        function test_click(data) {
            const item = make(data.component, data.props)
            const spy = createTemporaryObject(cSpy, scene, { target: item })

            mouseClick(item)
            compare(spy.count, 1)

            mousePress(item, 5, 5)
            verify(item.pressed)
            mouseMove(item, item.width + 50, 5)
            verify(!item.pressed)
            mouseRelease(item, item.width + 50, 5)
            compare(spy.count, 1)
        }

        function test_disabledOkButtonIgnoresClicks() {
            const item = make(cOkButton, { text: "OK", enable: false })
            const spy = createTemporaryObject(cSpy, scene, { target: item })
            mouseClick(item)
            compare(spy.count, 0)
            compare(String(item.color), String(Theme.okButtonDisabled))
        }

        // Who decides the check state: an owner's handler, else the group, else the button.
        function test_checkButtonOwnership() {
            let calls = 0
            const owned = make(cCheckButton, { text: "mp4", handleChecked: function () { ++calls } })
            mouseClick(owned)
            mouseClick(owned)
            compare(calls, 2)
            verify(!owned.checked)
            owned.checked = true
            mouseClick(owned)
            verify(owned.checked)

            const free = make(cCheckButton, { text: "mkv" })
            mouseClick(free)
            verify(free.checked)
            mouseClick(free)
            verify(!free.checked)
        }
    }

    // The check group's rules, driven through real buttons clicked by the pointer.
    TestCase {
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

    // Text field edits and combo box rows.
    TestCase {
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

    TestCase {
        name: "WaveProgress"
        when: windowShown

        Component { id: wave; WaveProgress { radius: 100; radiusMargin: 5 } }

        // The inner circle is 2 x (100 - 5) = 190 high; the fill's top sits 1.1 x that times the
        // share still missing.
        function test_fill_data() {
            return [
                { tag: "empty", value: 0, to: 100, loading: false, top: 209, spinning: true, label: "0/100" },
                { tag: "half", value: 50, to: 100, loading: false, top: 104.5, spinning: true, label: "50/100" },
                { tag: "done", value: 100, to: 100, loading: false, top: 0, spinning: false, label: "100/100" },
                { tag: "nothing to count", value: 3, to: 0, loading: false, spinning: false, label: "3/0" },
                { tag: "loading", value: 0, to: 100, loading: true, top: 209, spinning: true, label: "loading" },
            ]
        }

        function test_fill(data) {
            const w = createTemporaryObject(wave, scene, { to: data.to, value: data.value, loading: data.loading })
            compare(w.width, 200)
            compare(w.labelText, data.label)
            compare(w.spinning, data.spinning)
            if (data.top !== undefined)
                fuzzyCompare(w.fillTop, data.top, 0.001)
        }

        function test_stop_data() {
            return [ { tag: "loading", loading: true }, { tag: "counting", loading: false } ]
        }

        function test_stop(data) {
            let stops = 0
            const w = createTemporaryObject(wave, scene, { to: 100, value: 10, loading: data.loading,
                                                              handleStop: function () { ++stops } })
            verify(!w.stopShown)
            mouseMove(w, 101, 100)
            tryVerify(function () { return w.stopShown })
            mouseClick(w, 100, 100)
            compare(stops, 1)
            verify(!w.visible)
        }
    }
}
