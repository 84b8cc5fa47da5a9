#!/usr/bin/env bash
# End-to-end measurement: builds Release, generates machines of 1 000, 10 000 and 100 000
# applications (H = N/50 HotFix keys, N/50 fix keys, N/100 components and variables, N/1000
# users), inventories each with vrxhost -v and prints wall time, peak RSS and each class's ms.
# A second table: the same machine as an offline volume (its registry as hive files), inventoried
# by vrxhost, against libhivex's own export of the Uninstall key (hivexregedit --export).
# Then the replay of a 12 MB hive's transaction logs (vrx_bench ReplayHiveLogs).
# Each command runs RUNS times (5 by default); the run of median wall time is the one reported.
#   bash bench/run.sh [SIZES...]        BUILD_DIR=build/bench by default
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build/bench}
SIZES=("${@:-1000 10000 100000}")
read -r -a SIZES <<<"${SIZES[*]}"
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$BUILD_DIR" -j2 --target vrxhost installedapps vrx_make_machine \
  vrx_bench >/dev/null
bin=$BUILD_DIR/bin
work=$BUILD_DIR/generated
rm -rf "$work" && mkdir -p "$work"
RUNS=${RUNS:-5}
# measure TIME ERR OUT COMMAND...: runs COMMAND RUNS times, its standard output into OUT; GNU
# time's %e and %M (wall seconds and peak resident kilobytes) of the median run go to TIME, its
# stderr to ERR.
measure() {
  local time=$1 err=$2 out=$3 run
  shift 3
  for run in $(seq "$RUNS"); do
    /usr/bin/time -f "%e %M" -o "$time.$run" "$@" >"$out" 2>"$err.$run"
  done
  run=$(for r in $(seq "$RUNS"); do echo "$(cut -d' ' -f1 "$time.$r") $r"; done | sort -n |
    sed -n "$(((RUNS + 1) / 2))p" | cut -d' ' -f2)
  cp "$time.$run" "$time" && cp "$err.$run" "$err"
}
for n in "${SIZES[@]}"; do
  "$bin/vrx_make_machine" --template "$BUILD_DIR/machines/sample" --out "$work/m$n" --apps "$n" \
    --hotfixes $((n / 50)) --fixes $((n / 50)) --components $((n / 100)) \
    --variables $((n / 100)) --users $((n / 1000 + 1)) --seed 1 --volume "$work/v$n"
  measure "$work/time$n" "$work/classes$n" /dev/null \
    "$bin/vrxhost" --machine "$work/m$n" -v --output "$work/out$n.json"
  measure "$work/vtime$n" "$work/vclasses$n" /dev/null \
    "$bin/vrxhost" --machine "$work/v$n" -v --output "$work/vout$n.json"
  software=$(find "$work/v$n" -ipath "$work/v$n/windows/system32/config/software")
  stat -c %s "$software" >"$work/hive$n"
  measure "$work/htime$n" "$work/herr$n" "$work/export$n.reg" \
    hivexregedit --export "$software" '\Microsoft\Windows\CurrentVersion\Uninstall'
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

# One row of the second table: the label $1, then what the function $2 prints for each size.
row() {
  printf '%s' "$1"
  for n in "${SIZES[@]}"; do printf '\t%s' "$("$2" "$n")"; done
  printf '\n'
}
seconds() { cut -d' ' -f1 "$work/$1"; }
mebibytes() { echo $(( $(cut -d' ' -f2 "$work/$1") / 1024 )); }
class_field() {
  awk -F'\t' -v f="$2" '$1=="QELTO_InstalledApplication"{sub(/ ms/,"",$f); print $f}' "$work/vclasses$1"
}
hive_size() { awk '{printf "%.1f", $1 / 1048576}' "$work/hive$1"; }
applications() { class_field "$1" 2; }
application_ms() { class_field "$1" 3; }
volume_wall() { seconds "vtime$1"; }
volume_rss() { mebibytes "vtime$1"; }
exported_keys() { echo $(( $(grep -c '^\[' "$work/export$1.reg") - 1 )); }
export_wall() { seconds "htime$1"; }
export_rss() { mebibytes "htime$1"; }
speedup() { awk -v h="$(export_wall "$1")" -v v="$(volume_wall "$1")" 'BEGIN{printf "%.1f", h / v}'; }
echo
{
  printf 'offline volume'
  for n in "${SIZES[@]}"; do printf '\t%s apps' "$n"; done
  printf '\n'
  row 'SOFTWARE hive (MiB)' hive_size
  row 'vrxhost: applications listed' applications
  row 'vrxhost: QELTO_InstalledApplication (ms)' application_ms
  row 'vrxhost: wall time (s)' volume_wall
  row 'vrxhost: peak RSS (MiB)' volume_rss
  row 'hivexregedit --export Uninstall: keys' exported_keys
  row 'hivexregedit --export Uninstall: wall time (s)' export_wall
  row 'hivexregedit --export Uninstall: peak RSS (MiB)' export_rss
  row 'hivexregedit time / vrxhost time (goal >= 3.5)' speedup
} | column -t -s $'\t'
echo
"$bin/vrx_bench" --benchmark_filter=ReplayHiveLogs --benchmark_repetitions="$RUNS" \
  --benchmark_report_aggregates_only=true 2>/dev/null | grep -E 'ReplayHiveLogs.*median'
