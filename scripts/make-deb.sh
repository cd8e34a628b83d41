#!/usr/bin/env bash
# Builds the Debian package in build-deb/ (Release, no tests or benchmarks):
#   ./scripts/make-deb.sh        -> build-deb/vantrel_<version>_<arch>.deb
# Install it with: sudo apt-get install ./build-deb/vantrel_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
# dpkg-shlibdeps (dpkg-dev) lists the runtime libraries the package depends on.
command -v dpkg-shlibdeps >/dev/null || { SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo; $SUDO apt-get install -y -qq dpkg-dev; }
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
cmake -S . -B build-deb -DCMAKE_BUILD_TYPE=Release -DVANTREL_BUILD_BENCH=OFF -DVANTREL_BUILD_TESTS=OFF \
      -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build-deb -j"$(nproc)" --target vantrel vantrel-cli vantrel_man
(cd build-deb && cpack -G DEB >/dev/null)
ls build-deb/vantrel_*.deb
