import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0

// Text drawn for the first time has its glyphs added to its font's glyph texture on the
// render thread, and growing that texture is slow with software OpenGL: a hundred
// milliseconds and more the first time. Opening a file puts its name and its time on screen
// in the frame just before its first picture, so that picture would wait for them. Drawn
// once here, outside the window, while the window is idle after its first frame, those
// characters are ready before any file is opened; the text then goes, and the glyphs stay
// in the texture.
Item {
    id: root

    // The sizes the characters are needed in.
    property var pixelSizes: []
    // Warm up only while this holds (nothing is being opened), so it never delays a picture.
    property bool idle: true

    property bool shown: false
    property bool done: false
    property int swapsShown: 0

    // A character can take a different glyph depending on the text around it: digits among
    // letters (a file name) are shaped apart from digits among digits and colons (a time).
    readonly property var texts: {
        var ascii = ""
        for (var code = 0x21; code < 0x7f; ++code)
            ascii += String.fromCharCode(code)
        return [ascii, "0123456789:/%"]
    }

    // Outside the window: drawn, but never seen. Text under a hidden or transparent item
    // would not have its glyphs prepared.
    x: -100000
    y: -100000

    // A file opened while the text is up takes it away at once; the warm-up starts over the
    // next time the window is idle.
    onIdleChanged: {
        if (!idle) {
            shown = false
            swapsShown = 0
        }
    }

    Connections {
        target: root.Window.window
        enabled: root.idle && !root.done
        function onFrameSwapped() {
            if (!root.shown) {
                root.shown = true
                return
            }
            // The swap of a frame synchronised just before the text came may still be queued,
            // so the text is surely drawn only once a second swap follows; that one frame more
            // is asked for, as an idle window draws none by itself.
            if (++root.swapsShown === 1)
                root.Window.window.update()
            else
                root.done = true
        }
    }

    Column {
        Repeater {
            model: root.shown && root.idle && !root.done ? root.pixelSizes : []
            Column {
                readonly property int pixelSize: modelData
                Repeater {
                    model: root.texts
                    Text {
                        text: modelData
                        color: Theme.textPrimary
                        font.pixelSize: parent.pixelSize
                    }
                }
            }
        }
    }
}
