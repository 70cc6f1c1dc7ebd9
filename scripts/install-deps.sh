#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running, testing and benchmarking need.
# Idempotent: when everything is present it only asks dpkg and returns; apt-get update runs
# only when something is missing. Every entry point (README commands, .ci/run) calls this one list.
set -euo pipefail

PACKAGES=(
  # toolchain
  build-essential cmake pkg-config git
  # sanitizer builds and fuzzing: clang with its runtimes (libFuzzer), llvm-symbolizer
  clang libclang-rt-14-dev llvm
  # Qt 5.15 and the QML modules the scene imports
  qtbase5-dev qtdeclarative5-dev qtquickcontrols2-5-dev qttools5-dev-tools qttools5-dev
  # the QML compiler, which compiles the scene when the program is built
  qtdeclarative5-dev-tools
  qml-module-qtquick2 qml-module-qtquick-controls2 qml-module-qtquick-templates2
  qml-module-qtquick-dialogs qml-module-qtquick-controls qml-module-qtquick-layouts qml-module-qtquick-window2
  qml-module-qtgraphicaleffects qml-module-qt-labs-platform qml-module-qt-labs-settings
  qml-module-qttest
  # playback, media, storage, logging, json
  libmpv-dev
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev libswresample-dev
  libsqlite3-dev libspdlog-dev libfmt-dev nlohmann-json3-dev
  # Chinese text
  fonts-noto-cjk
  # emoji in the on-screen messages (monochrome, which the subtitle renderer can draw)
  fonts-symbola
  # software OpenGL for the scene under Xvfb
  libgl1-mesa-dri libglx-mesa0 libegl-mesa0
  # tests: media generation and checks, a real X server, window driving and grabbing
  ffmpeg xvfb xauth xdotool imagemagick x11-utils
  # desktop integration checks: entry and metainfo validators, a private session bus
  desktop-file-utils appstream dbus
  # benchmarks: reference players and timing
  mpv hyperfine time
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}" >&2
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -q
$SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
