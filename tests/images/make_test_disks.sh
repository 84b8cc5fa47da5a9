#!/usr/bin/env bash
# The disks image_tests read, made once before them (a CTest fixture): volume folders of known
# files, then each layout of make_disk_image.sh, the gpt one in every container.
#   make_test_disks.sh OUT_DIR NTFS_FILL
# Where a tool is missing nothing is made, and the tests report a skip.
set -euo pipefail
out=$1
export NTFS_FILL=$2
here=$(dirname "$0")
for tool in "$NTFS_FILL" mkntfs sgdisk sfdisk mkfs.fat mcopy qemu-img ewfacquire; do
  command -v "$tool" >/dev/null || { echo "no $tool: no test disks" >&2; rm -rf "$out"; exit 0; }
done
rm -rf "$out"
mkdir -p "$out"/volume/Windows/System32/config "$out"/volume/Users/Public "$out"/second/Windows \
  "$out"/data/Data
# A file that fits in its MFT record, one of many clusters, and two names differing in case only.
printf '[fonts]\r\n' >"$out"/volume/Windows/win.ini
head -c 1500000 /dev/urandom >"$out"/volume/Windows/System32/config/SOFTWARE
head -c 4096 /dev/urandom >"$out"/volume/Windows/System32/config/SYSTEM
printf 'second\r\n' >"$out"/second/Windows/win.ini
printf 'pagefile' >"$out"/data/pagefile.sys
printf 'mixed' >"$out"/data/Data/Case.txt
printf 'UPPER CASE' >"$out"/data/Data/CASE.TXT
head -c 200 /dev/urandom >"$out"/BCD
for layout in gpt mbr bare two-windows; do
  containers=
  [[ $layout == gpt ]] && containers=all
  "$here"/make_disk_image.sh "$layout" "$out/$layout" "$out"/volume --bcd "$out"/BCD \
    --data "$out"/data --second "$out"/second --containers "$containers"
done
