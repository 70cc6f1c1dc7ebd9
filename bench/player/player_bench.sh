#!/usr/bin/env bash
# Playback figures of Vidora (the real program, and its player view alone) next to the mpv
# command-line player, on one generated 1080p file, in a private X server (software OpenGL),
# plus the history writes made on the GUI thread. Run by hand after scripts/build.sh:
#   bench/player/player_bench.sh [ROUNDS] [CPU_SECONDS]
# Each round runs every player once, in the same order (first frame, then CPU), so load from
# other work on the machine hits all of them alike; medians over the rounds are reported,
# with the load average of each round. BENCH_MEDIA=FILE reuses a file instead of generating
# one; BENCH_MPV="option=value ..." gives every player the same extra mpv options.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build}
bench=$build/bench/player_bench
rounds=${1:-5}
cpu_seconds=${2:-10}
players=${BENCH_PLAYERS:-app vidora mpv mpv-auto}
# From the process start with the file on the command line: the real program and the command line.
starters=${BENCH_STARTERS:-app mpv}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

media=${BENCH_MEDIA:-$work/bench_1080p.mp4}
if [ ! -f "$media" ]; then
  echo "generating 1080p H.264 test file (30 s, 30 fps, AAC)..." >&2
  ffmpeg -hide_banner -loglevel error -y -f lavfi -i testsrc2=s=1920x1080:r=30:d=30 -f lavfi -i sine=d=30 \
    -c:v libx264 -preset medium -crf 20 -pix_fmt yuv420p -c:a aac "$media"
fi

median() { sort -n | awk '{a[NR]=$1} END {if (NR%2) print a[(NR+1)/2]; else printf "%.2f\n", (a[NR/2]+a[NR/2+1])/2}'; }
# The value after KEY in a result line.
field() { awk -v k="$1" '{for (i = 1; i < NF; i++) if ($i == k) print $(i + 1)}'; }
run() { xvfb-run -a -s "-screen 0 1400x900x24 -br -nolisten tcp" "$bench" "$@" 2>"$work/err" | tail -1; }
detail() { grep -E -A12 '^(steps|threads|libmpv passes)' "$work/err" | grep -E '^(steps|threads|libmpv|  )' | sed 's/^/      /' || true; }

for round in $(seq "$rounds"); do
  echo "round $round, load average $(cut -d' ' -f1-3 /proc/loadavg)"
  for player in $players; do
    ms=$(run ttff "$player" "$media")
    echo "$ms" >>"$work/ttff_$player"
    echo "  $player first frame: $ms ms"; detail
  done
  for player in $starters; do
    ms=$(run start "$player" "$media")
    echo "$ms" >>"$work/start_$player"
    echo "  $player from start to first frame: $ms ms"; detail
  done
  for player in $players; do
    line=$(run cpu "$player" "$media" "$cpu_seconds")
    echo "$line" >>"$work/cpu_$player"
    echo "  $player: $line"; detail
  done
done

echo
echo "medians over $rounds rounds ($cpu_seconds s of playing each), load average now $(cut -d' ' -f1-3 /proc/loadavg):"
printf '%-9s %9s %9s %8s %11s %13s %8s %8s %12s\n' player "first ms" "cpu %" "shown/s" "presented/s" "scene-frames/s" dropped delayed cpu-ms/frame
for player in $players; do
  printf '%-9s %9s' "$player" "$(median <"$work/ttff_$player")"
  for key in cpu shown/s presented/s scene-frames/s dropped delayed cpu-ms/frame; do
    values=$(field "$key" <"$work/cpu_$player")
    if echo "$values" | grep -q '^-$'; then printf ' %9s' -; else printf ' %9s' "$(echo "$values" | median)"; fi
  done
  echo
done
for player in $starters; do
  echo "$player from start to first frame: median $(median <"$work/start_$player") ms"
done
ratio() { awk -v a="$1" -v b="$2" 'BEGIN {printf "%.2f", a / b}'; }
for player in app vidora; do
  if [ -f "$work/cpu_$player" ] && [ -f "$work/cpu_mpv" ]; then
    tv=$(median <"$work/ttff_$player"); tm=$(median <"$work/ttff_mpv")
    cv=$(field cpu <"$work/cpu_$player" | median); cm=$(field cpu <"$work/cpu_mpv" | median)
    fv=$(field cpu-ms/frame <"$work/cpu_$player" | median); fm=$(field cpu-ms/frame <"$work/cpu_mpv" | median)
    echo "$player / mpv on the same renderer: first frame after load $(ratio "$tv" "$tm")x, CPU $(ratio "$cv" "$cm")x, CPU per frame shown $(ratio "$fv" "$fm")x"
  fi
done
if [ -f "$work/start_app" ] && [ -f "$work/start_mpv" ]; then
  echo "app / mpv from start to first frame: $(ratio "$(median <"$work/start_app")" "$(median <"$work/start_mpv")")x"
fi

if [ -z "${BENCH_SKIP_HISTORY:-}" ]; then
  echo "history writes with a 10,000-row table:"
  xvfb-run -a -s "-screen 0 1400x900x24 -br -nolisten tcp" "$bench" history 10000 "$media" 2>/dev/null | grep -v '^\['
fi
