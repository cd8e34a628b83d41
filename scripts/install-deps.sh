#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need. Does nothing when all are present.
set -euo pipefail
pkgs=(cmake g++ pkg-config ccache qtbase5-dev qtbase5-dev-tools
      libopenimageio-dev libexiv2-dev liblcms2-dev libtbb-dev libfreetype-dev libfontconfig-dev
      libgtest-dev libgmock-dev libbenchmark-dev xvfb xauth ttf-bitstream-vera
      libjpeg62-turbo-dev libxcb1-dev clang libclang-rt-14-dev
      desktop-file-utils shared-mime-info libxml2-utils man-db)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
