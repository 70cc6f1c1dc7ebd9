import QtQuick 2.15
import QtTest 1.2
import CustomUtils 1.0

// The two halves of CustomUtils meet under one import: the theme from qrc and a native type.
TestCase {
    name: "Module"

    function test_bothHalvesLoad() {
        compare(String(Theme.accent).toUpperCase(), "#A338FE")
        verify(typeof CommonTool.formatTime === "function")
    }
}
