#!/usr/bin/env bash
# Under each Windows version this Wine can report, vrxhost.exe's OSType and OSSubType must be what
# the version decision tree gives for the facts Wine reports there: a 64-bit processor
# (architecture 9), no R2Setup or MiniNT key, suite tests that all fail, and GetProductInfo
# answering 0x1C on workstations and 0x7 on servers (neither has an edition row).
# The program carries no supportedOS manifest, so win81 and win10 are reported as 6.2.
# The Linux vrxhost given the prefix must find the same OSType from the prefix's registry alone.
set -euo pipefail
bin=${1:?folder of the Windows build}
vrxhost=${2:?the Linux vrxhost}
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"
wineserver -w
cp "$bin"/*.exe "$bin"/*.dll "$bin"/qelto.mof "$work/"
cd "$work"

# version   OSType OSSubType  why
expected=(
  "winxp64   71 4"    # 5.2 workstation; "Professional"
  "win2003   70 8"    # 5.2 server, 64-bit, no R2; "Standard Edition"
  "vista     75 12"   # 6.0 workstation, 64-bit; "Professional" read as "Business Edition"
  "win2008   77 8"    # 6.0 server, 64-bit; product 0x7 is not HPC, so "Standard Edition"
  "win7      83 4"    # 6.1 workstation, not PE; product 0x1C has no row, "Professional" stays
  "win2008r2 82 8"    # 6.1 server; "Standard Edition" is not Small Business, so 82
  "win8      85 4"    # 6.2 workstation
  "win81     85 4"    # reported as 6.2 without a manifest
  "win10     85 4"    # reported as 6.2 without a manifest
)
failures=0
for row in "${expected[@]}"; do
  read -r version type subtype <<<"$row"
  wine winecfg -v "$version" >/dev/null 2>&1
  wine vrxhost.exe --output os.json QELTO_OperatingSystem >stdout.txt 2>stderr.txt \
    || { echo "FAIL $version: exit status $?"; cat stderr.txt; failures=$((failures + 1)); continue; }
  got=$(jq -r '.. | objects | select(.class? == "QELTO_OperatingSystem")
               | .properties | "\(.OSType) \(.OSSubType)"' os.json)
  if [ "$got" = "$type $subtype" ]; then
    echo "ok   $version: OSType $type, OSSubType $subtype"
  else
    echo "FAIL $version: expected OSType $type OSSubType $subtype, got '$got'"
    failures=$((failures + 1))
  fi
  wineserver -w
  "$vrxhost" --machine "$WINEPREFIX" --output prefix.json QELTO_OperatingSystem 2>stderr.txt \
    || { echo "FAIL $version: the Linux vrxhost"; cat stderr.txt; failures=$((failures + 1)); continue; }
  got=$(jq -r '.instances[] | select(.class == "QELTO_OperatingSystem") | .properties.OSType' \
          prefix.json)
  if [ "$got" = "$type" ]; then
    echo "ok   $version as a prefix: OSType $type"
  else
    echo "FAIL $version as a prefix: expected OSType $type, got '$got'"
    failures=$((failures + 1))
  fi
done
[ "$failures" -eq 0 ]
