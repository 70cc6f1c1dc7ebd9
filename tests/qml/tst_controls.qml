import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// The pointer conventions shared by the clickable controls and the icon stem rule.
// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 400
    height: 300

    TestCase {
        id: testCase
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
}
