#!/usr/bin/env bash
# End-to-end measurement: builds Release, generates machines of 1 000, 10 000 and 100 000
# applications (H = N/50 HotFix keys, N/50 fix keys, N/100 components and variables, N/1000
# users), inventories each with vrxhost -v and prints wall time, peak RSS and each class's ms.
#   bash bench/run.sh [SIZES...]        BUILD_DIR=build/bench by default
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build/bench}
SIZES=("${@:-1000 10000 100000}")
read -r -a SIZES <<<"${SIZES[*]}"
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$BUILD_DIR" -j2 --target vrxhost installedapps vrx_make_machine >/dev/null
bin=$BUILD_DIR/bin
work=$BUILD_DIR/generated
rm -rf "$work" && mkdir -p "$work"
for n in "${SIZES[@]}"; do
  "$bin/vrx_make_machine" --template "$BUILD_DIR/machines/sample" --out "$work/m$n" --apps "$n" \
    --hotfixes $((n / 50)) --fixes $((n / 50)) --components $((n / 100)) \
    --variables $((n / 100)) --users $((n / 1000 + 1)) --seed 1
  # GNU time's %e and %M: wall seconds and peak resident kilobytes.
  /usr/bin/time -f "%e %M" -o "$work/time$n" \
    "$bin/vrxhost" --machine "$work/m$n" -v --output "$work/out$n.json" 2>"$work/classes$n"
done
{
  printf 'class'
  for n in "${SIZES[@]}"; do printf '\t%s apps (ms)' "$n"; done
  printf '\n'
  cut -f1 "$work/classes${SIZES[0]}" | while read -r class; do
    printf '%s' "$class"
    for n in "${SIZES[@]}"; do printf '\t%s' "$(awk -F'\t' -v c="$class" '$1==c{sub(/ ms/,"",$3); print $3}' "$work/classes$n")"; done
    printf '\n'
  done
  printf 'wall time (s)'
  for n in "${SIZES[@]}"; do printf '\t%s' "$(cut -d' ' -f1 "$work/time$n")"; done
  printf '\npeak RSS (MiB)'
  for n in "${SIZES[@]}"; do printf '\t%s' "$(( $(cut -d' ' -f2 "$work/time$n") / 1024 ))"; done
  printf '\n'
} | column -t -s $'\t'
