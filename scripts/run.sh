#!/usr/bin/env bash
# Installs what is missing, builds (Release) and starts the player, optionally with a file.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
args=()
for a in "$@"; do
  # make relative file names absolute before the player moves to its own folder
  if [[ "$a" != -* && -e "$a" ]]; then a=$(realpath "$a"); fi
  args+=("$a")
done
exec "${BUILD_DIR:-$root/build}/bin/vidora" "${args[@]}"
