.pragma library

// Decisions of the main window and its file dialog, kept free of items so a table test can
// pin them down.

// Qt's values, spelled out because a library script has no access to the Qt namespace enums.
var TopEdge = 1
var LeftEdge = 2
var RightEdge = 4
var BottomEdge = 8
var SizeVerCursor = 5
var SizeHorCursor = 6
var SizeBDiagCursor = 7
var SizeFDiagCursor = 8
var ArrowCursor = 0

// Dialog filters from extensions without dots: the combined filter first, so it is the
// default, then one per format in the order given.
function nameFilters(formats) {
    var patterns = []
    var filters = []
    for (var i = 0; i < (formats ? formats.length : 0); ++i) {
        var ext = String(formats[i])
        patterns.push("*." + ext.toLowerCase())
        filters.push(ext.toUpperCase() + " (*." + ext.toLowerCase() + ")")
    }
    if (patterns.length > 0)
        filters.unshift("All Supported Formats (" + patterns.join(" ") + ")")
    return filters
}

// What openFile does with a request: "missing" shows the error, "remember" keeps the url until
// the player is ready, "load" plays it. A minimized window comes back in every case.
function openAction(exists, ready) {
    if (!exists)
        return "missing"
    if (!ready)
        return "remember"
    return "load"
}

// Row of the first history entry whose url is `url`; `current` when there is none.
function indexOfUrl(urls, url, current) {
    if (url) {
        for (var i = 0; i < urls.length; ++i) {
            if (urls[i] === url)
                return i
        }
    }
    return current
}

function canPrevious(index) {
    return index > 0
}

function canNext(index, count) {
    return index < count - 1
}

function stepBack(position) {
    return Math.max(0, position - 5)
}

function stepForward(position, duration) {
    return Math.min(duration, position + 5)
}

// Width of a menu from the implicit widths of its rows: room for the row's text margins, and
// never narrower than `minimum`.
function menuWidth(implicitWidths, minimum) {
    var width = minimum
    for (var i = 0; i < implicitWidths.length; ++i)
        width = Math.max(width, implicitWidths[i] + 32)
    return width
}

// Second of the file under the mouse on the seek bar, to two decimals.
function previewSeconds(mouseX, barWidth, duration) {
    if (barWidth <= 0 || !(duration > 0))
        return 0
    var percent = Math.min(1, Math.max(0, mouseX / barWidth))
    return Math.round(percent * duration * 100) / 100
}

// Left edge of the preview box: centred on the mouse, kept inside the bar.
function previewX(mouseX, boxWidth, barWidth) {
    return Math.max(0, Math.min(barWidth - boxWidth, mouseX - boxWidth / 2))
}

// A new preview only when the last one is `interval` ms old; moves in between are dropped.
function previewDue(now, last, interval) {
    return now - last >= interval
}

// Edges a press at (x, y) resizes, as a Qt.Edges mask; 0 outside the border zone.
function resizeEdges(x, y, width, height, zone) {
    var edges = 0
    if (x < zone)
        edges |= LeftEdge
    if (x >= width - zone)
        edges |= RightEdge
    if (y < zone)
        edges |= TopEdge
    if (y >= height - zone)
        edges |= BottomEdge
    return edges
}

function resizeCursor(edges) {
    var horizontal = edges & (LeftEdge | RightEdge)
    var vertical = edges & (TopEdge | BottomEdge)
    if (horizontal && vertical)
        return (edges === (TopEdge | LeftEdge) || edges === (BottomEdge | RightEdge)) ? SizeFDiagCursor
                                                                                     : SizeBDiagCursor
    if (horizontal)
        return SizeHorCursor
    if (vertical)
        return SizeVerCursor
    return ArrowCursor
}

// Tool page a command-line word opens: -1 for a plain play request, -2 for a word to ignore.
function toolForCommand(command) {
    if (!command)
        return -1
    if (command === "-compress")
        return 0
    if (command === "-crop")
        return 1
    return -2
}

// Thumbnail announcements meant for the history cards.
function isCardImage(key) {
    return !!key && String(key).indexOf("CVideoCard") >= 0
}

// Duration text of a history card; rows of files that never played hold no duration.
function cardDuration(duration, formatted) {
    return duration > 0 ? formatted : "--:--"
}

// Seconds a history card shows. A row is only written at load, stop and end of file, so the
// row of a file playing for the first time learns its duration at the earliest when playback
// stops; until then its card takes the player's.
function cardSeconds(rowDuration, rowUrl, playingUrl, playingDuration) {
    if (rowDuration > 0)
        return rowDuration
    return rowUrl && rowUrl === playingUrl ? playingDuration : 0
}
