#!/usr/bin/env bash
# Installs what is missing, builds and runs every test through CTest. GUI tests need an X
# display: the whole run happens inside one Xvfb server (software OpenGL through Mesa).
# Extra arguments go to ctest (e.g. -R Pool, -V).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
build=${BUILD_DIR:-$root/build}
cd "$build"
exec xvfb-run -a -s "-screen 0 1400x900x24 -nolisten tcp" \
  ctest --output-on-failure -j"${TEST_JOBS:-2}" "$@"
