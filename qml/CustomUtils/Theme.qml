pragma Singleton
import QtQuick 2.15

// Every colour, radius and font size of the interface. Screens and controls name these
// instead of repeating literals, so the look changes in one place.
QtObject {
    // Surfaces
    readonly property color windowBackground: "#000B0D"
    readonly property color panel: "#2B2B2B"          // title bar, history panel, expand tab
    readonly property color popup: "#1D1D1D"          // menus and pop-ups
    readonly property color hover: "#333333"          // hovered and selected rows
    readonly property color dim: "#99000000"          // overlay over a paused video
    readonly property color shadow: "#99000000"

    // Text and accent
    readonly property color accent: "#A338FE"         // progress, checked items, links
    readonly property color textPrimary: "#ffffff"
    readonly property color textSecondary: "#999999"

    // Corners
    readonly property int radiusMain: 6               // main window, its menus, pop-ups, cards
    readonly property int radiusTool: 4               // tool window and its form controls
}
