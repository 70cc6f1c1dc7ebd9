#!/usr/bin/env bash
# Main window figures, each in an X server of its own (software OpenGL). Run by hand after
# scripts/build.sh, as root so both programs get the same raised priority:
#   bench/mainwindow_bench.sh [ROUNDS] [startup]      (startup: the start-up figures only)
# 1. Start to the idle window's final look on screen, and resident memory at idle, of Vidora
#    and of `mpv --idle --force-window`, alternating which goes first in each round: first with
#    empty caches (a first start ever), then with each program's caches kept between starts.
# 2. Hover preview on a 1080p H.264 file: mouse move over the seek bar to the new frame on
#    screen, through the real window (the bench moves the pointer itself, timed from the move);
#    every move's figure is printed, the first (entering the bar: the box and, later, its
#    first frame) to its frame.
# 3. The play list fed 1,000 rows of real files: card on screen to its thumbnail drawn, and the
#    event loop's lateness while the list scrolls through all of them.
# Each figure is printed with the load average at the time.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
bench=$build/bin/mainwindow_bench
[ -x "$bench" ] || bench=$build/bench/mainwindow_bench
rounds=${1:-7}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A private copy of the program: it keeps its history beside itself when run from a build.
mkdir "$work/app"
cp "$build/bin/vidora" "$build/bin/config.json" "$build/bin/mpvqt.conf" "$build/bin/vidora_zh_CN.qm" "$work/app/"
nice=()
[ "$(id -u)" = 0 ] && nice=(nice -n -10)
x() { "${nice[@]}" xvfb-run -a -s "-screen 0 1100x760x24 -nolisten tcp" "$bench" "$@" 2>>"$work/err"; }
load() { cut -d' ' -f1-3 /proc/loadavg; }
median() { sort -n | awk '{a[NR]=$1} END {if (NR%2) print a[(NR+1)/2]; else print (a[NR/2]+a[NR/2+1])/2}'; }
field() { awk -v k="$1" '{for (i = 1; i < NF; i++) if ($i == k) print $(i + 1)}'; }

echo "== start-up and idle memory (${nice[*]:-normal priority})"
for round in $(seq "$rounds"); do
  if [ $((round % 2)) = 1 ]; then order="vidora mpv"; else order="mpv vidora"; fi
  for who in $order; do
    if [ "$who" = vidora ]; then line=$(x startup "$work/app/vidora"); else line=$(x startup mpv --idle --force-window); fi
    echo "$line" >>"$work/$who"
    echo "  round $round $who: $line (load $(load))"
  done
done
for who in vidora mpv; do
  printf '%-7s on screen %s ms, idle RSS %s kB (medians)\n' "$who" \
    "$(field on-screen-ms <"$work/$who" | median)" "$(field rss-kb <"$work/$who" | median)"
done
awk -v a="$(field on-screen-ms <"$work/vidora" | median)" -v b="$(field on-screen-ms <"$work/mpv" | median)" \
    -v c="$(field rss-kb <"$work/vidora" | median)" -v d="$(field rss-kb <"$work/mpv" | median)" \
    'BEGIN {printf "vidora / mpv: start-up %.2fx, idle memory %.2fx\n", a / b, c / d}'

echo "== start-up with warm caches: each program keeps its own cache folder between starts; one start first fills it"
for who in vidora mpv; do mkdir -p "$work/cache-$who"; done
warm() {
  if [ "$1" = vidora ]; then BENCH_CACHE_HOME=$work/cache-vidora x startup "$work/app/vidora"
  else BENCH_CACHE_HOME=$work/cache-mpv x startup mpv --idle --force-window; fi
}
warm vidora >/dev/null; warm mpv >/dev/null
for round in $(seq "$rounds"); do
  if [ $((round % 2)) = 1 ]; then order="vidora mpv"; else order="mpv vidora"; fi
  for who in $order; do
    line=$(warm "$who")
    echo "$line" >>"$work/warm-$who"
    echo "  round $round $who: $line (load $(load))"
  done
done
awk -v a="$(field on-screen-ms <"$work/warm-vidora" | median)" -v b="$(field on-screen-ms <"$work/warm-mpv" | median)" \
    'BEGIN {printf "warm caches: vidora %d ms, mpv %d ms (medians): start-up %.2fx\n", a, b, a / b}'

[ "${2:-}" = startup ] && exit 0

echo "== hover preview, 1080p H.264 (load $(load))"
ffmpeg -hide_banner -loglevel error -y -f lavfi -i testsrc2=size=1920x1080:rate=30:duration=60 \
  -c:v libx264 -preset veryfast -g 60 -pix_fmt yuv420p "$work/hover.mp4"
x hover "$work/app/vidora" "$work/hover.mp4"

echo "== play list with 1,000 rows (load $(load))"
mkdir "$work/rows"
for i in $(seq 0 9); do
  ffmpeg -hide_banner -loglevel error -y -f lavfi -i "testsrc2=size=640x360:rate=25:duration=10" \
    -vf "hue=h=$((i * 36))" -c:v libx264 -preset ultrafast -pix_fmt yuv420p "$work/rows/clip$i.mp4"
done
# Every row its own file name: the thumbnails are decoded per row, as for a real history. The
# provider keeps every row's frame at full size, hence small frames for a thousand rows.
for i in $(seq 0 999); do ln "$work/rows/clip$((i % 10)).mp4" "$work/rows/row$(printf %04d "$i").mp4"; done
rm "$work"/rows/clip*.mp4
x history "$work/rows"
