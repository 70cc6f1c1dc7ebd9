#!/usr/bin/env python3
"""Generates the interface's PNG icons under Resources/ from the Tabler icon set (MIT licence,
copied beside the icons as Resources/LICENSE.tabler-icons), plus the two pictures made here:
the empty-state background control/default.png and the message box picture common/OK.png.

Run by hand after changing the table; the PNGs are committed, so neither the build nor CI
needs any of this. Needs:
  npm install --prefix /tmp/tabler @tabler/icons@3.51.0   (or pass another folder holding it)
  apt-get install librsvg2-bin imagemagick                  (rsvg-convert, convert)
Usage: scripts/make-icons.py [node_modules/@tabler/icons folder]

Every stem gets NAME.png in the normal colour and NAME_press.png in the accent; fixed images
(one colour only) are listed with a single colour. Each icon is rendered at twice the largest
size the screens show it at, so it stays sharp at a scale factor of 2.
"""
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
RES = ROOT / "Resources"
TABLER = Path(sys.argv[1] if len(sys.argv) > 1 else "/tmp/tabler/node_modules/@tabler/icons")

NORMAL = "#D4D4D4"        # reads on the dark surfaces
ON_LIGHT = "#666666"      # for the light dialogs
ACCENT = "#A338FE"
DISC_GLYPH = "#1D1D1D"    # the glyph cut into the round play/pause buttons
DISABLED = "#5A5A5A"

# (folder, name, tabler icon, pixels, look). Looks: "stem" normal + press, "disc" round button,
# "check" box (square when off, ticked square when on), or a single colour for a fixed image.
ICONS = [
    ("control", "stop", "filled/player-stop", 64, "stem"),
    ("control", "previous", "filled/player-track-prev", 64, "stem"),
    ("control", "play", "filled/player-play", 132, "disc"),
    ("control", "pause", "filled/player-pause", 132, "disc"),
    ("control", "next", "filled/player-track-next", 64, "stem"),
    ("control", "mute", "outline/volume-3", 64, "stem"),
    ("control", "unMute", "outline/volume", 64, "stem"),
    ("control", "volume", "outline/volume-2", 64, "stem"),
    ("control", "screenshot", "outline/camera", 56, "stem"),
    ("control", "tool", "outline/tools", 56, "stem"),
    ("control", "setting", "outline/settings", 56, "stem"),
    ("control", "small", "outline/picture-in-picture", 56, "stem"),
    ("control", "full", "outline/arrows-maximize", 56, "stem"),
    ("control", "exit", "outline/arrows-minimize", 56, "stem"),
    ("control", "big", "outline/window-maximize", 64, "stem"),
    ("control", "close", "outline/x", 64, "stem"),
    ("control", "left", "outline/chevron-left", 56, "stem"),
    ("control", "right", "outline/chevron-right", 56, "stem"),
    ("control", "add", "outline/plus", 48, "stem"),
    ("control", "clear", "outline/clear-all", 48, "stem"),
    ("control", "delete", "outline/trash", 48, "stem"),
    ("control", "folder", "outline/folder", 48, "stem"),
    ("titleBar", "pin", "outline/pin", 48, "stem"),
    ("titleBar", "unPin", "outline/pinned-off", 48, "stem"),
    ("titleBar", "help", "outline/help-circle", 48, "stem"),
    ("titleBar", "min", "outline/minus", 48, "stem"),
    ("titleBar", "max", "outline/square", 48, "stem"),
    ("titleBar", "normal", "outline/copy", 48, "stem"),
    ("titleBar", "close", "outline/x", 48, "stem"),
    ("titleBar", "closeOne", "outline/x", 40, "stem-on-light"),
    ("edit", "compress", "outline/file-zip", 48, "stem"),
    ("edit", "crop", "outline/scissors", 48, "stem"),
    ("edit", "puzzle", "outline/puzzle", 48, "stem"),
    ("edit", "conversion", "outline/transform", 48, "stem"),
    ("edit", "check", "outline/square", 40, "check"),
    ("edit", "down", "outline/chevron-down", 48, "stem"),
    ("edit", "icon", "outline/movie", 40, NORMAL),
    ("edit", "lock", "outline/lock", 48, "stem"),
    ("edit", "lock_disabled", "outline/lock", 48, DISABLED),
    ("edit", "add", "outline/plus", 64, "stem"),
    ("edit", "delete", "filled/circle-x", 40, "stem"),
    ("edit", "folder", "outline/folder", 48, "stem"),
    ("common", "check", "outline/square", 40, "check-on-light"),
]


def svg_body(icon):
    """The drawing inside a Tabler icon, without its invisible 24x24 bounding path."""
    text = (TABLER / "icons" / f"{icon}.svg").read_text()
    inner = re.search(r"<svg[^>]*>(.*)</svg>", text, re.S).group(1)
    inner = inner.replace('<path stroke="none" d="M0 0h24v24H0z" fill="none" />', "")
    filled = "icons-tabler-filled" in text
    return inner, filled


def glyph_svg(icon, colour):
    inner, filled = svg_body(icon)
    paint = (f'fill="{colour}" stroke="none"' if filled else
             f'fill="none" stroke="{colour}" stroke-width="2" stroke-linecap="round" stroke-linejoin="round"')
    return f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24" {paint}>{inner}</svg>'


def disc_svg(icon, disc, glyph):
    # The glyph sits a little right of centre for the play triangle to look centred.
    inner, _ = svg_body(icon)
    nudge = 0.6 if icon.endswith("play") else 0
    return ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24">'
            f'<circle cx="12" cy="12" r="11.5" fill="{disc}"/>'
            f'<g transform="translate({6 + nudge} 6) scale(0.5)" fill="{glyph}" stroke="none">{inner}</g></svg>')


def render(svg, out, size, tmp):
    src = Path(tmp) / "icon.svg"
    src.write_text(svg)
    out.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["rsvg-convert", "-w", str(size), "-h", str(size), "-o", str(out), str(src)], check=True)


def make_icons(tmp):
    for folder, name, icon, size, look in ICONS:
        base = RES / folder / name
        if look == "disc":
            render(disc_svg(icon, NORMAL, DISC_GLYPH), base.with_suffix(".png"), size, tmp)
            render(disc_svg(icon, ACCENT, "#FFFFFF"), Path(f"{base}_press.png"), size, tmp)
        elif look.startswith("check"):
            off = ON_LIGHT if look.endswith("on-light") else NORMAL
            render(glyph_svg(icon, off), base.with_suffix(".png"), size, tmp)
            render(glyph_svg("filled/square-check", ACCENT), Path(f"{base}_press.png"), size, tmp)
        elif look.startswith("stem"):
            normal = ON_LIGHT if look.endswith("on-light") else NORMAL
            render(glyph_svg(icon, normal), base.with_suffix(".png"), size, tmp)
            render(glyph_svg(icon, ACCENT), Path(f"{base}_press.png"), size, tmp)
        else:
            render(glyph_svg(icon, look), base.with_suffix(".png"), size, tmp)


def make_ok(tmp):
    # A ticked accent disc with a soft halo, for the message box.
    inner, _ = svg_body("outline/check")
    svg = ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 48 48">'
           '<defs><radialGradient id="halo"><stop offset="0.6" stop-color="#A338FE" stop-opacity="0.35"/>'
           '<stop offset="1" stop-color="#A338FE" stop-opacity="0"/></radialGradient>'
           '<linearGradient id="disc" x1="0" y1="0" x2="1" y2="1"><stop offset="0" stop-color="#C27BFF"/>'
           '<stop offset="1" stop-color="#7A12D6"/></linearGradient></defs>'
           '<circle cx="24" cy="24" r="24" fill="url(#halo)"/>'
           '<circle cx="24" cy="24" r="16" fill="url(#disc)"/>'
           '<g transform="translate(14 14) scale(0.8333)" fill="none" stroke="#FFFFFF" stroke-width="3"'
           f' stroke-linecap="round" stroke-linejoin="round">{inner}</g></svg>')
    render(svg, RES / "common" / "OK.png", 192, tmp)


def make_default(tmp):
    # The empty state: a dark stage lit by a violet glow, with a faint film frame and play disc.
    w, h = 1920, 1080
    frame, _ = svg_body("outline/movie")
    svg = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{w}" height="{h}" viewBox="0 0 {w} {h}">'
           '<defs><radialGradient id="glow" cx="0.5" cy="0.42" r="0.62">'
           '<stop offset="0" stop-color="#3A1266"/><stop offset="0.55" stop-color="#140626"/>'
           '<stop offset="1" stop-color="#000B0D"/></radialGradient>'
           '<radialGradient id="halo"><stop offset="0" stop-color="#A338FE" stop-opacity="0.45"/>'
           '<stop offset="1" stop-color="#A338FE" stop-opacity="0"/></radialGradient></defs>'
           f'<rect width="{w}" height="{h}" fill="url(#glow)"/>'
           f'<circle cx="{w / 2}" cy="{h * 0.42}" r="300" fill="url(#halo)"/>'
           f'<g transform="translate({w / 2 - 240} {h * 0.42 - 240}) scale(20)" fill="none" stroke="#A338FE"'
           f' stroke-opacity="0.28" stroke-width="0.6" stroke-linecap="round" stroke-linejoin="round">{frame}</g>'
           f'<circle cx="{w / 2}" cy="{h * 0.42}" r="86" fill="#A338FE" fill-opacity="0.85"/>'
           f'<path d="M{w / 2 - 28} {h * 0.42 - 46} l80 46 l-80 46 z" fill="#FFFFFF"/></svg>')
    src = Path(tmp) / "default.svg"
    src.write_text(svg)
    out = RES / "control" / "default.png"
    subprocess.run(["rsvg-convert", "-o", str(out), str(src)], check=True)
    # A few dozen shades are plenty for soft gradients and keep the file small; dithering hides
    # the steps.
    subprocess.run(["convert", str(out), "-dither", "FloydSteinberg", "-colors", "96", "-strip",
                    "-define", "png:compression-level=9", str(out)], check=True)


def main():
    if not (TABLER / "icons").is_dir():
        sys.exit(f"Tabler icons not found in {TABLER}; see the install line at the top of this script")
    with tempfile.TemporaryDirectory() as tmp:
        make_icons(tmp)
        make_ok(tmp)
        make_default(tmp)
    shutil.copyfile(TABLER / "LICENSE", RES / "LICENSE.tabler-icons")


if __name__ == "__main__":
    main()
