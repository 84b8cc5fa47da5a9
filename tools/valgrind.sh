#!/usr/bin/env bash
# Runs the vrxhost of a build under valgrind's memcheck on every example machine in every output
# format. A memory error or a lost block (definite, indirect or possible) fails the run; memory
# still reachable at exit is what the process-life singletons hold (the plug-in manager with the
# repository under it, the core logger, the plug-in's logger), listed but not an error.
# tools/valgrind.supp holds the one false report valgrind makes of glibc here.
#   bash tools/valgrind.sh [BUILD]        default: build/linux
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/linux}
logs=$build/valgrind
mkdir -p "$logs"
failed=0
printf '%-16s %-6s %7s %12s %16s\n' machine format errors "lost bytes" "reachable bytes"
for machine in examples/machines/*/ "$build/machines/sample/"; do
  [[ -d $machine ]] || continue
  label=$(basename "$machine")
  [[ $machine == "$build"/* ]] && label="built-$label"
  for format in json xml mof table; do
    log=$logs/$label-$format.log
    status=0
    # vrxhost allocates through jemalloc, which memcheck must watch in place of the C library.
    valgrind --soname-synonyms=somalloc='*jemalloc*' --suppressions=tools/valgrind.supp --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,indirect,possible \
      --log-file="$log" "$build/bin/vrxhost" --machine "$machine" --format "$format" \
      --output "$logs/$label.$format" || status=$?
    errors=$(sed -n 's/.*ERROR SUMMARY: \([0-9,]*\) errors.*/\1/p' "$log" | tr -d ,)
    lost=0
    for kind in "definitely lost" "indirectly lost" "possibly lost"; do
      bytes=$(sed -n "s/.*$kind: \([0-9,]*\) bytes.*/\1/p" "$log" | tr -d ,)
      lost=$((lost + ${bytes:-0}))
    done
    reachable=$(sed -n 's/.*still reachable: \([0-9,]*\) bytes.*/\1/p' "$log" | tr -d ,)
    printf '%-16s %-6s %7s %12s %16s\n' "$label" "$format" "${errors:-?}" "$lost" "${reachable:-0}"
    [[ $status -eq 0 && ${errors:-1} -eq 0 ]] || failed=1
  done
done
[[ $failed -eq 0 ]] || { echo "valgrind found errors; logs under $logs/" >&2; exit 1; }
