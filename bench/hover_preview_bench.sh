#!/usr/bin/env bash
# Hover preview benchmark: makes a 10 s 1080p H.264 clip (x264 defaults apart from the preset,
# so key frames are far apart as in ordinary files) and times preview loads on it.
# Usage: BUILD_DIR=build bench/hover_preview_bench.sh [FILE]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
file=${1:-${TMPDIR:-/tmp}/vidora-hover-1080p.mp4}
if [ ! -f "$file" ]; then
  ffmpeg -hide_banner -loglevel error -y -f lavfi -i testsrc2=size=1920x1080:rate=30:duration=10 \
    -f lavfi -i sine=frequency=440:duration=10 -c:v libx264 -preset veryfast -pix_fmt yuv420p \
    -c:a aac "$file"
fi
"$build/bin/hover_preview_bench" "$file" 12
