#!/usr/bin/env bash
# Builds a small sparse disk image holding a Windows volume, as a normal user: no mounting, no
# loop devices. Partition tables by sgdisk/sfdisk, NTFS by mkntfs on a partition-sized file
# filled by ntfs_fill then copied into place, FAT32 by mkfs.fat and mtools; containers by
# qemu-img and ewfacquire.
#
#   make_disk_image.sh LAYOUT OUTPUT_BASE VOLUME_DIR [OPTIONS]
#
# LAYOUT       gpt          1 EFI system partition (FAT32, EFI/Microsoft/Boot/BCD),
#                           2 Windows (NTFS, VOLUME_DIR), 3 data (NTFS, --data DIR)
#              mbr          1 "System Reserved" (NTFS, Boot/BCD), 2 Windows (NTFS, VOLUME_DIR)
#              bare         the Windows NTFS volume alone, no partition table
#              The partitions' identities are fixed, so that a volume's MountedDevices can name
#              them: GPT unique GUIDs 0000000N-5752-4e49-8000-000000000000 for partition N, MBR
#              disk signature 0x57524e49.
#              two-windows  MBR: 1 Windows (VOLUME_DIR), 2 extended holding 5 Windows (--second)
# OUTPUT_BASE  writes OUTPUT_BASE.raw, and OUTPUT_BASE.<ext> for each container asked for
# VOLUME_DIR   the files of the Windows volume (Windows/System32/config/SOFTWARE …)
# OPTIONS      --bcd FILE         the BCD store for the system partition (default: a stand-in)
#              --data DIR         the files of the gpt layout's data partition (default: none)
#              --second DIR       the second Windows volume of two-windows (default: VOLUME_DIR)
#              --containers LIST  comma-separated: vhdx, vhd, vmdk (a descriptor and its
#                                 extents), qcow2, e01 (1 MiB segments .E01, .E02 …), split
#                                 (32 MiB raw segments .001, .002 …), or all; default none
#              --size MIB         the disk's size (default 128; the volumes share it)
# ENVIRONMENT  NTFS_FILL          the ntfs_fill program (default: ntfs_fill on the PATH)
set -euo pipefail

usage() { sed -n '/^#   make_disk_image/,/^# ENVIRONMENT/p' "$0" | sed 's/^# \{0,1\}//' >&2; exit 2; }
[[ $# -ge 3 ]] || usage
layout=$1 base=$2 volume=$3
shift 3
bcd= data= second=$volume containers= size_mib=128
while [[ $# -gt 0 ]]; do
  case $1 in
    --bcd) bcd=$2 ;;
    --data) data=$2 ;;
    --second) second=$2 ;;
    --containers) containers=$2 ;;
    --size) size_mib=$2 ;;
    *) usage ;;
  esac
  shift 2
done
[[ $containers == all ]] && containers=vhdx,vhd,vmdk,qcow2,e01,split
ntfs_fill=${NTFS_FILL:-ntfs_fill}
raw=$base.raw
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log=$work/log

# Runs a tool, its chatter kept out of the way unless it fails.
quiet() {
  "$@" >"$log" 2>&1 || { cat "$log" >&2; echo "make_disk_image.sh: $* failed" >&2; exit 1; }
}

# ntfs_volume START_SECTOR SECTORS LABEL DIR: an NTFS volume holding DIR, put in place on the disk.
ntfs_volume() {
  local start=$1 sectors=$2 label=$3 dir=$4 file=$work/volume.ntfs
  rm -f "$file"
  truncate -s $((sectors * 512)) "$file"
  quiet mkntfs -F -Q -q -s 512 -p "$start" -H 255 -S 63 -L "$label" "$file"
  [[ -z $dir ]] || quiet "$ntfs_fill" "$file" "$dir"
  copy_data "$file" "$raw" $((start * 512))
}

# copy_data FILE DISK OFFSET: FILE's data into DISK at byte OFFSET, its holes skipped (found with
# SEEK_DATA and SEEK_HOLE), so that a volume of tens of gigabytes, nearly all holes, takes no
# longer to place than the little it holds.
copy_data() {
  perl -e '
    my ($from, $to, $offset) = @ARGV;
    open(my $in, "<:raw", $from) or die "$from: $!\n";
    open(my $out, "+<:raw", $to) or die "$to: $!\n";
    my ($at, $end) = (0, -s $in);
    while ($at < $end) {
      my $data = sysseek($in, $at, 3);    # SEEK_DATA; none left past the last data
      last unless defined $data;
      my $hole = sysseek($in, $data, 4);  # SEEK_HOLE
      for (my $done = $data; $done < $hole; ) {
        my $length = $hole - $done < (1 << 20) ? $hole - $done : 1 << 20;
        sysseek($in, $done, 0);
        sysread($in, my $bytes, $length) == $length or die "$from: short read\n";
        sysseek($out, $offset + $done, 0);
        syswrite($out, $bytes) == $length or die "$to: short write\n";
        $done += $length;
      }
      $at = $hole;
    }' "$@"
}

# boot_files DIR PATH: a folder holding the BCD store at PATH.
boot_files() {
  local dir=$work/$1 path=$2
  mkdir -p "$dir/$(dirname "$path")"
  if [[ -n $bcd ]]; then cp "$bcd" "$dir/$path"; else printf 'BCD stand-in\n' >"$dir/$path"; fi
  echo "$dir"
}

# fat_volume START_SECTOR SECTORS: a FAT32 EFI system partition holding EFI/Microsoft/Boot/BCD.
fat_volume() {
  local start=$1 sectors=$2 files
  files=$(boot_files esp EFI/Microsoft/Boot/BCD)
  quiet mkfs.fat -F 32 -s 1 -n SYSTEM --offset "$start" "$raw" $((sectors / 2))
  export MTOOLS_SKIP_CHECK=1
  quiet mcopy -s -i "$raw@@$((start * 512))" "$files/EFI" ::/
}

# gpt_sectors N: the first sector of GPT partition N and its number of sectors.
gpt_sectors() {
  local info first last
  info=$(sgdisk -i "$1" "$raw")
  first=$(sed -n 's/^First sector: \([0-9]*\).*/\1/p' <<<"$info")
  last=$(sed -n 's/^Last sector: \([0-9]*\).*/\1/p' <<<"$info")
  echo "$first $((last + 1 - first))"
}

# guid N: the unique GUID of GPT partition N.
guid() { printf '%08x-5752-4e49-8000-000000000000' "$1"; }
signature=0x57524e49

mib=2048  # sectors
rm -f "$raw"
case $layout in
  bare)
    truncate -s "${size_mib}M" "$raw"
    ntfs_volume 0 $((size_mib * mib)) Windows "$volume"
    ;;
  gpt)
    truncate -s "${size_mib}M" "$raw"
    windows_mib=$(((size_mib - 42) * 2 / 3))
    quiet sgdisk -o -n "1:2048:+40M" -t 1:ef00 -c "1:EFI system partition" \
      -n "2:0:+${windows_mib}M" -t 2:0700 -c "2:Basic data partition" \
      -n 3:0:0 -t 3:0700 -c "3:Data" \
      -u 1:$(guid 1) -u 2:$(guid 2) -u 3:$(guid 3) "$raw"
    sgdisk -i 3 "$raw" | grep -q 'Partition name' || { echo "sgdisk wrote no table" >&2; exit 1; }
    fat_volume $(gpt_sectors 1)
    ntfs_volume $(gpt_sectors 2) Windows "$volume"
    ntfs_volume $(gpt_sectors 3) Data "$data"
    ;;
  mbr)
    truncate -s "${size_mib}M" "$raw"
    printf 'label: dos\nlabel-id: %s\nstart=2048, size=%d, type=7, bootable\nstart=%d, type=7\n' "$signature" \
      $((16 * mib)) $((17 * mib)) | quiet sfdisk "$raw"
    ntfs_volume 2048 $((16 * mib)) "System Reserved" "$(boot_files reserved Boot/BCD)"
    ntfs_volume $((17 * mib)) $(((size_mib - 17) * mib)) Windows "$volume"
    ;;
  two-windows)
    truncate -s "${size_mib}M" "$raw"
    half=$(((size_mib - 4) / 2))
    printf 'label: dos\nlabel-id: %s\nstart=2048, size=%d, type=7\nstart=%d, type=5\nstart=%d, type=7\n' "$signature" \
      $((half * mib)) $(((half + 1) * mib)) $(((half + 2) * mib)) | quiet sfdisk "$raw"
    ntfs_volume 2048 $((half * mib)) Windows "$volume"
    logical_sectors=$(sfdisk -d "$raw" | sed -n 's/.*raw5 : start= *[0-9]*, size= *\([0-9]*\).*/\1/p')
    ntfs_volume $(((half + 2) * mib)) "$logical_sectors" Windows2 "$second"
    ;;
  *) usage ;;
esac

IFS=, read -ra wanted <<<"$containers"
for container in "${wanted[@]}"; do
  case $container in
    vhdx) quiet qemu-img convert -f raw -O vhdx "$raw" "$base.vhdx" ;;
    vhd) quiet qemu-img convert -f raw -O vpc -o subformat=dynamic,force_size=on "$raw" "$base.vhd" ;;
    vmdk) quiet qemu-img convert -f raw -O vmdk -o subformat=twoGbMaxExtentSparse "$raw" "$base.vmdk" ;;
    qcow2) quiet qemu-img convert -f raw -O qcow2 "$raw" "$base.qcow2" ;;
    e01) quiet ewfacquire -u -q -t "$base" -f encase6 -c deflate:fast -S 1048576 -C case -D disk \
           -e examiner -E evidence -N notes "$raw" ;;
    split) quiet split -d -a 3 --numeric-suffixes=1 -b 32M "$raw" "$base." ;;
    *) echo "make_disk_image.sh: unknown container $container" >&2; exit 2 ;;
  esac
done
