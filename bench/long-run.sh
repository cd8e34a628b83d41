#!/usr/bin/env bash
# Resident memory over long runs, to catch slow leaks:
#   1. 1000 slider passes of the viewport on one photo (bench_soak), resident size after the
#      first 100 passes against the end;
#   2. a 200-file batch through vantrel-cli (one photo linked 200 times), the peak resident size
#      while files 20-40 are written against the peak while files 180-200 are.
# Goal: growth under 5% after the warm-up.
#   bench/long-run.sh [BUILD_DIR]      (default build-bench/, made here with benchmarks on)
# VANTREL_SOAK_PHOTO picks the photo of both runs (default: a 1920x1080 test JPEG).
set -euo pipefail
cd "$(dirname "$0")/.."
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
build=${1:-build-bench}
testdata=${VANTREL_TESTDATA:-}
if [ -z "$testdata" ] && [ -f "$build/CMakeCache.txt" ]; then
  testdata=$(sed -n 's/^VANTREL_TESTDATA:PATH=//p' "$build/CMakeCache.txt")
fi
testdata=${testdata:-$PWD/../shared/testdata}
photo=${VANTREL_SOAK_PHOTO:-$testdata/olympus_em1_forest_1920x1080.jpg}
[ -f "$photo" ] || { echo "no photo at $photo (set VANTREL_SOAK_PHOTO)"; exit 2; }
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DVANTREL_BUILD_BENCH=ON -DVANTREL_BUILD_TESTS=OFF \
    -DVANTREL_TESTDATA="$testdata" > "$build.cmake.log" 2>&1 || { cat "$build.cmake.log"; exit 1; }
fi
cmake --build "$build" -j2 --target bench_soak vantrel-cli

percent() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b - a) / a * 100 }'; }

echo "== viewport: 1000 slider passes on $(basename "$photo")"
VANTREL_SOAK_PHOTO="$photo" "$build/bench/bench_soak" --benchmark_format=json > "$build/soak.json"
warm=$(sed -n 's/.*"rss_warm_mb": \([0-9.e+]*\).*/\1/p' "$build/soak.json")
end=$(sed -n 's/.*"rss_end_mb": \([0-9.e+]*\).*/\1/p' "$build/soak.json")
peak=$(sed -n 's/.*"rss_peak_mb": \([0-9.e+]*\).*/\1/p' "$build/soak.json")
printf 'resident after 100 passes %.1f MB, after 1000 %.1f MB (peak %.1f MB): growth %s%%\n' \
  "$warm" "$end" "$peak" "$(percent "$warm" "$end")"

echo "== batch: 200 files through vantrel-cli"
work=$(mktemp -d /tmp/vantrel-long-run-XXXXXX)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/in" "$work/out"
ext=${photo##*.}
for i in $(seq -w 1 200); do ln -s "$photo" "$work/in/p$i.$ext"; done
cat > "$work/look.vnf" <<'XML'
<filter version="4">
  <mod name="Exposure" version="1" enabled="1"><var name="Amount" type="float">1.300000</var></mod>
  <mod name="Saturation" version="1" enabled="1"><var name="Amount" type="float">1.300000</var></mod>
</filter>
XML
"$build/cli/vantrel-cli" batch -f "$work/look.vnf" --jobs 1 "$work/in" "$work/out" > "$work/cli.out" 2>&1 &
pid=$!
samples=$work/samples
: > "$samples"
while kill -0 "$pid" 2>/dev/null; do
  rss=$(awk '/^VmRSS:/ { print $2 }' "/proc/$pid/status" 2>/dev/null || true)
  done_files=$(ls "$work/out" | wc -l)
  [ -n "$rss" ] && echo "$done_files $rss" >> "$samples"
  sleep 0.1
done
wait "$pid" || { echo "vantrel-cli failed:"; cat "$work/cli.out"; exit 1; }
written=$(ls "$work/out" | wc -l)
warmKb=$(awk '$1 >= 20 && $1 < 40 { if ($2 > m) m = $2 } END { print m + 0 }' "$samples")
endKb=$(awk '$1 >= 180 { if ($2 > m) m = $2 } END { print m + 0 }' "$samples")
echo "files written: $written of 200"
printf 'peak resident at files 20-40 %.1f MB, at files 180-200 %.1f MB: growth %s%%\n' \
  "$(awk -v k="$warmKb" 'BEGIN { print k / 1024 }')" "$(awk -v k="$endKb" 'BEGIN { print k / 1024 }')" \
  "$(percent "$warmKb" "$endKb")"
