#!/usr/bin/env bash
# Plays a machine directory in a throwaway prefix (its registry files imported with regedit, its
# drive_c copied in, the Windows version it reports set with winecfg), then checks that every
# registry- and file-derived instance the Linux vrxhost reports from the directory, vrxhost.exe
# reports identically inside the prefix. What the prefix adds of its own is listed below.
set -euo pipefail
bin=${1:?folder of the Windows build}
vrxhost=${2:?the Linux vrxhost}
machine=$(cd "${3:?machine directory}" && pwd)
winver=${4:?the version name for winecfg -v}
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"

# regedit widens hex strings of a UTF-8 file twice: give it UTF-16LE with a byte-order mark.
for reg in "$machine"/registry/*.reg; do
  if [ "$(head -c 2 "$reg" | od -An -tx1 | tr -d ' ')" = fffe ]; then cp "$reg" "$work/import.reg"
  else
    encoding=UTF-8; head -c 8 "$reg" | grep -q REGEDIT4 && encoding=CP1252
    { printf '\xff\xfe'; sed 's/\r*$/\r/' "$reg" | iconv -f "$encoding" -t UTF-16LE; } >"$work/import.reg"
  fi
  wine regedit /S "$work/import.reg"
done
# drive_c's folders merge into the prefix's whatever their case (Windows is windows there).
for dir in "$machine"/drive_c/*; do
  [ -e "$dir" ] || continue
  target=$(find "$WINEPREFIX/drive_c" -maxdepth 1 -iname "$(basename "$dir")" | head -n 1)
  mkdir -p "${target:=$WINEPREFIX/drive_c/$(basename "$dir")}"
  cp -r "$dir"/. "$target"/
done
wine winecfg -v "$winver"

cp "$bin"/*.exe "$bin"/*.dll "$bin"/qelto.mof "$work/"
cd "$work"
classes=(QELTO_InstalledApplication QELTO_SystemEnvironmentVariable
         QELTO_OSComponent QELTO_OSBaseComponent QELTO_OSSubComponent)
# Hot fixes come from WMI where it answers; a prefix cannot play a machine's WMI answers, so they
# compare only on machines without them (the registry route on both sides).
jq -e '.wmi.Win32_QuickFixEngineering' "$machine/machine.json" >/dev/null || classes+=(QELTO_InstalledFix)
# Without Wine's WMI provider the hot fixes take the registry route, as they do on Linux.
WINEDLLOVERRIDES="$WINEDLLOVERRIDES;wbemprox=" wine vrxhost.exe --output wine.json "${classes[@]}" >stdout.txt 2>stderr.txt \
  || { echo "FAIL: vrxhost.exe"; cat stderr.txt; exit 1; }
"$vrxhost" --machine "$machine" --output linux.json "${classes[@]}" 2>stderr.txt \
  || { echo "FAIL: vrxhost --machine"; cat stderr.txt; exit 1; }

# Differences by nature, left out: the computer system (the prefix's name is the host's); the
# variables Wine itself sets in Session Manager\Environment and its hot fix Q246009, which the
# machine does not have; SystemID, the computer's name (and so the paths that carry it); the
# offset of install dates, which Wine takes from the host's zone, not the registry's; the case
# of the Windows folder in paths and references, which is C:\windows in a prefix; the case of
# variable names, as an imported value keeps the name of the prefix's own (Path is PATH there).
comparable='select(.class != "QELTO_ComputerSystem") | {class, properties: (.properties
  | del(.SystemID) | with_entries(.value |= (tostring | sub("(?<d>^[0-9]{14}\\.[0-9]{6})[-+][0-9]{3}$"; "\(.d)")
  | gsub("C:(?<s>\\\\+)Windows"; "C:\(.s)windows")))
  | if .SettingID then .SettingID |= ascii_downcase else . end)}'
jq -S "[.instances[] | $comparable] | sort" linux.json >linux.sorted
jq -S --slurpfile linux linux.sorted "[.instances[] | $comparable
  | select(.class != \"QELTO_SystemEnvironmentVariable\"
           or (.properties.SettingID | IN(\$linux[0][].properties.SettingID)))
  | select(.properties.ProductName? // \"\" | test(\"Q246009\") | not)] | sort" wine.json >wine.sorted
[ "$(jq length linux.sorted)" -gt 0 ] || { echo "FAIL: nothing from $machine"; exit 1; }
diff -u wine.sorted linux.sorted || { echo "FAIL: $machine differs (- under Wine, + on Linux)"; exit 1; }
echo "$machine inventories under Wine as on Linux"
