#!/usr/bin/env bash
# Compress (level 0) and convert (H.264 at a new size and frame rate) with vidora-cli, side by
# side with the ffmpeg command line doing the same work on the same 1080p clip: wall time, CPU
# time (user + system, the steadier figure on a busy machine) and peak resident memory of each,
# from the fastest of RUNS runs each. Run by hand; the machine should be otherwise idle.
#
#   bench/transcode/transcode_bench.sh            (builds first with scripts/build.sh)
#   RUNS=3 SECONDS_OF_CLIP=8 bench/transcode/transcode_bench.sh
# The clip stays in BENCH_DIR (default /tmp/vidora-bench) for later runs; the outputs are
# removed at the end unless KEEP=1.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build}
work=${BENCH_DIR:-${TMPDIR:-/tmp}/vidora-bench}
runs=${RUNS:-2}
seconds=${SECONDS_OF_CLIP:-5}
mkdir -p "$work"

BUILD_DIR=$build "$root/scripts/build.sh" >/dev/null
cli=$build/bin/vidora-cli

# A camera-like 1080p30 clip: moving pattern with temporal noise, H.264 + AAC stereo.
clip=$work/clip1080-${seconds}s.mp4
if [ ! -f "$clip" ]; then
  echo "making $clip ..." >&2
  ffmpeg -hide_banner -loglevel error -y \
    -f lavfi -i "testsrc2=size=1920x1080:rate=30:duration=$seconds,noise=alls=8:allf=t" \
    -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=$seconds" \
    -c:v libx264 -preset veryfast -crf 22 -pix_fmt yuv420p -c:a aac -b:a 128k -ac 2 "$clip"
fi
video_rate=$(ffprobe -v error -select_streams v:0 -show_entries stream=bit_rate -of csv=p=0 "$clip")

# measure NAME COMMAND...: runs the command once and keeps wall time, CPU time and peak memory
# of the fastest run so far under NAME.
measure() {
  local name=$1; shift
  /usr/bin/time -f "%e %U %S %M" -o "$work/time.txt" "$@" >/dev/null 2>&1
  local t u s m
  read -r t u s m <"$work/time.txt"
  if [ ! -f "$work/$name.result" ] || awk -v t="$t" -v b="$(cut -d' ' -f1 "$work/$name.result")" \
    'BEGIN{exit !(t < b)}'; then
    echo "$t $(awk "BEGIN{print $u + $s}") $m" >"$work/$name.result"
  fi
}

show() {
  local t c m
  read -r t c m <"$work/$1.result"
  printf '%-18s wall %7.2f s  cpu %7.2f s  peak %7.1f MiB\n' "$1" "$t" "$c" "$(awk "BEGIN{print $m/1024}")"
}

ratio() {
  read -r t1 c1 m1 <"$work/$1.result"
  read -r t2 c2 m2 <"$work/$2.result"
  awk -v t1="$t1" -v t2="$t2" -v c1="$c1" -v c2="$c2" -v m1="$m1" -v m2="$m2" \
    'BEGIN{printf "  vidora/ffmpeg: wall %.3fx, cpu %.3fx, peak memory %+.1f MiB\n", t1/t2, c1/c2, (m1-m2)/1024}'
}

echo "clip: $clip (video $((video_rate / 1000)) kbit/s), best of $runs; load: $(cut -d' ' -f1-3 /proc/loadavg)"

rm -f "$work"/*.result
# Compress level 0: 90% of the source's video bit rate, crf 18, preset medium, GOP 30, audio copied.
compress_rate=$(awk "BEGIN{printf \"%d\", $video_rate * 0.9}")
# Convert: H.264 at 1280x720 and 24 fps, 4096 kbit/s, GOP 12, bilinear scaling, audio copied.
# The two programs take turns, so a change in the machine's load hits both alike.
for _ in $(seq "$runs"); do
  measure compress-vidora "$cli" -q compress "$clip" "$work/compress-vidora.mp4" --level 0
  measure compress-ffmpeg ffmpeg -hide_banner -loglevel error -y -i "$clip" -map 0:v:0 -map 0:a:0 \
    -c:v libx264 -preset medium -crf 18 -b:v "$compress_rate" -g 30 -pix_fmt yuv420p -c:a copy \
    "$work/compress-ffmpeg.mp4"
  measure convert-vidora "$cli" -q convert "$clip" "$work/convert-vidora.mp4" --codec h264 \
    --width 1280 --height 720 --fps 24 --bitrate 4096
  measure convert-ffmpeg ffmpeg -hide_banner -loglevel error -y -i "$clip" -map 0:v:0 -map 0:a:0 \
    -vf scale=1280:720:flags=bilinear -r 24 -c:v libx264 -b:v 4096k -g 12 -pix_fmt yuv420p -c:a copy \
    "$work/convert-ffmpeg.mp4"
done
show compress-vidora
show compress-ffmpeg
ratio compress-vidora compress-ffmpeg
show convert-vidora
show convert-ffmpeg
ratio convert-vidora convert-ffmpeg
[ "${KEEP:-0}" = 1 ] || rm -f "$work"/compress-*.mp4 "$work"/convert-*.mp4
