#!/usr/bin/env bash
# Leak check of the headless suites, beyond what LeakSanitizer sees in ./test.sh --sanitize.
#   scripts/leak-check.sh [BUILD_DIR]     (default build/, a plain Release build with the tests)
# test_core and test_filters run under valgrind's memcheck: a definite or indirect leak fails.
# test_document and test_media link the codec libraries, one of which uses an instruction this
# valgrind can't decode, so they run under heaptrack; a leak counts as ours when its first frame
# outside libc and libstdc++ is in our binary and it is not a once-only initialisation.
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
out=$(mktemp -d)
status=0

for t in test_core test_filters; do
  # The kill tests re-run the binary through /proc/self/exe, which valgrind can't follow.
  valgrind --leak-check=full --show-leak-kinds=definite,indirect --errors-for-leak-kinds=definite,indirect \
    --error-exitcode=9 --num-callers=30 "$build/tests/$t" --gtest_filter='-*Kill*:*Child*' \
    > "$out/$t.log" 2>&1
  rc=$?
  echo "$t (valgrind): $(grep -E 'definitely lost' "$out/$t.log" | tail -1 | sed 's/^==[0-9]*== *//'), exit $rc"
  [ $rc -eq 0 ] || status=1
done

for t in test_document test_media; do
  heaptrack -o "$out/$t" "$build/tests/$t" > "$out/$t.log" 2>&1
  rc=$?
  heaptrack_print -f "$out/$t".*zst -l 1 -p 0 -a 0 -T 0 -n 100000 -s 100000 2>/dev/null \
    | sed -n '/MEMORY LEAKS/,$p' > "$out/$t.leaks"
  ours=$(awk -v bin="$t" '
    function finish() { if (inEntry && owner == bin && !once) { n++; print head > "/dev/stderr" } }
    / leaked over .* calls from:$/ { finish(); inEntry = 1; head = $0; owner = ""; once = 0; next }
    / leaked over .* calls from$/ { finish(); inEntry = 0; next }
    inEntry && /pthread_once|_IO_doallocbuf|__cxa_guard/ { once = 1 }
    inEntry && owner == "" && /^ *in / && !/libc\.so|libstdc\+\+|heaptrack/ {
      owner = ($0 ~ ("/" bin "$")) ? bin : "other" }
    END { finish(); print n + 0 }' "$out/$t.leaks" 2> "$out/$t.ours")
  echo "$t (heaptrack): $(heaptrack_print -f "$out/$t".*zst 2>/dev/null | grep 'total memory leaked'), of which ours: $ours entries, exit $rc"
  [ "$ours" -eq 0 ] && [ $rc -eq 0 ] || { status=1; cat "$out/$t.ours"; }
done
echo "logs in $out"
exit $status
