#!/usr/bin/env bash
# Times vantrel-cli against other image tools on one 24 MP JPEG: load + process + JPEG q85 save.
#
# usage: bench/compare-peers.sh [--install] [--runs N] [--cli PATH] [--image PATH] [--work DIR]
#                               [--rows abcde] [--tools "vantrel vips gm im darktable rawtherapee"]
#   --install  first installs the peers with apt-get (libvips-tools graphicsmagick
#              imagemagick-6.q16 darktable rawtherapee, and time); without it, missing tools
#              are left out of the table.
#   --runs N   runs per cell (default 3); the table shows medians.
#
# Rows, and what each tool runs for them (closest equivalent each tool has; "n/a" where it has none
# from its command line):
#   a  no-op re-encode.
#        vantrel: one Exposure tile at its neutral 1 (it returns at once).   vips: copy.   gm/im: convert.
#        darktable-cli: no sidecar (its default pipeline for a JPEG).
#        rawtherapee-cli: a neutral profile (every tool off).
#   b  saturation x1.3 + S-shaped tone curve + vignette (corners darkened about 50 %).
#        vantrel: Saturation 1.3, Tone Curve (0,0 .25,.2 .75,.8 1,1), Vignette 0.5.
#        vips: LCh chroma x1.3, maplut through a curve built by buildlut, multiply by a radial
#              mask made at 1/10 size and upscaled (intermediates as .v files in a tmpfs).
#        im: -modulate 100,130 -sigmoidal-contrast 3x50% and a radial-gradient multiply.
#        gm: -modulate 100,130 -contrast; gm has no vignette, so its row lacks one (a lower bound).
#        rawtherapee-cli: Saturation 30, a film-like tone curve, Vignetting Correction -50.
#        darktable-cli: n/a (its modules take binary parameters in the sidecar).
#   c  Gaussian blur of radius about 10 px at full size.
#        vantrel: Blur, Gaussian, Amount 22.36 (radius = (Amount/100)^2 * 0.03 * 6000 + 1 = 10 px,
#              a bell of 19 taps whose standard deviation is 3.54 px).
#        vips: gaussblur sigma 3.54.   gm/im: -blur 0x3.54 (separable Gaussian, sigma 3.54).
#        darktable-cli, rawtherapee-cli: n/a (no plain Gaussian blur from a sidecar we can write).
#   d  the 33-point GREEN_TINT_33.cube.
#        vantrel: LUT tile at 100 %.
#        gm/im: -hald-clut with a level-8 Hald image made from the cube before timing (vantrel-cli
#              renders IM's identity Hald through the cube; that setup is not timed).
#        vips, darktable-cli, rawtherapee-cli: n/a.
#   e  resize to 2048 px on the long side.
#        vantrel: Output Size, Longest Side 2048.   vips: resize (full decode, lanczos3; not
#        thumbnail, which shrinks while decoding).   gm/im: -resize 2048x2048.
#        darktable-cli: --width 2048 --height 2048 --hq true.   rawtherapee-cli: Resize tool, Lanczos.
#
# Each cell runs under /usr/bin/time -f "%e %U %S %M": wall seconds, CPU seconds (user + system,
# all threads and child processes) and peak resident memory of the largest process. On a shared,
# loaded machine the CPU column is the steadier of the two. Ratios are peer / vantrel, so above 1
# means we are faster.
set -u

here="$(cd "$(dirname "$0")" && pwd)"
root="$(cd "$here/.." && pwd)"
install=0
runs=3
cli="$root/build/cli/vantrel-cli"
image="$root/../shared/testdata/nikon_d5300_6000x4000.jpg"
[ -f "$image" ] || image="/work/shared/testdata/nikon_d5300_6000x4000.jpg"
work=""
rows="abcde"
tools="vantrel vips gm im darktable rawtherapee"

while [ $# -gt 0 ]; do
    case "$1" in
        --install) install=1 ;;
        --runs) runs="$2"; shift ;;
        --cli) cli="$2"; shift ;;
        --image) image="$2"; shift ;;
        --work) work="$2"; shift ;;
        --rows) rows="$2"; shift ;;
        --tools) tools="$2"; shift ;;
        -h|--help) sed -n '2,12p' "$0"; exit 0 ;;
        *) echo "compare-peers: unknown option $1" >&2; exit 2 ;;
    esac
    shift
done

if [ "$install" = 1 ]; then
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends time libvips-tools graphicsmagick \
        imagemagick-6.q16 || echo "compare-peers: some of vips/gm/ImageMagick did not install" >&2
    for p in darktable rawtherapee; do
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$p" \
            || echo "compare-peers: $p did not install; its column is left out" >&2
    done
fi

[ -x /usr/bin/time ] || { echo "compare-peers: needs /usr/bin/time (apt-get install time, or --install)" >&2; exit 2; }
[ -x "$cli" ] || { echo "compare-peers: no vantrel-cli at $cli (build the vantrel-cli target, or --cli)" >&2; exit 2; }
[ -f "$image" ] || { echo "compare-peers: no test image at $image" >&2; exit 2; }
testdata="$(cd "$(dirname "$image")" && pwd)"
cube="$testdata/GREEN_TINT_33.cube"

if [ -z "$work" ]; then
    # A tmpfs keeps the disk out of the timings where there is one.
    if [ -d /dev/shm ] && [ -w /dev/shm ]; then work="$(mktemp -d /dev/shm/compare-peers.XXXXXX)"; else work="$(mktemp -d)"; fi
    trap 'rm -rf "$work"' EXIT
fi
mkdir -p "$work"

have() { command -v "$1" >/dev/null 2>&1; }
declare -A toolBin=([vantrel]="$cli" [vips]=vips [gm]=gm [im]=convert-im6.q16 [darktable]=darktable-cli
                    [rawtherapee]=rawtherapee-cli)
present=""
for t in $tools; do
    if [ "$t" = vantrel ] || have "${toolBin[$t]}"; then present="$present $t"; else
        echo "compare-peers: ${toolBin[$t]} not installed; left out (--install installs it)" >&2; fi
done

# ---- inputs each tool needs -----------------------------------------------------------------

cat > "$work/a.vnf" <<'EOF'
<filter version="4">
  <mod name="Exposure" version="1" enabled="1">
    <var name="Amount" type="float">1.000000</var>
  </mod>
</filter>
EOF
cat > "$work/b.vnf" <<'EOF'
<filter version="4">
  <mod name="Saturation" version="2" enabled="1">
    <var name="Amount" type="float">1.300000</var>
  </mod>
  <mod name="Tone Curve" version="1" enabled="1">
    <var name="Amount" type="float">1.000000</var>
    <var name="Curve" type="curve">0.000000 0.000000 0.250000 0.200000 0.750000 0.800000 1.000000 1.000000 </var>
    <var name="Method" type="choice">RGB</var>
  </mod>
  <mod name="Vignette" version="1" enabled="1">
    <var name="Amount" type="float">0.500000</var>
    <var name="Sharpness" type="float">50.000000</var>
    <var name="Radius" type="float">1.000000</var>
  </mod>
</filter>
EOF
cat > "$work/c.vnf" <<'EOF'
<filter version="4">
  <mod name="Blur" version="1" enabled="1">
    <var name="Amount" type="float">22.360680</var>
    <var name="Mix" type="float">100.000000</var>
    <var name="Blur Method" type="choice">Gaussian</var>
  </mod>
</filter>
EOF
cat > "$work/d.vnf" <<EOF
<filter version="4">
  <mod name="LUT" version="1" enabled="1">
    <var name="Amount" type="float">100.000000</var>
    <var name="File" type="file">$cube</var>
  </mod>
</filter>
EOF
cat > "$work/e.vnf" <<'EOF'
<filter version="4">
  <mod name="Output Size" version="2" enabled="1">
    <var name="Longest Side" type="float">2048.000000</var>
  </mod>
</filter>
EOF

# The tone curve for vips: the same control points, straight between them (buildlut interpolates).
printf '2 4 1 0\n0 0\n64 51\n191 204\n255 255\n' > "$work/curve.mat"

# RawTherapee partial profiles (applied over its neutral profile).
cat > "$work/neutral.pp3" <<'EOF'
[Version]
AppVersion=5.9
Version=346
EOF
cat > "$work/b.pp3" <<'EOF'
[Version]
AppVersion=5.9
Version=346

[Exposure]
Saturation=30
CurveMode=Standard
Curve=4;0;0;0.25;0.2;0.75;0.8;1;1;

[Vignetting Correction]
Amount=-50
Radius=50
Strength=1
CenterX=0
CenterY=0
EOF
cat > "$work/e.pp3" <<'EOF'
[Version]
AppVersion=5.9
Version=346

[Resize]
Enabled=true
AppliesTo=Full image
Method=Lanczos
DataSpecified=3
Width=2048
Height=2048
AllowUpscaling=false
EOF

# A level-8 Hald CLUT (64 steps a channel) holding the cube, for gm and ImageMagick.
if have convert-im6.q16; then
    convert-im6.q16 hald:8 -depth 16 "$work/hald_identity.png" \
        && "$cli" render -f "$work/d.vnf" --type png16 -o "$work/hald_green.png" "$work/hald_identity.png" >/dev/null \
        || echo "compare-peers: could not make the Hald image; gm/im leave out row d" >&2
fi

# ---- one command per (tool, row) ------------------------------------------------------------

# Prints the command to time (a bash snippet), or nothing when the tool has no equivalent.
command_for() {
    local tool="$1" row="$2" out="$work/out_${1}_${2}.jpg"
    case "$tool" in
    vantrel)
        echo "'$cli' render -f '$work/$row.vnf' --quality 85 -o '$out' '$image' >/dev/null" ;;
    vips)
        case "$row" in
        a) echo "vips copy '$image' '$out[Q=85]'" ;;
        b) local v="$work/vips_b"
           echo "mkdir -p '$v' && vips colourspace '$image' '$v/lch.v' lch && vips linear '$v/lch.v' '$v/lch2.v' '1 1.3 1' '0 0 0' \
&& vips colourspace '$v/lch2.v' '$v/sat.v' srgb && vips cast '$v/sat.v' '$v/sat8.v' uchar \
&& vips buildlut '$work/curve.mat' '$v/lut.v' && vips maplut '$v/sat8.v' '$v/curved.v' '$v/lut.v' \
&& vips xyz '$v/xy.v' 601 401 && vips linear -- '$v/xy.v' '$v/c.v' '1 1' '-300 -200' && vips multiply '$v/c.v' '$v/c.v' '$v/sq.v' \
&& vips bandmean '$v/sq.v' '$v/m.v' && vips linear -- '$v/m.v' '$v/small.v' -0.0000076923 1 \
&& vips resize '$v/small.v' '$v/mask.v' 10 --kernel linear && vips extract_area '$v/mask.v' '$v/mask2.v' 0 0 6000 4000 \
&& vips multiply '$v/curved.v' '$v/mask2.v' '$v/vig.v' && vips cast '$v/vig.v' '$out[Q=85]' uchar; rm -rf '$v'" ;;
        c) echo "vips gaussblur '$image' '$out[Q=85]' 3.54" ;;
        e) echo "vips resize '$image' '$out[Q=85]' 0.341333" ;;
        esac ;;
    gm)
        case "$row" in
        a) echo "gm convert '$image' -quality 85 '$out'" ;;
        b) echo "gm convert '$image' -modulate 100,130 -contrast -quality 85 '$out'" ;;
        c) echo "gm convert '$image' -blur 0x3.54 -quality 85 '$out'" ;;
        d) [ -f "$work/hald_green.png" ] && echo "gm convert '$image' -hald-clut '$work/hald_green.png' -quality 85 '$out'" ;;
        e) echo "gm convert '$image' -resize 2048x2048 -quality 85 '$out'" ;;
        esac ;;
    im)
        local c=convert-im6.q16
        case "$row" in
        a) echo "$c '$image' -quality 85 '$out'" ;;
        b) echo "$c '$image' -modulate 100,130 -sigmoidal-contrast 3x50% \\( -size 6000x4000 radial-gradient:white-gray50 \\) \
-compose multiply -composite -quality 85 '$out'" ;;
        c) echo "$c '$image' -blur 0x3.54 -quality 85 '$out'" ;;
        d) [ -f "$work/hald_green.png" ] && echo "$c '$image' '$work/hald_green.png' -hald-clut -quality 85 '$out'" ;;
        e) echo "$c '$image' -resize 2048x2048 -quality 85 '$out'" ;;
        esac ;;
    darktable)
        local conf="--core --configdir '$work/dtconf' --conf plugins/imageio/format/jpeg/quality=85"
        case "$row" in
        a) echo "rm -f '$out'; darktable-cli '$image' '$out' $conf >/dev/null 2>&1" ;;
        e) echo "rm -f '$out'; darktable-cli '$image' '$out' --width 2048 --height 2048 --hq true $conf >/dev/null 2>&1" ;;
        esac ;;
    rawtherapee)
        case "$row" in
        a) echo "rawtherapee-cli -q -o '$out' -j85 -Y -p '$work/neutral.pp3' -c '$image' >/dev/null 2>&1" ;;
        b) echo "rawtherapee-cli -q -o '$out' -j85 -Y -p '$work/neutral.pp3' -p '$work/b.pp3' -c '$image' >/dev/null 2>&1" ;;
        e) echo "rawtherapee-cli -q -o '$out' -j85 -Y -p '$work/neutral.pp3' -p '$work/e.pp3' -c '$image' >/dev/null 2>&1" ;;
        esac ;;
    esac
}

# ---- timing -----------------------------------------------------------------------------------

median() { sort -g | awk '{ v[NR] = $1 } END { if (NR == 0) print ""; else if (NR % 2) print v[(NR + 1) / 2]; else print (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

declare -A wall cpu mem
declare -A rowName
rowName[a]="a no-op re-encode"; rowName[b]="b saturation+curve+vignette"; rowName[c]="c Gaussian blur r~10 px"
rowName[d]="d 33-point .cube"; rowName[e]="e resize to 2048 px"

for row in $(echo "$rows" | grep -o .); do
    for tool in $present; do
        cmd="$(command_for "$tool" "$row")"
        [ -n "$cmd" ] || continue
        out="$work/out_${tool}_${row}.jpg"
        ws=""; cs=""; ms=""; ok=1
        for ((i = 0; i < runs; ++i)); do
            rm -f "$out"
            /usr/bin/time -f "%e %U %S %M" -o "$work/time.txt" bash -c "$cmd" || ok=0
            [ -s "$out" ] || ok=0
            [ "$ok" = 1 ] || break
            read -r e u s m < <(tail -n 1 "$work/time.txt")
            ws="$ws $e"; cs="$cs $(awk -v u="$u" -v s="$s" 'BEGIN { print u + s }')"; ms="$ms $m"
        done
        if [ "$ok" = 1 ]; then
            wall[$tool,$row]="$(echo $ws | tr ' ' '\n' | median)"
            cpu[$tool,$row]="$(echo $cs | tr ' ' '\n' | median)"
            mem[$tool,$row]="$(echo $ms | tr ' ' '\n' | median)"
        else
            wall[$tool,$row]="fail"
            echo "compare-peers: $tool failed on row $row: $cmd" >&2
        fi
        echo "  ${rowName[$row]} / $tool: ${wall[$tool,$row]} s" >&2
    done
done

# ---- the table --------------------------------------------------------------------------------

echo "Image: $(basename "$image"), medians of $runs runs. Load average: $(cut -d' ' -f1-3 /proc/loadavg), $(nproc) cores."
echo
echo "| row | tool | wall s | CPU s | peak MB | wall vs us | CPU vs us |"
echo "|---|---|---:|---:|---:|---:|---:|"
for row in $(echo "$rows" | grep -o .); do
    for tool in $present; do
        w="${wall[$tool,$row]:-}"
        [ -n "$w" ] || { [ "$tool" = vantrel ] || echo "| ${rowName[$row]} | $tool | n/a | | | | |"; continue; }
        if [ "$w" = fail ]; then echo "| ${rowName[$row]} | $tool | fail | | | | |"; continue; fi
        c="${cpu[$tool,$row]}"; m="${mem[$tool,$row]}"
        uw="${wall[vantrel,$row]:-}"; uc="${cpu[vantrel,$row]:-}"
        rw=""; rc=""
        if [ "$tool" != vantrel ] && [ -n "$uw" ] && [ "$uw" != fail ]; then
            rw="$(awk -v a="$w" -v b="$uw" 'BEGIN { if (b > 0) printf "%.2fx", a / b }')"
            rc="$(awk -v a="$c" -v b="$uc" 'BEGIN { if (b > 0) printf "%.2fx", a / b }')"
        fi
        printf '| %s | %s | %.2f | %.2f | %.0f | %s | %s |\n' "${rowName[$row]}" "$tool" "$w" "$c" \
            "$(awk -v k="$m" 'BEGIN { print k / 1024 }')" "$rw" "$rc"
    done
done
