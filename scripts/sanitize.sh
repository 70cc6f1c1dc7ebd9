#!/usr/bin/env bash
# The robustness half of CI, after scripts/test.sh: an AddressSanitizer + UndefinedBehaviorSanitizer
# build (clang, -O1, no benchmarks) in build-asan runs the whole suite, then the fuzz targets
# built alongside run briefly on fresh seeds, then a ThreadSanitizer build in build-tsan runs
# the units whose threads meet through our own pool and locks.
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

# The pool, the jobs and their cancel flag, the image provider. The thumbnail items and the
# libmpv controller and view hand their data over through Qt itself (queued and blocking
# calls, the scene graph's sync with its render thread); Debian's Qt is not instrumented and
# its mutexes are bare futexes, so ThreadSanitizer cannot see those hand-overs and would
# report every one of them.
threaded=(tst_threadpool tst_commontool tst_cropjob tst_mergejob tst_imageprovider)
tsan=$root/build-tsan
cmake -S "$root" -B "$tsan" -DCMAKE_BUILD_TYPE=Release -DVIDORA_TSAN=ON -DVIDORA_BUILD_BENCH=OFF >/dev/null
cmake --build "$tsan" -j"$(nproc)" --target "${threaded[@]}"
pattern="^($(IFS='|'; echo "${threaded[*]}"))\$"
(cd "$tsan" && "${xvfb[@]}" ctest --output-on-failure -j"${TEST_JOBS:-2}" -R "$pattern" "$@")
