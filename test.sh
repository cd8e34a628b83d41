#!/usr/bin/env bash
# Installs what is missing, builds and runs every test.
#   ./test.sh              plain build in build/
#   ./test.sh --sanitize   AddressSanitizer + UndefinedBehaviorSanitizer build in build-asan/
#   ./test.sh --tsan       ThreadSanitizer build in build-tsan/
set -euo pipefail
cd "$(dirname "$0")"
mode=plain
for a in "$@"; do
  case "$a" in
    --sanitize) mode=asan ;;
    --tsan) mode=tsan ;;
    *) echo "usage: ./test.sh [--sanitize|--tsan]"; exit 2 ;;
  esac
done
bash scripts/install-deps.sh
# ccache keys on paths relative to the checkout, so fresh clones reuse earlier compiles.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

jobs=$(nproc)
case "$mode" in
  plain) dir=build; flags=(-DCMAKE_BUILD_TYPE=Release) ;;
  asan)  dir=build-asan; flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_SANITIZE=ON -DVANTREL_BUILD_BENCH=OFF)
         # Full unwinding on malloc: the fast unwinder stops at libstdc++, and a library leak cut
         # off there no longer matches its suppression.
         export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:fast_unwind_on_malloc=0
         export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
         export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp ;;
  tsan)  dir=build-tsan; flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_TSAN=ON -DVANTREL_BUILD_BENCH=OFF)
         export TSAN_OPTIONS=halt_on_error=1:suppressions=$PWD/scripts/tsan.supp ;;
esac

cmake -S . -B "$dir" "${flags[@]}" > "$dir.cmake.log" 2>&1 || { cat "$dir.cmake.log"; exit 1; }
cmake --build "$dir" -j"$jobs"
cd "$dir"
ctest --output-on-failure -j"$jobs" --timeout 900
