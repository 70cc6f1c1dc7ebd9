import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// Mouse input reaches only items inside the view's root, so the cases live in a plain root item.
Item {
    id: scene
    width: 300
    height: 300

    TestCase {
        id: testCase
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
