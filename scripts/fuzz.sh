#!/usr/bin/env bash
# Runs the libFuzzer targets of the media tools on seeds made now with the ffmpeg CLI.
#   scripts/fuzz.sh [SECONDS] [TARGET ...]     targets: probe grab clip (default: all three)
# Each target runs for SECONDS (default 60), or for FUZZ_RUNS inputs when that is set,
# whichever ends first. The targets come from BUILD_DIR (default build-asan), configured with
# CC=clang CXX=clang++ -DVIDORA_SANITIZE=ON -DVIDORA_FUZZ=ON (scripts/sanitize.sh does it).
# FUZZ_DIR (default: a new temporary folder) keeps the seeds, the grown corpus per target,
# each target's log and any crash, leak or timeout input. The exit status is non-zero when a
# target found something; the input is then named in its log.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build-asan}
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(probe grab clip)
work=${FUZZ_DIR:-$(mktemp -d /tmp/vidora-fuzz.XXXXXX)}
mkdir -p "$work/seeds"

# Small files of the container and codec families the tools meet, a few kilobytes each.
seed() { ffmpeg -hide_banner -loglevel error -y "$@" </dev/null; }
s=$work/seeds
v="-f lavfi -i testsrc=size=64x48:rate=10:duration=1"
a="-f lavfi -i sine=frequency=440:sample_rate=8000:duration=1"
[ -f "$s/cover.png" ] || seed -f lavfi -i color=c=red:s=16x16 -frames:v 1 "$s/cover.png"
printf '1\n00:00:00,000 --> 00:00:00,800\nhello\n' >"$s/sub.srt"
[ -f "$s/h264-aac.mp4" ] || seed $v $a -c:v libx264 -g 4 -pix_fmt yuv420p -c:a aac -b:a 16k "$s/h264-aac.mp4"
[ -f "$s/srt.mkv" ] || seed $v $a -i "$s/sub.srt" -map 0 -map 1 -map 2 -c:v libx264 -g 4 -pix_fmt yuv420p -c:a aac -b:a 16k -c:s srt "$s/srt.mkv"
[ -f "$s/mov_text.mov" ] || seed $v -i "$s/sub.srt" -map 0 -map 1 -c:v mpeg4 -c:s mov_text "$s/mov_text.mov"
[ -f "$s/mpeg2.ts" ] || seed $v $a -c:v mpeg2video -g 4 -c:a mp2 "$s/mpeg2.ts"
[ -f "$s/mjpeg.avi" ] || seed $v $a -c:v mjpeg -c:a pcm_s16le "$s/mjpeg.avi"
[ -f "$s/vp8.webm" ] || seed $v $a -c:v libvpx -b:v 50k -c:a libvorbis "$s/vp8.webm"
[ -f "$s/odd-ffv1.mkv" ] || seed -f lavfi -i testsrc=size=33x17:rate=5:duration=1 -c:v ffv1 "$s/odd-ffv1.mkv"
[ -f "$s/flv.flv" ] || seed $v -c:v flv1 "$s/flv.flv"
[ -f "$s/cover.mp3" ] || seed $a -i "$s/cover.png" -map 0 -map 1 -c:a libmp3lame -b:a 16k -c:v png -disposition:v attached_pic "$s/cover.mp3"
[ -f "$s/tone.wav" ] || seed $a -t 0.3 "$s/tone.wav"
[ -f "$s/anim.gif" ] || seed -f lavfi -i testsrc=size=32x24:rate=5:duration=1 "$s/anim.gif"
rm -f "$s/cover.png" "$s/sub.srt"

runs=()
[ -n "${FUZZ_RUNS:-}" ] && runs=(-runs="$FUZZ_RUNS")
status=0
for t in "${targets[@]}"; do
  mkdir -p "$work/corpus-$t" "$work/found-$t"
  echo "fuzz_$t: ${seconds}s${FUZZ_RUNS:+ or $FUZZ_RUNS inputs}, log $work/fuzz_$t.log" >&2
  # Every input runs in a fresh folder of its own so outputs never pile up.
  if ! (cd "$work/found-$t" && TMPDIR="$work/found-$t" \
        "$build/fuzz/fuzz_$t" -max_total_time="$seconds" "${runs[@]}" -timeout=30 -rss_limit_mb=3072 \
          -print_final_stats=1 -artifact_prefix="$work/found-$t/" "$work/corpus-$t" "$s" \
          >"$work/fuzz_$t.log" 2>&1); then
    status=1
    echo "fuzz_$t FOUND SOMETHING:" >&2
    grep -E "ERROR|SUMMARY|Test unit written|timeout|leak" "$work/fuzz_$t.log" | head -20 >&2 || true
  fi
  grep -E "stat::number_of_executed_units|stat::average_exec_per_sec|cov:" "$work/fuzz_$t.log" | tail -3 >&2 || true
done
exit $status
