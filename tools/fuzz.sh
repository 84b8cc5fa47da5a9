#!/usr/bin/env bash
# Builds every fuzz target (fuzz/fuzz_*.cpp) with clang, ASan and UBSan, runs each from its seeds
# (fuzz/seeds.list, fuzz/regressions/<target>/) for SECONDS (default 60), JOBS at a time
# (default 2), and prints one row per target: seconds, executions, crashes. A crash, hang or
# leak leaves its input in <build>/artifacts/<target>/ and makes the exit status 1.
#   bash tools/fuzz.sh [SECONDS] [JOBS]        build folder: $VRX_FUZZ_BUILD_DIR or build/fuzz
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
jobs=${2:-2}
build=${VRX_FUZZ_BUILD_DIR:-build/fuzz}
targets=$(for source in fuzz/fuzz_*.cpp; do basename "$source" .cpp; done)

cmake --preset fuzz -B "$build" >/dev/null
# shellcheck disable=SC2086
cmake --build "$build" -j "$jobs" --target $targets winapi_pe_fixtures >/dev/null

# The seed words of one target, from seeds.list, globs expanded.
seed_words() {
  local target=$1 name words
  while read -r name words; do
    [[ $name == "$target" ]] || continue
    words=${words//'${BUILD}'/$build}
    # shellcheck disable=SC2086
    echo $words
  done < fuzz/seeds.list
  echo "fuzz/regressions/$target"
}

# A fresh corpus of copies, so that what the fuzzer adds never lands in the checkout.
make_corpus() {
  local target=$1 corpus=$build/corpus/$1 word file
  rm -rf "$corpus"
  mkdir -p "$corpus"
  for word in $(seed_words "$target"); do
    [[ -e $word ]] || continue
    find "$word" -type f -print0 | while IFS= read -r -d '' file; do
      cp "$file" "$corpus/${file//\//_}"
    done
  done
}

run_target() {
  local target=$1 artifacts=$build/artifacts/$1
  rm -rf "$artifacts"
  mkdir -p "$artifacts"
  make_corpus "$target"
  "$build/bin/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -artifact_prefix="$artifacts/" -print_final_stats=1 "$build/corpus/$target" \
    >"$build/logs/$target.log" 2>&1 || true
}
export -f run_target make_corpus seed_words
export build seconds

mkdir -p "$build/logs"
printf '%s\n' $targets | xargs -P "$jobs" -I{} bash -c 'run_target {}'

crashes_total=0
printf '%-22s %8s %12s %8s\n' target seconds executions crashes
for target in $targets; do
  log=$build/logs/$target.log
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  took=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log" | tail -1)
  crashes=$(find "$build/artifacts/$target" -type f | wc -l)
  crashes_total=$((crashes_total + crashes))
  printf '%-22s %8s %12s %8s\n' "$target" "${took:-$seconds}" "${runs:-?}" "$crashes"
done
[[ $crashes_total -eq 0 ]] || { echo "inputs kept under $build/artifacts/; logs under $build/logs/" >&2; exit 1; }
