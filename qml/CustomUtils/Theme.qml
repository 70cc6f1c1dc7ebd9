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

    // ---- Main window and its pieces -------------------------------------------------------
    readonly property color seekGrooveStart: "#696969"      // left end of the seek bar's gradient
    readonly property color volumeTrack: "#666666"
    readonly property color lightMenuText: "#333333"        // help pop-up rows
    readonly property color lightMenuHover: "#f2f2f2"
    readonly property color scrollHandle: "#4a4a4a"         // history list scroll bar
    readonly property color scrollHandleHover: "#6a6a6a"
    readonly property color scrollHandlePressed: "#ffffff"
    readonly property color scrollTrackHover: "#33ffffff"

    // ---- Tool window and its pages --------------------------------------------------------
    readonly property color toolBody: "#292929"
    readonly property color toolProgressWave: "#00a8f3"
    readonly property color openFileButton: "#480185"       // the empty state's "Open file" shape
    readonly property int radiusOpenFileButton: 12
    readonly property color previewArea: "#333333"
    readonly property color rangeTrack: "#cccccc"
    readonly property int radiusRangeTrack: 2
    readonly property color rangeSelection: "#4caf50"
    readonly property color rangeStartHandle: "#2196F3"
    readonly property color rangeEndHandle: "#F44336"
    readonly property color outlineBox: "#606060"           // start / duration / end boxes
    readonly property color inputRow: "#212121"
    readonly property color optionChecked: "#5F4D6E"        // level and format rows
    readonly property color optionUnchecked: "#303030"
    readonly property color fieldDisabledText: "#999999"
    readonly property color stripScrollTrack: "#2D2D2D"
    readonly property color stripScrollHandle: "#666666"
    readonly property color stripScrollHandlePressed: "#ffffff"
    readonly property color badge: "#DD000000"              // merge card position badge

    // ---- Control library ------------------------------------------------------------------
    readonly property color transparent: "transparent"
    readonly property color toolTipText: "#666666"
    readonly property color toolTipBackground: "#ffffff"
    readonly property color toolTipBorder: "#CCCCCC"
    readonly property color toolButtonActiveText: "#FE9A2E"
    readonly property color textButton: "#3B3A3A"
    readonly property color textButtonActive: "#5A5959"
    readonly property color okButtonActive: "#6507B5"
    readonly property color okButtonDisabled: "#252525"
    readonly property color okButtonDisabledText: "#696A6A"
    readonly property color checkButtonText: "#666666"
    readonly property color comboBackground: "#303030"
    readonly property color comboPopup: "#1E1E1E"
    readonly property color comboHighlight: "#4B4B4B"
    readonly property color sliderGroove: "#DDDDDD"
    readonly property color sliderHandle: "#ffffff"
    readonly property color fieldBorder: "#3B3A3A"
    readonly property color fieldBackground: "#252525"
    readonly property color waveFill: "#a8a8e6"
    readonly property color waveBackground: "#ffffff"
    readonly property color waveText: "#333333"
    readonly property color waveStopDisc: "#333333"
    readonly property color waveSliderHandleBorder: "#ffffff"

    // ---- Notifications and dialogs --------------------------------------------------------
    readonly property color notification: "#000B0D"
    readonly property color dialogBody: "#f2f2f2"
    readonly property color dialogCard: "#ffffff"
    readonly property color dialogText: "#333333"
    readonly property color dialogValue: "#999999"
    readonly property color cancelBorder: "#CCCCCC"
    readonly property color cancelText: "#666666"
    readonly property int radiusDialog: 8
    readonly property int dialogShadowMargin: 10

    // ---- Font sizes (pixels, except the wave progress labels in points) --------------------
    readonly property int fontCaption: 10             // tool tips, audio format rows
    readonly property int fontSmall: 12               // combo rows, menu rows, form headings
    readonly property int fontBody: 14                // default text, notifications
    readonly property int fontHeading: 16             // title bar title, panel headings
    readonly property int fontTitle: 18               // dialog titles
    readonly property int fontLarge: 20               // file name, speed, "Continue Playing"
    readonly property int fontXLarge: 22              // "Open file" on the empty state
    readonly property int wavePointSize: 24

    // ---- Main window screens ---------------------------------------------------------------
    readonly property color lightMenu: "#ffffff"            // help pop-up body
}
