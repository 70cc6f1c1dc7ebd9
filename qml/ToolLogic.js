.pragma library

// The decisions of the tool window and its four pages, kept free of items so that each one
// can be checked with a table.

function exportName(baseName, suffix) {
    return baseName + "_export." + suffix
}

// A new container keeps the name and swaps what follows its last dot.
function replaceSuffix(name, suffix) {
    var dot = name.lastIndexOf(".")
    return (dot >= 0 ? name.substring(0, dot) : name) + "." + suffix
}

// A typed save path without an extension gets the dialog's default one.
function withDefaultSuffix(path, suffix) {
    var slash = path.lastIndexOf("/")
    return path.lastIndexOf(".") > slash ? path : path + "." + suffix
}

function outputPath(directory, name) {
    return directory + "/" + name
}

// The checks before a compress or conversion starts; the first failing one names its message.
function formProblem(input, name, directory) {
    if (String(input).length === 0)
        return "input"
    if (String(name).length === 0)
        return "name"
    if (String(directory).length === 0)
        return "directory"
    return ""
}

// ---- Conversion ------------------------------------------------------------------------

var codecs = [{ text: "H264", codecId: 27 }, { text: "H265", codecId: 173 }]

// The spelling of each label is as the product has always shown it.
var bitrates = [
    { text: "384Kbps", bitrate: 384 }, { text: "512kbps", bitrate: 512 },
    { text: "768kbps", bitrate: 768 }, { text: "1024Kbps", bitrate: 1024 },
    { text: "1536Kbps", bitrate: 1536 }, { text: "2048Kbps", bitrate: 2048 },
    { text: "3072Kbps", bitrate: 3072 }, { text: "4096kbps", bitrate: 4096 },
    { text: "5120Kbps", bitrate: 5120 }, { text: "6144Kbps", bitrate: 6144 },
    { text: "8192Kbps", bitrate: 8192 }
]

var framerates = [{ text: "24", fps: 24 }, { text: "30", fps: 30 }, { text: "60", fps: 60 }]

var audioBitrates = [32, 64, 128, 192, 256, 320].map(function (v) {
    return { text: v + "Kbps", bitrate: v }
})

// Row 0 takes the opened file's size and row 5 the custom fields; the labels of those two
// are translated by the page.
function resolutions(originalLabel, customLabel) {
    return [
        { text: originalLabel, width: 640, height: 360 },
        { text: "360p", width: 640, height: 360 },
        { text: "720p", width: 1280, height: 720 },
        { text: "1080p", width: 1920, height: 1080 },
        { text: "4K", width: 3840, height: 2160 },
        { text: customLabel, width: 1920, height: 1080 }
    ]
}
var customResolutionRow = 5

var audioCodecIds = { aac: 86018, mp3: 86017, flac: 86028, m4a: 86018, wav: 65536, ogg: 86021 }

function audioCodecId(text) {
    return audioCodecIds.hasOwnProperty(text) ? audioCodecIds[text] : 0
}

// With the aspect lock on, one side follows the other.
function lockedHeight(width, scale) {
    return Math.round(width / scale)
}

function lockedWidth(height, scale) {
    return Math.round(height * scale)
}

// What the conversion job receives, from the chosen row of each option list.
function settingsMap(isVideo, codec, bitrate, framerate, resolution, audioText, audioBitrate) {
    return {
        codecId: isVideo ? codec.codecId : 0,
        width: resolution.width,
        height: resolution.height,
        fps: framerate.fps,
        bitrate: bitrate.bitrate,
        audioCodecId: audioCodecId(audioText),
        audioBitrate: audioBitrate.bitrate
    }
}

// ---- Range slider --------------------------------------------------------------------------

function handleX(value, from, to, width, handleWidth) {
    return (value - from) / (to - from) * (width - handleWidth)
}

// The handles never come closer than one handle width.
function clampStartX(x, endX, handleWidth) {
    return Math.max(0, Math.min(x, endX - handleWidth))
}

function clampEndX(x, startX, width, handleWidth) {
    return Math.min(width - handleWidth, Math.max(x, startX + handleWidth))
}

function valueAt(x, from, to, width, handleWidth, step) {
    var value = from + x / (width - handleWidth) * (to - from)
    return step > 0 ? Math.round(value / step) * step : value
}

// ---- Merge -------------------------------------------------------------------------------

function indexAfterRemoval(current, count) {
    var index = current >= count ? count - 1 : current
    return index < 0 ? 0 : index
}

// The first row that cannot be merged, or "" when all can.
function mergeProblem(paths, exists) {
    if (paths.length === 0)
        return "empty"
    for (var i = 0; i < paths.length; ++i) {
        if (String(paths[i]).length === 0)
            return "emptyPath"
        if (!exists(paths[i]))
            return "missing"
    }
    return ""
}

// One wheel event moves the strip 120 px; a negative delta moves it right.
function wheelTarget(contentX, delta, contentWidth, visibleWidth) {
    var target = contentX + (delta < 0 ? 120 : -120)
    return Math.max(0, Math.min(target, Math.max(0, contentWidth - visibleWidth)))
}

function isStripImage(filePath) {
    return String(filePath).length > 0 && String(filePath).indexOf("CImageListView") >= 0
}
