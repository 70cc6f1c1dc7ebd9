import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0
import "qrc:/qml"
import "qrc:/qml/MainLogic.js" as Logic

TestCase {
    name: "MainLogic"

    function test_nameFilters_data() {
        return [
            { tag: "mixed case", formats: ["mp4", "MKV"],
              want: ["All Supported Formats (*.mp4 *.mkv)", "MP4 (*.mp4)", "MKV (*.mkv)"] },
            { tag: "empty", formats: [], want: [] },
            { tag: "none", formats: undefined, want: [] }
        ]
    }
    function test_nameFilters(row) {
        compare(Logic.nameFilters(row.formats), row.want)
    }

    function test_openAction_data() {
        return [
            { tag: "missing before ready", exists: false, ready: false, want: "missing" },
            { tag: "missing when ready", exists: false, ready: true, want: "missing" },
            { tag: "before ready", exists: true, ready: false, want: "remember" },
            { tag: "ready", exists: true, ready: true, want: "load" }
        ]
    }
    function test_openAction(row) {
        compare(Logic.openAction(row.exists, row.ready), row.want)
    }

    function test_indexOfUrl_data() {
        var urls = ["file:///a.mp4", "file:///b.mp4", "file:///a.mp4"]
        return [
            { tag: "first match", urls: urls, url: "file:///a.mp4", current: 1, want: 0 },
            { tag: "later row", urls: urls, url: "file:///b.mp4", current: 0, want: 1 },
            { tag: "no match keeps", urls: urls, url: "file:///c.mp4", current: 2, want: 2 },
            { tag: "nothing playing keeps", urls: ["" ], url: "", current: 1, want: 1 }
        ]
    }
    function test_indexOfUrl(row) {
        compare(Logic.indexOfUrl(row.urls, row.url, row.current), row.want)
    }

    function test_neighbours_data() {
        return [
            { tag: "first of three", index: 0, count: 3, prev: false, next: true },
            { tag: "middle", index: 1, count: 3, prev: true, next: true },
            { tag: "last", index: 2, count: 3, prev: true, next: false },
            { tag: "empty history", index: 0, count: 0, prev: false, next: false }
        ]
    }
    function test_neighbours(row) {
        compare(Logic.canPrevious(row.index), row.prev)
        compare(Logic.canNext(row.index, row.count), row.next)
    }

    function test_steps() {
        compare(Logic.stepBack(3), 0)
        compare(Logic.stepBack(12.5), 7.5)
        compare(Logic.stepForward(57, 60), 60)
        compare(Logic.stepForward(10, 60), 15)
    }

    function test_menuWidth_data() {
        return [
            { tag: "narrow rows take the floor", widths: [40, 72], minimum: 104, want: 104 },
            { tag: "widest row plus margins", widths: [72, 150, 90], minimum: 104, want: 182 },
            { tag: "speed menu floor", widths: [40], minimum: 84, want: 84 },
            { tag: "no rows", widths: [], minimum: 104, want: 104 }
        ]
    }
    function test_menuWidth(row) {
        compare(Logic.menuWidth(row.widths, row.minimum), row.want)
    }

    function test_preview_data() {
        return [
            { tag: "middle", x: 150, bar: 300, duration: 61, seconds: 30.5, box: 45 },
            { tag: "left of the bar", x: -20, bar: 300, duration: 61, seconds: 0, box: 0 },
            { tag: "right of the bar", x: 320, bar: 300, duration: 61, seconds: 61, box: 90 },
            { tag: "two decimals", x: 1, bar: 3, duration: 10, seconds: 3.33 },
            { tag: "no duration", x: 100, bar: 300, duration: 0, seconds: 0 }
        ]
    }
    function test_preview(row) {
        compare(Logic.previewSeconds(row.x, row.bar, row.duration), row.seconds)
        if (row.box !== undefined)
            compare(Logic.previewX(row.x, 210, row.bar), row.box)
    }

    function test_previewThrottle() {
        verify(Logic.previewDue(1000, 0, 300))
        verify(!Logic.previewDue(1299, 1000, 300))
        verify(Logic.previewDue(1300, 1000, 300))
    }

    function test_resize_data() {
        return [
            { tag: "top left", x: 5, y: 5, edges: Qt.TopEdge | Qt.LeftEdge, cursor: Qt.SizeFDiagCursor },
            { tag: "bottom right", x: 990, y: 670, edges: Qt.BottomEdge | Qt.RightEdge, cursor: Qt.SizeFDiagCursor },
            { tag: "top right", x: 980, y: 19, edges: Qt.TopEdge | Qt.RightEdge, cursor: Qt.SizeBDiagCursor },
            { tag: "bottom left", x: 19, y: 660, edges: Qt.BottomEdge | Qt.LeftEdge, cursor: Qt.SizeBDiagCursor },
            { tag: "left edge", x: 0, y: 300, edges: Qt.LeftEdge, cursor: Qt.SizeHorCursor },
            { tag: "bottom edge", x: 500, y: 660, edges: Qt.BottomEdge, cursor: Qt.SizeVerCursor },
            { tag: "inside", x: 20, y: 20, edges: 0, cursor: Qt.ArrowCursor },
            { tag: "just inside right", x: 977, y: 300, edges: 0, cursor: Qt.ArrowCursor }
        ]
    }
    function test_resize(row) {
        var edges = Logic.resizeEdges(row.x, row.y, 998, 680, 20)
        compare(edges, row.edges)
        compare(Logic.resizeCursor(edges), row.cursor)
    }

    function test_routing() {
        compare(Logic.toolForCommand(""), -1)
        compare(Logic.toolForCommand("-compress"), 0)
        compare(Logic.toolForCommand("-crop"), 1)
        compare(Logic.toolForCommand("-merge"), -2)
        verify(Logic.isCardImage("CVideoCard3.png"))
        verify(!Logic.isCardImage("CImageListView3.png"))
        verify(!Logic.isCardImage(""))
        compare(Logic.cardDuration(0, "00:00:00"), "--:--")
        compare(Logic.cardDuration(61, "00:01:01"), "00:01:01")
        compare(Logic.cardSeconds(0, "file:///a.mp4", "file:///a.mp4", 42), 42)
        compare(Logic.cardSeconds(0, "file:///b.mp4", "file:///a.mp4", 42), 0)
        compare(Logic.cardSeconds(30, "file:///a.mp4", "file:///a.mp4", 42), 30)
    }

    Component {
        id: defaultWidget
        DefaultWidget {}
    }

    // A handler sees only the first of several files; without one every file is queued.
    function test_defaultWidgetTakesFiles() {
        FileModel.clear()
        var seen = []
        var w = createTemporaryObject(defaultWidget, this, { handleOpenFile: function (u) { seen.push(u) } })
        w.take(["file:///a.mp4", "file:///b.mp4", "file:///c.mp4"])
        compare(seen, ["file:///a.mp4"])
        compare(FileModel.rowCount(), 0)

        var queued = createTemporaryObject(defaultWidget, this)
        queued.take(["file:///a.mp4", "file:///b.mp4"])
        compare(FileModel.rowCount(), 2)
        FileModel.clear()
    }
}
