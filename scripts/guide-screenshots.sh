#!/usr/bin/env bash
# Redraws the pictures of the user guide from the running editor, under a virtual X server, on
# the bundled sample photo with a default preset applied. Run after any change to the look:
#   ./scripts/guide-screenshots.sh [build-dir]      (default build/)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
out=docs/guide/img
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
export XDG_DATA_HOME="$tmp/data" XDG_CACHE_HOME="$tmp/cache" XDG_CONFIG_HOME="$tmp/config"
export XDG_RUNTIME_DIR="$tmp/runtime"
mkdir -p "$XDG_RUNTIME_DIR" "$out" && chmod 700 "$XDG_RUNTIME_DIR"
unset QT_QPA_PLATFORM
cmake --build "$build" --target vantrel vantrel_guide >/dev/null

shot() { # <name> <args...>
  local name="$1"; shift
  VANTREL_SMOKE_SCREENSHOT="$tmp/$name.png" timeout 120 \
    xvfb-run -a -s "-screen 0 1600x1000x24" "$build/vantrel" "$@" >/dev/null 2>&1
  "$build/resources/vantrel_guide" --picture "$tmp/$name.png" "$out/$name.jpg" 1100
  echo "$out/$name.jpg"
}
shot main-window resources/sample/sample.jpg "resources/presets/Landscape/Golden Hour.vnf"
