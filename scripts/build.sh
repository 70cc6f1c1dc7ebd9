#!/usr/bin/env bash
# Configures and builds into build/ (Release). Extra arguments go to cmake's configure step,
# e.g. scripts/build.sh -DVIDORA_SANITIZE=ON with BUILD_DIR=build-asan.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-Release} "$@" >/dev/null
cmake --build "$build" -j"$(nproc)"
