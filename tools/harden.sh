#!/usr/bin/env bash
# The hardening figures in one run: every Linux test under AddressSanitizer and
# UndefinedBehaviorSanitizer, vrxhost under valgrind on every example machine (in a plain build),
# and every fuzz target for SECONDS each (default 60), two at a time. Ends with the three results.
#   bash tools/harden.sh [SECONDS]        builds under $VRX_CI_BUILD_DIR (default build/)
set -euo pipefail
cd "$(dirname "$0")/.."
root=${VRX_CI_BUILD_DIR:-build}
jobs=$(nproc)
reports=$root/harden
mkdir -p "$reports"

cmake --preset linux-asan -B "$root/linux-asan"
cmake --build "$root/linux-asan" -j "$jobs"
LSAN_OPTIONS=suppressions=$PWD/tools/lsan.supp \
  ctest --test-dir "$root/linux-asan" -j "$jobs" --output-on-failure -LE wine |
  tee "$reports/sanitizers.txt"

cmake --preset linux -B "$root/linux" -DVRX_WINDOWS_BUILD_DIR="$PWD/$root/windows"
cmake --build "$root/linux" -j "$jobs"
bash tools/valgrind.sh "$root/linux" | tee "$reports/valgrind.txt"

VRX_FUZZ_BUILD_DIR=$root/fuzz bash tools/fuzz.sh "${1:-60}" 2 | tee "$reports/fuzz.txt"

echo
echo "== ASan+UBSan: $(grep 'tests passed' "$reports/sanitizers.txt")"
echo "== valgrind:"
cat "$reports/valgrind.txt"
echo "== fuzzing:"
cat "$reports/fuzz.txt"
