#!/usr/bin/env bash
# A 64 GiB disk image, mostly holes, holding the machine of 100 000 applications as an offline
# volume (GPT: EFI system partition, Windows, data), in raw and VHDX: vrxhost's wall time and the
# bytes it read from the image (counted where The Sleuth Kit asks the container for them), next
# to the volume folder the disk was made from. Goal: at most 2 s and 5 % of the disk read.
#   bash bench/disk_image.sh [APPLICATIONS]     BUILD_DIR=build/bench by default; RUNS=5
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build/bench}
RUNS=${RUNS:-5}
n=${1:-100000}
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$BUILD_DIR" -j2 --target vrxhost installedapps vrx_make_machine ntfs_fill >/dev/null
bin=$BUILD_DIR/bin
work=$BUILD_DIR/disk_image
rm -rf "$work" && mkdir -p "$work/data"
"$bin/vrx_make_machine" --template "$BUILD_DIR/machines/sample" --out "$work/m" --apps "$n" \
  --hotfixes $((n / 50)) --fixes $((n / 50)) --components $((n / 100)) \
  --variables $((n / 100)) --users $((n / 1000 + 1)) --seed 1 --volume "$work/volume" >/dev/null
NTFS_FILL=$(find "$BUILD_DIR" -name ntfs_fill -type f -perm -u+x | head -1) \
  tests/images/make_disk_image.sh gpt "$work/disk" "$work/volume" --data "$work/data" \
  --size 65536 --containers vhdx
# median COMMAND...: the wall seconds of the median of RUNS runs; the last run's stderr in $work/err.
median() {
  local run
  for run in $(seq "$RUNS"); do
    /usr/bin/time -f %e -o "$work/time" "$@" >/dev/null 2>"$work/err"
    cat "$work/time"
  done | sort -n | sed -n "$(((RUNS + 1) / 2))p"
}
{
  printf 'machine (%s applications)\twall time (s)\tbytes read\tof the disk\tfile size\n' "$n"
  printf 'volume folder\t%s\t-\t-\t-\n' "$(median "$bin/vrxhost" --machine "$work/volume" -v)"
  for image in disk.raw disk.vhdx; do
    seconds=$(median "$bin/vrxhost" --machine "$work/$image" -v)
    read -r read _ size _ < <(sed -n 's/^disk image: \([0-9]*\) of \([0-9]*\) bytes read.*/\1 x \2 x/p' "$work/err")
    printf '%s\t%s\t%s MiB\t%s %%\t%s MiB on disk\n' "$image" "$seconds" $((read >> 20)) \
      "$(awk -v r="$read" -v s="$size" 'BEGIN{printf "%.2f", 100 * r / s}')" \
      $(($(du -k "$work/$image" | cut -f1) >> 10))
  done
} | column -t -s $'\t'
