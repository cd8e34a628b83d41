#!/usr/bin/env bash
# Installs the build into a scratch prefix and checks what a distribution would ship: both
# programs, the desktop entry (validated), the mime types (parsed), the man pages (rendered), the
# icons; then runs the installed CLI on a photo and starts the installed editor under Xvfb.
#   install_tree.sh <editor> [output-dir]
set -euo pipefail
editor="$1"
out="${2:-$(mktemp -d)}"
build="$(cd "$(dirname "$editor")" && pwd)"
here="$(cd "$(dirname "$0")" && pwd)"
photo="$here/../../resources/sample/sample.jpg"
prefix="$out/prefix"
rm -rf "$out" && mkdir -p "$out"
export XDG_DATA_HOME="$out/xdg/data" XDG_CACHE_HOME="$out/xdg/cache" XDG_CONFIG_HOME="$out/xdg/config"
export XDG_RUNTIME_DIR="$out/xdg/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
unset QT_QPA_PLATFORM

cmake --install "$build" --prefix "$prefix" > "$out/install.log"
fail() { echo "FAIL: $*"; exit 1; }
for f in bin/vantrel bin/vantrel-cli share/applications/vantrel.desktop share/mime/packages/vantrel.xml \
         share/man/man1/vantrel.1.gz share/man/man1/vantrel-cli.1.gz share/doc/vantrel/README.md; do
  [ -e "$prefix/$f" ] || fail "missing $f"
done
for size in 16 32 48 64 128 256; do
  [ -s "$prefix/share/icons/hicolor/${size}x${size}/apps/vantrel.png" ] || fail "missing ${size}px icon"
done
[ -x "$prefix/bin/vantrel" ] && [ -x "$prefix/bin/vantrel-cli" ] || fail "programs not executable"

if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$prefix/share/applications/vantrel.desktop" || fail "desktop entry invalid"
fi
grep -q '^Exec=vantrel %F$' "$prefix/share/applications/vantrel.desktop" || fail "desktop entry does not take files"
grep -q 'application/x-vantrel-filter' "$prefix/share/applications/vantrel.desktop" || fail "filters not opened by the editor"
if command -v xmllint >/dev/null; then
  xmllint --noout "$prefix/share/mime/packages/vantrel.xml" || fail "mime XML does not parse"
fi
if command -v update-mime-database >/dev/null; then
  mkdir -p "$out/mime" && cp -r "$prefix/share/mime/packages" "$out/mime/"
  update-mime-database "$out/mime" > "$out/mime.log" 2>&1 || { cat "$out/mime.log"; fail "mime database refuses our types"; }
  grep -q 'x-vantrel-filter' "$out/mime/globs2" || fail "no glob for .vnf"
fi
if command -v man >/dev/null; then
  for page in vantrel vantrel-cli; do
    text="$(MANWIDTH=80 man -l "$prefix/share/man/man1/$page.1.gz" 2>&1)" || fail "man page $page does not render"
    grep -q "SYNOPSIS" <<<"$text" || fail "man page $page has no synopsis"
  done
fi

# The installed CLI renders the sample photo through a default preset.
"$prefix/bin/vantrel-cli" presets > "$out/presets.txt" || fail "installed CLI cannot list presets"
preset="$(head -n 1 "$out/presets.txt")"
[ -n "$preset" ] || fail "no presets installed"
"$prefix/bin/vantrel-cli" render -p "$preset" -o "$out/rendered.jpg" "$photo" || fail "installed CLI render failed"
[ -s "$out/rendered.jpg" ] || fail "no rendered file"

# The installed editor comes up on the sample photo.
VANTREL_SMOKE_SCREENSHOT="$out/installed.png" timeout 120 \
  xvfb-run -a -s "-screen 0 1600x1000x24" "$prefix/bin/vantrel" "$photo" > "$out/editor.log" 2>&1 \
  || { cat "$out/editor.log"; fail "installed editor failed"; }
[ -s "$out/installed.png" ] || fail "installed editor wrote no screenshot"
echo "install tree passed: $prefix"
