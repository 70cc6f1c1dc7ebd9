#!/usr/bin/env bash
# Playback figures of Vidora's player view next to the mpv command-line player, on one
# generated 1080p file, in a private X server (software OpenGL), plus the history writes
# made on the GUI thread. Run by hand after scripts/build.sh:
#   bench/player/player_bench.sh [ROUNDS] [CPU_SECONDS]
# Runs alternate between the two players so that load from other work on the machine hits
# both alike; medians are reported.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${BUILD_DIR:-$root/build}
bench=$build/bench/player_bench
rounds=${1:-7}
cpu_seconds=${2:-10}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

media=$work/bench_1080p.mp4
echo "generating 1080p H.264 test file (30 s, 30 fps, AAC)..." >&2
ffmpeg -hide_banner -loglevel error -y -f lavfi -i testsrc2=s=1920x1080:r=30:d=30 -f lavfi -i sine=d=30 \
  -c:v libx264 -preset medium -crf 20 -pix_fmt yuv420p -c:a aac "$media"

echo "load average before: $(cut -d' ' -f1-3 /proc/loadavg)"

median() { sort -n | awk '{a[NR]=$1} END {if (NR%2) print a[(NR+1)/2]; else printf "%.1f\n", (a[NR/2]+a[NR/2+1])/2}'; }

# Prints the run's last output line; its step timings and per-thread CPU (stderr) go to $work/err.
run() { xvfb-run -a -s "-screen 0 1400x900x24 -br -nolisten tcp" "$bench" "$@" 2>"$work/err" | tail -1; }
detail() { grep -E '^(steps|threads)' "$work/err" | sed 's/^/    /' || true; }

: >"$work/ttff_vidora"; : >"$work/ttff_mpv"
for i in $(seq "$rounds"); do
  run ttff vidora "$media" >>"$work/ttff_vidora"
  [ "$i" = "$rounds" ] && detail >"$work/steps"
  run ttff mpv "$media" >>"$work/ttff_mpv"
done
echo "time to first frame, ms (each run): vidora $(paste -sd' ' "$work/ttff_vidora") | mpv $(paste -sd' ' "$work/ttff_mpv")"
tv=$(median <"$work/ttff_vidora"); tm=$(median <"$work/ttff_mpv")
echo "first frame, last Vidora run:"; cat "$work/steps"
echo "time to first frame, median: vidora $tv ms, mpv $tm ms, ratio $(awk -v a="$tv" -v b="$tm" 'BEGIN{printf "%.2f", a/b}')"

: >"$work/cpu_vidora"; : >"$work/cpu_mpv"
for i in $(seq 3); do
  line=$(run cpu vidora "$media" "$cpu_seconds"); echo "vidora cpu: $line"; detail; echo "${line%% *}" >>"$work/cpu_vidora"
  line=$(run cpu mpv "$media" "$cpu_seconds"); echo "mpv cpu:    $line"; detail; echo "${line%% *}" >>"$work/cpu_mpv"
done
cv=$(median <"$work/cpu_vidora"); cm=$(median <"$work/cpu_mpv")
echo "CPU while playing 1080p, median: vidora $cv %, mpv $cm %, ratio $(awk -v a="$cv" -v b="$cm" 'BEGIN{printf "%.2f", a/b}')"

echo "scene graph alone (framebuffer item that only clears, 30 fps): $(run composite "$cpu_seconds")"; detail
echo "  the same, blended as a plain framebuffer item, with depth and stencil buffers: $(BENCH_BLEND=1 BENCH_DEPTH=1 run composite "$cpu_seconds")"; detail

echo "history writes with a 10,000-row table:"
xvfb-run -a -s "-screen 0 1400x900x24 -br -nolisten tcp" "$bench" history 10000 "$media" 2>/dev/null | grep -v '^\['
echo "load average after: $(cut -d' ' -f1-3 /proc/loadavg)"
