import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 400
    height: 600

    TestCase {
        id: testCase
        name: "NotificationsAndDialogs"
        when: windowShown

        Component { id: stack; CNotification {} }

        function paths(s) {
            const out = []
            for (let i = 0; i < s.model.count; ++i)
                out.push(s.model.get(i).path)
            return out
        }

        function test_newestOnTopEachOnItsOwnTimer() {
            const s = createTemporaryObject(stack, scene)
            s.notify(CNotification.Notice, "/shots/1.png", 300)
            s.notify(CNotification.Warning, "/shots/2.png", 600)
            s.notify(CNotification.Error, "/shots/3.png", 900)
            compare(paths(s), ["/shots/3.png", "/shots/2.png", "/shots/1.png"])
            tryVerify(function () { return s.view.itemAtIndex(0) })
            compare(s.view.itemAtIndex(0).message, "Screenshot saved")

            tryCompare(s.model, "count", 2, 1000)
            compare(paths(s), ["/shots/3.png", "/shots/2.png"])
            tryCompare(s.model, "count", 1, 1000)
            compare(paths(s), ["/shots/3.png"])
            tryCompare(s.model, "count", 0, 1000)
        }

        function test_defaults() {
            const s = createTemporaryObject(stack, scene)
            s.notify()
            const e = s.model.get(0)
            compare([e.type, e.path, e.timeout], [CNotification.Notice, "", 3000])
            tryVerify(function () { return s.view.itemAtIndex(0) })
            compare(s.view.itemAtIndex(0).message, "There is currently no file playing")
        }

        function test_height_data() {
            return [
                { tag: "twelve rows show whole", rows: 12, height: 463 },
                { tag: "a thirteenth is clipped", rows: 13, height: 500 },
            ]
        }

        function test_height(data) {
            const s = createTemporaryObject(stack, scene)
            for (let i = 0; i < data.rows; ++i)
                s.notify(CNotification.Notice, "", 60000)
            tryCompare(s, "height", data.height)
            compare(s.width, 200)
        }

        function test_messageBoxReplacesItsQuestion() {
            let first = 0, second = 0
            CMessageBox.showMessage("Delete?", function () { ++first })
            CMessageBox.showMessage("Clear the list?", function () { ++second })
            tryCompare(CMessageBox, "visible", true)
            compare(findChild(CMessageBox.contentItem, "messageText").text, "Clear the list?")
            verify(findChild(CMessageBox.contentItem, "cancelButton").visible)
            mouseClick(findChild(CMessageBox.contentItem, "okButton"))
            compare([first, second], [0, 1])
            verify(!CMessageBox.visible)

            CMessageBox.showMessage("Delete?", function () { ++first })
            const cancel = findChild(CMessageBox.contentItem, "cancelButton")
            tryVerify(function () { return cancel.x + cancel.width < findChild(CMessageBox.contentItem, "okButton").x })
            mouseClick(cancel)
            compare(first, 0)
            verify(!CMessageBox.visible)

            // An information box offers only the confirmation, which just closes it.
            CMessageBox.showMessage("File does not exist")
            verify(!findChild(CMessageBox.contentItem, "cancelButton").visible)
            mouseClick(findChild(CMessageBox.contentItem, "okButton"))
            verify(!CMessageBox.visible)
            compare([first, second], [0, 1])
        }

        function test_relevanceDialogReopensFullyChecked() {
            RelevanceDialog.show()
            tryCompare(RelevanceDialog, "visible", true)
            const buttons = RelevanceDialog.formatButtons()
            verify(buttons.length > 4)
            mouseClick(buttons[0])
            mouseClick(buttons[buttons.length - 1])
            verify(!buttons[0].checked)
            verify(!buttons[buttons.length - 1].checked)
            mouseClick(findChild(RelevanceDialog.contentItem, "okButton"))
            verify(!RelevanceDialog.visible)

            RelevanceDialog.show()
            verify(RelevanceDialog.formatButtons().every(function (b) { return b.checked }))
            mouseClick(findChild(RelevanceDialog.contentItem, "closeButton"))
            verify(!RelevanceDialog.visible)
        }
    }
}
