import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0
import "qrc:/qml"
import "qrc:/qml/ToolLogic.js" as Logic

// The tool window and its pages with the real services and a real clip. Where a page would
// wait for a save dialog, the test gives the dialog's answer by calling what the dialog calls.
Item {
    id: top

    Component { id: windowComponent; CToolWindow {} }
    SignalSpy { id: finished; target: CommonTool; signalName: "videoCompressionFinished" }

    TestCase {
        name: "ToolLogic"

        function test_names_data() {
            return [
                { tag: "export name", got: Logic.exportName("movie", "mkv"), want: "movie_export.mkv" },
                { tag: "new container", got: Logic.replaceSuffix("clip_export.mp4", "mkv"), want: "clip_export.mkv" },
                { tag: "no dot", got: Logic.replaceSuffix("clip", "mkv"), want: "clip.mkv" },
                { tag: "last dot only", got: Logic.replaceSuffix("a.b.mp4", "mov"), want: "a.b.mov" },
                { tag: "typed without suffix", got: Logic.withDefaultSuffix("/t.d/out", "mp4"), want: "/t.d/out.mp4" },
                { tag: "typed with suffix", got: Logic.withDefaultSuffix("/t/out.mkv", "mp4"), want: "/t/out.mkv" },
                { tag: "second argument", got: FileHelper.getFilePath("file:///t/a%20b.mp4", false), want: "/t/a b.mp4" }
            ]
        }
        function test_names(data) {
            compare(data.got, data.want)
        }

        function test_numbers_data() {
            return [
                { tag: "lock width 1000", got: Logic.lockedHeight(1000, 1280 / 720), want: 563 },
                { tag: "lock height 360", got: Logic.lockedWidth(360, 1280 / 720), want: 640 },
                { tag: "wav", got: Logic.audioCodecId("wav"), want: 65536 },
                { tag: "m4a is aac", got: Logic.audioCodecId("m4a"), want: 86018 },
                { tag: "unknown audio", got: Logic.audioCodecId("opus"), want: 0 },
                // A 90.6 s file: the far end rounds to 91, past the file's end, and stays so.
                { tag: "far end rounds up", got: Logic.valueAt(280, 0, 90.6, 300, 20, 1), want: 91 },
                { tag: "start handle stops a width short", got: Logic.clampStartX(250, 100, 20), want: 80 },
                { tag: "end handle stays inside", got: Logic.clampEndX(400, 0, 300, 20), want: 280 },
                { tag: "remove last current", got: Logic.indexAfterRemoval(2, 2), want: 1 },
                { tag: "remove only card", got: Logic.indexAfterRemoval(0, 0), want: 0 },
                { tag: "wheel at right end", got: Logic.wheelTarget(400, -120, 542, 470), want: 72 },
                { tag: "wheel back to start", got: Logic.wheelTarget(72, 120, 542, 470), want: 0 }
            ]
        }
        function test_numbers(data) {
            compare(data.got, data.want)
        }

        function test_checks_data() {
            var exists = function (p) { return p !== "gone" }
            return [
                { tag: "no input", got: Logic.formProblem("", "a.mp4", "/t"), want: "input" },
                { tag: "no name", got: Logic.formProblem("file:///a.mp4", "", "/t"), want: "name" },
                { tag: "no directory", got: Logic.formProblem("file:///a.mp4", "a.mp4", ""), want: "directory" },
                { tag: "form complete", got: Logic.formProblem("file:///a.mp4", "a.mp4", "/t"), want: "" },
                { tag: "empty list", got: Logic.mergeProblem([], exists), want: "empty" },
                { tag: "empty path", got: Logic.mergeProblem(["a", ""], exists), want: "emptyPath" },
                { tag: "deleted file", got: Logic.mergeProblem(["a", "gone", ""], exists), want: "missing" },
                { tag: "all there", got: Logic.mergeProblem(["a", "b"], exists), want: "" }
            ]
        }
        function test_checks(data) {
            compare(data.got, data.want)
        }
    }

    TestCase {
        name: "ToolWindow"
        when: windowShown

        property var window: null
        property var opened: 0

        function init() {
            window = createTemporaryObject(windowComponent, top)
            window.show()
            opened = 0
            finished.clear()
        }
        function cleanup() {
            CMessageBox.close()
        }

        function test_exportRules() {
            var merge = window.objects[2]
            window.showIndex(2)
            merge.openFiles([toolMediaUrl])
            verify(!window.exportAllowed)
            merge.openFiles([toolMediaUrl])
            verify(window.exportAllowed)
            window.showIndex(1)
            verify(!window.exportAllowed)
            window.openFile(toolMediaUrl)
            verify(window.exportAllowed)

            // While a job runs no page may start another.
            window.isRunning = true
            for (var i = 0; i < 4; ++i) {
                window.showIndex(i)
                verify(!window.exportAllowed, "page " + i)
            }
        }

        function test_progressAndFinish() {
            window.showIndex(0)
            window.startExport()            // no input: the page's message, the window stays busy
            compare(CMessageBox.text, "Please select a file to compress")
            verify(window.isRunning && window.progressVisible)
            window.stop()                   // no job to wait for: idle at once
            verify(!window.isRunning && !window.progressVisible)
            window.startExport()

            CommonTool.videoCompressionFrameTotal(0)
            verify(!window.progressVisible)
            CommonTool.videoCompressionFrameTotal(75)
            CommonTool.videoCompressionProgress(30)
            verify(window.progressVisible)
            compare(window.to, 75)
            compare(window.value, 30)

            // Stop hides at once; the job's own end still brings the message, and the
            // folder opens only when it reports success.
            window.handleOpenFile = function () { opened++ }
            window.stop()
            verify(!window.isRunning && !window.progressVisible)
            CommonTool.videoCompressionFinished(false)
            compare(CMessageBox.text, "Export failed")
            compare(opened, 0)
            compare(window.handleOpenFile, null)
            CommonTool.videoCompressionFinished(true)
            compare(CMessageBox.text, "Export success")
            compare(opened, 0)
        }

        function test_stoppedCompressionHoldsTheNextUntilItsEnd() {
            var page = window.objects[0]
            window.openFile(toolMediaUrl)
            compare(page.outputName, "tool 720p_export.mp4")
            page.saveDirectory = FileHelper.getFileAbsolutePath(toolMediaUrl)

            // A stopped job still runs until its next look at the flag; no second one may
            // start before its end, or the two would share the flag and the display.
            window.startExport()
            window.stop()
            verify(!window.isRunning && !window.exportAllowed)
            finished.wait(60000)
            tryVerify(function () { return window.exportAllowed })

            page.outputName = ""
            window.startExport()
            compare(CMessageBox.text, "Please enter an output file name")
        }

        function test_clipSelectsWholeFileAndACancelledDialogLeavesItIdle() {
            var page = window.objects[1]
            window.showIndex(1)
            window.openFile(toolMediaUrl)
            compare(page.startTime, 0)
            fuzzyCompare(page.endTime, 3, 0.1)

            window.startExport()
            page.cancelExport()              // the save dialog was cancelled
            verify(!window.isRunning && !window.progressVisible)
        }

        function test_conversionSettings() {
            var page = window.objects[3]
            // Nothing opened: "original size" is 640 x 360.
            compare(JSON.stringify(page.videoInfoMap()), JSON.stringify(
                        { codecId: 27, width: 640, height: 360, fps: 24, bitrate: 384,
                          audioCodecId: 86018, audioBitrate: 32 }))

            window.showIndex(3)
            // Its rows are appended at run time, which its open list must show all the same.
            var resolutionList = findChild(page, "resolutionBox").children[1]
            mouseClick(resolutionList)
            tryCompare(resolutionList.popup, "opened", true)
            resolutionList.popup.contentItem.currentIndex = 2
            compare(resolutionList.popup.contentItem.currentItem.text, "720p")
            resolutionList.popup.close()
            window.openFile(toolMediaUrl)
            compare(page.outputName, "tool 720p_export.mp4")
            fuzzyCompare(page.scale, 1280 / 720, 1e-9)
            page.suffix = "mkv"
            compare(page.outputName, "tool 720p_export.mkv")

            findChild(page, "resolutionBox").currentIndex = 5
            findChild(page, "widthField").text = "1000"
            findChild(page, "codecBox").currentIndex = 1
            findChild(page, "bitrateBox").currentIndex = 7
            findChild(page, "fpsBox").currentIndex = 2
            findChild(page, "audioBox").currentIndex = 4
            findChild(page, "audioBitrateBox").currentIndex = 5
            compare(findChild(page, "heightField").text, "563")
            compare(JSON.stringify(page.videoInfoMap()), JSON.stringify(
                        { codecId: 173, width: 1000, height: 563, fps: 60, bitrate: 4096,
                          audioCodecId: 65536, audioBitrate: 320 }))
        }

        function test_mergeStrip() {
            var page = window.objects[2]
            window.showIndex(2)
            var dir = FileHelper.getFileAbsolutePath(toolMediaUrl)
            page.openFiles([toolMediaUrl, "file://" + dir + "/b.mp4", "file://" + dir + "/c.mp4"])
            compare(page.currentVideoIndex, 2)
            page.removeVideo(1)
            compare(page.paths()[1], "file://" + dir + "/c.mp4")
            compare(page.currentVideoIndex, 1)
            compare(findChild(page, "cardRow").children[1].number, 2)

            // b.mp4 and c.mp4 do not exist: the export stops silently and the window waits,
            // busy, until it is next opened.
            window.startExport()
            verify(window.isRunning && !window.progressVisible && !CMessageBox.visible)
            window.close()
            window.show()
            verify(!window.isRunning)

            page.removeVideo(1)
            page.openFiles([toolMediaUrl])
            window.startExport()
            page.exportTo(FileHelper.getUrlByPath(dir + "/merged"))   // the save dialog's answer
            finished.wait(60000)
            compare(finished.signalArguments[0][0], true)
            fuzzyCompare(CommonTool.getVideoDuration(dir + "/merged.mp4"), 6, 0.2)

            page.removeVideo(1)
            page.removeVideo(0)
            compare(page.videoModel.count, 0)
            compare(page.currentVideoIndex, 0)
        }
    }
}
