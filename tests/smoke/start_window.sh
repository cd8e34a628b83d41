#!/usr/bin/env bash
# Starts the real editor in a virtual X server, twice: with the sample photo (the main window must
# come up showing it) and with no file (the welcome card must come up). The editor grabs its own
# window once it is on screen (VANTREL_SMOKE_SCREENSHOT) and quits; this script checks the PNGs.
#   start_window.sh <editor> [output-dir]
set -euo pipefail
editor="$1"
out="${2:-$(mktemp -d)}"
here="$(cd "$(dirname "$0")" && pwd)"
photo="$here/../../resources/sample/sample.jpg"
mkdir -p "$out"
export XDG_DATA_HOME="$out/xdg/data" XDG_CACHE_HOME="$out/xdg/cache" XDG_CONFIG_HOME="$out/xdg/config"
export XDG_RUNTIME_DIR="$out/xdg/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
unset QT_QPA_PLATFORM

[ -x "$editor" ] || { echo "no editor at $editor"; exit 1; }
[ -f "$photo" ] || { echo "no sample photo at $photo"; exit 1; }

# The editor waits (bounded) for its window to be exposed; timeout only guards against a hang.
run_editor() { # <png> [photo]
  local png="$1"; shift
  rm -f "$png"
  if ! VANTREL_SMOKE_SCREENSHOT="$png" timeout 120 \
       xvfb-run -a -s "-screen 0 1600x1000x24" "$editor" "$@" > "$png.log" 2>&1; then
    echo "editor failed (exit status $?):"; cat "$png.log"; return 1
  fi
  [ -s "$png" ] || { echo "no screenshot written: $png"; cat "$png.log"; return 1; }
}

# Checks a screenshot: size at least min_w x min_h, the "Title" key, not blank, and when asked
# that the middle shows the sample photo (blue sky above, green meadow below) on a dark frame.
check_png() { # <png> <min_w> <min_h> <expect-photo: 0|1>
  python3 - "$@" <<'PY'
import struct, sys, zlib
path, min_w, min_h, expect_photo = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), sys.argv[4] == "1"
data = open(path, "rb").read()
assert data[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG"
pos, idat, text = 8, b"", {}
while pos < len(data):
    n, kind = struct.unpack(">I4s", data[pos:pos + 8]); body = data[pos + 8:pos + 8 + n]; pos += 12 + n
    if kind == b"IHDR": w, h, depth, ctype, _, _, interlace = struct.unpack(">IIBBBBB", body)
    elif kind == b"IDAT": idat += body
    elif kind == b"tEXt": k, v = body.split(b"\0", 1); text[k.decode()] = v.decode("latin-1")
    elif kind == b"iTXt":
        k, rest = body.split(b"\0", 1); v = rest[2:].split(b"\0", 2)[2]; text[k.decode()] = v.decode("utf-8")
assert depth == 8 and ctype in (2, 6) and interlace == 0, f"unexpected PNG layout {depth} {ctype} {interlace}"
bpp = 3 if ctype == 2 else 4
raw, stride, rows, prev = zlib.decompress(idat), w * bpp, [], bytearray(w * bpp)
for y in range(h):
    f, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
    for i in range(stride):
        a = line[i - bpp] if i >= bpp else 0; b = prev[i]; c = prev[i - bpp] if i >= bpp else 0
        if f == 1: line[i] = (line[i] + a) & 255
        elif f == 2: line[i] = (line[i] + b) & 255
        elif f == 3: line[i] = (line[i] + (a + b) // 2) & 255
        elif f == 4:
            p = a + b - c; pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
            line[i] = (line[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
    rows.append(line); prev = line
px = lambda x, y: tuple(rows[y][x * bpp:x * bpp + 3])
print(f"{path}: {w}x{h}, title {text.get('Title')!r}")
assert w >= min_w and h >= min_h, f"window too small: {w}x{h}"
title = text.get("Title") or ""
assert title == "Vantrel Photo" or title.startswith("Vantrel Photo - "), f"window title is {title!r}"
colours = {px(x, y) for y in range(0, h, 3) for x in range(0, w, 3)}
assert len(colours) > 500, f"blank window: only {len(colours)} colours"
if expect_photo:
    corner = px(4, h - 4)
    assert max(corner) <= 64 and max(corner) - min(corner) <= 6, f"frame is not dark grey: {corner}"
    # The picture fills the area left of the side panel, above the tray.
    sky, meadow = px((w - 224) // 2, h // 6), px((w - 224) // 2, h * 3 // 4)
    assert sky[2] > sky[0] + 30, f"no sky at the top of the photo: {sky}"
    assert meadow[1] > meadow[0] and meadow[1] > meadow[2], f"no meadow at the bottom of the photo: {meadow}"
PY
}

run_editor "$out/main_window.png" "$photo"
check_png "$out/main_window.png" 800 600 1
run_editor "$out/welcome_card.png"
check_png "$out/welcome_card.png" 640 400 0
echo "smoke test passed; screenshots in $out"
