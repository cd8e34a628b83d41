#!/usr/bin/env bash
# Installs what is missing, builds incrementally and opens the editor: ./run.sh [photo]
set -euo pipefail
cd "$(dirname "$0")"
bash scripts/install-deps.sh
# ccache keys on paths relative to the checkout, so fresh clones reuse earlier compiles.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release > build.cmake.log 2>&1 || { cat build.cmake.log; exit 1; }
cmake --build build -j"$(nproc)" --target vantrel
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
  echo "No display found (DISPLAY and WAYLAND_DISPLAY are unset): the editor needs a graphical session." >&2
  echo "Try: xvfb-run -a ./run.sh" >&2
  exit 1
fi
photo="${1:-resources/sample/sample.jpg}"
exec ./build/vantrel "$photo"
