#!/usr/bin/env bash
# Builds one libFuzzer target with clang, AddressSanitizer and UndefinedBehaviorSanitizer in
# build-fuzz/ and runs it for SECONDS on a copy of its seed corpus.
#   ./fuzz.sh TARGET SECONDS     e.g. ./fuzz.sh xml 60
# Targets: xml filter archive cube native_image tone_curve prefs media (seeds in fuzz/corpus/TARGET/).
# Findings land in build-fuzz/findings/TARGET/; the growing corpus in build-fuzz/corpus/TARGET/.
set -euo pipefail
cd "$(dirname "$0")"
[ $# -eq 2 ] || { echo "usage: ./fuzz.sh TARGET SECONDS"; exit 2; }
target=$1
seconds=$2
bash scripts/install-deps.sh

dir=build-fuzz
if [ ! -f "$dir/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVANTREL_FUZZ=ON -DVANTREL_BUILD_BENCH=OFF \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined" \
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" > "$dir.cmake.log" 2>&1 \
    || { cat "$dir.cmake.log"; exit 1; }
fi
cmake --build "$dir" -j2 --target "fuzz_$target"

seeds=fuzz/corpus/$target
[ -d "$seeds" ] || { echo "no such target: $target"; exit 2; }
corpus=$dir/corpus/$target
findings=$dir/findings/$target
mkdir -p "$corpus" "$findings"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
# The same leaks of system libraries the sanitizer suite ignores (OpenImageIO keeps error strings).
export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp
exec "$dir/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
  -max_len=65536 -artifact_prefix="$findings/" -print_final_stats=1 "$corpus" "$seeds"
