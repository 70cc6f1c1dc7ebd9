.pragma library

// Icons are given as path stems: the normal look adds ".png", the hovered, pressed or checked
// look adds "_press.png". A full file name is a deliberate fixed image and never switches.
function source(stem, active) {
    if (!stem)
        return ""
    if (stem.endsWith(".png"))
        return stem
    return stem + (active ? "_press.png" : ".png")
}
