#!/usr/bin/env bash
# The robustness half of CI, after scripts/test.sh: an AddressSanitizer + UndefinedBehaviorSanitizer
# build (clang, -O1, no benchmarks) in build-asan runs the whole suite, then the fuzz targets
# built alongside run briefly on fresh seeds, then a ThreadSanitizer build in build-tsan runs
# the threaded units.
# FUZZ_SECONDS per fuzz target (default 60); extra arguments go to both ctest runs.
# Sanitizer settings and suppressions come from the tests' environment (tests/sanitizers).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
# libFuzzer ships with clang; both sanitizer builds use it so they share one compiler.
export CC=clang CXX=clang++
xvfb=(xvfb-run -a -s "-screen 0 1400x900x24 -nolisten tcp")

asan=$root/build-asan
BUILD_DIR=$asan "$root/scripts/build.sh" -DVIDORA_SANITIZE=ON -DVIDORA_FUZZ=ON -DVIDORA_BUILD_BENCH=OFF
(cd "$asan" && "${xvfb[@]}" ctest --output-on-failure -j"${TEST_JOBS:-2}" "$@")
BUILD_DIR=$asan "$root/scripts/fuzz.sh" "${FUZZ_SECONDS:-60}"

# The units with threads of their own: the pool, the jobs and their cancel flag, the frame
# grabber's shared picture memory, the image provider, the thumbnail items, the libmpv
# controller and view. Qt's own hand-overs between them are marked for the sanitizer in the
# test programs (src/app/tsan).
threaded=(tst_threadpool tst_commontool tst_cropjob tst_mergejob tst_framegrabber tst_imageprovider
          tst_thumbnailitems tst_mpv_controller tst_mpv_view)
tsan=$root/build-tsan
cmake -S "$root" -B "$tsan" -DCMAKE_BUILD_TYPE=Release -DVIDORA_TSAN=ON -DVIDORA_BUILD_BENCH=OFF >/dev/null
cmake --build "$tsan" -j"$(nproc)" --target "${threaded[@]}"
pattern="^($(IFS='|'; echo "${threaded[*]}"))\$"
(cd "$tsan" && "${xvfb[@]}" ctest --output-on-failure -j"${TEST_JOBS:-2}" -R "$pattern" "$@")
