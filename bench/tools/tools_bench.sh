#!/usr/bin/env bash
# vidora-cli clip, merge and thumbnail side by side with the equivalent ffmpeg command-line runs,
# on a generated 2-minute 1080p H.264 + AAC file. Medians of several runs (hyperfine, one
# warm-up each, so both sides read from the page cache). Run by hand after a Release build:
#   bench/tools/tools_bench.sh            (RUNS=7, BENCH_DIR=/tmp/vidora-bench)
#   OUT_DIR=/dev/shm/vidora-bench bench/tools/tools_bench.sh   (outputs in memory: no disk)
# Generated media stays in BENCH_DIR, outside the repository, and is reused by later runs;
# outputs go to OUT_DIR (default BENCH_DIR) and are removed at the end unless KEEP=1.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
cli=${BUILD_DIR:-$root/build}/bin/vidora-cli
dir=${BENCH_DIR:-/tmp/vidora-bench}
runs=${RUNS:-7}
out=${OUT_DIR:-$dir}
[[ -x $cli ]] || { echo "build vidora-cli first (scripts/build.sh)" >&2; exit 1; }
command -v hyperfine >/dev/null || { echo "hyperfine is needed" >&2; exit 1; }
mkdir -p "$dir" "$out"

src=$dir/source-1080p-120s.mp4
if [[ ! -s $src ]]; then
  echo "generating $src (once) ..."
  # B-frames and a 2-second GOP, like camera and web video; about 8 Mbit/s.
  ffmpeg -hide_banner -loglevel error -y \
    -f lavfi -i testsrc2=size=1920x1080:rate=25:duration=120 \
    -f lavfi -i sine=frequency=440:sample_rate=48000:duration=120 \
    -c:v libx264 -preset superfast -b:v 8M -maxrate 8M -bufsize 16M -g 50 -pix_fmt yuv420p \
    -c:a aac -b:a 128k -movflags +faststart "$src"
fi
printf "ffconcat version 1.0\nfile '%s'\nfile '%s'\n" "$src" "$src" >"$dir/list.txt"

bench() { # name, then hyperfine arguments
  local name=$1
  shift
  hyperfine --style basic --warmup 1 --runs "$runs" --export-json "$dir/$name.json" "$@" >/dev/null
}

bench clip \
  -n "vidora-cli clip 30-90 s" "$cli -q clip '$src' '$out/clip-vidora.mp4' --start 30 --end 90" \
  -n "ffmpeg -ss 30 -t 60 -c copy" "ffmpeg -nostdin -v error -y -ss 30 -i '$src' -t 60 -c copy '$out/clip-ffmpeg.mp4'"
bench merge \
  -n "vidora-cli merge 2 x 120 s" "$cli -q merge '$out/merge-vidora.mp4' '$src' '$src'" \
  -n "ffmpeg concat -c copy" "ffmpeg -nostdin -v error -y -f concat -safe 0 -i '$dir/list.txt' -c copy '$out/merge-ffmpeg.mp4'"
# 60 s is a key frame; at 61.5 s the ffmpeg tool decodes on to the exact frame while the
# grabber stops at the key frame before it.
bench thumbnail \
  -n "vidora-cli thumbnail 60 s" "$cli thumbnail '$src' 60 '$out/thumb-vidora.png'" \
  -n "ffmpeg -ss 60 -frames:v 1" "ffmpeg -nostdin -v error -y -ss 60 -i '$src' -frames:v 1 '$out/thumb-ffmpeg.png'" \
  -n "vidora-cli thumbnail 61.5 s" "$cli thumbnail '$src' 61.5 '$out/thumb-vidora-mid.png'" \
  -n "ffmpeg -ss 61.5 -frames:v 1" "ffmpeg -nostdin -v error -y -ss 61.5 -i '$src' -frames:v 1 '$out/thumb-ffmpeg-mid.png'"
# Process start and probing alone.
bench startup \
  -n "vidora-cli --version" "$cli --version" \
  -n "ffmpeg -version" "ffmpeg -version" \
  -n "vidora-cli probe" "$cli probe '$src'" \
  -n "ffprobe -show_format" "ffprobe -v error -show_format '$src'"

python3 - "$dir" <<'PY'
import json, os, sys
d = sys.argv[1]
# CPU time (user + system) is the steadier figure on a shared machine.
print(f"{'command':30} {'median s':>9} {'min s':>8} {'max s':>8} {'cpu s':>7}")
for name in ("clip", "merge", "thumbnail", "startup"):
    for r in json.load(open(os.path.join(d, name + ".json")))["results"]:
        cpu = r["user"] + r["system"]
        print(f"{r['command']:30} {r['median']:9.3f} {r['min']:8.3f} {r['max']:8.3f} {cpu:7.3f}")
    print()
PY
for f in clip-vidora clip-ffmpeg merge-vidora merge-ffmpeg; do
  printf '%-14s %s s, %s bytes\n' "$f" "$(ffprobe -v error -show_entries format=duration -of csv=p=0 "$out/$f.mp4")" \
    "$(stat -c %s "$out/$f.mp4")"
done
if [[ ${KEEP:-0} != 1 ]]; then
  rm -f "$out"/{clip,merge}-{vidora,ffmpeg}.mp4 "$out"/thumb-*.png
fi
