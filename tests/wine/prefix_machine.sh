#!/usr/bin/env bash
# A Wine prefix as a machine directory: imports applications and environment variables into a
# throwaway prefix with regedit, then checks that the Linux vrxhost given the prefix reports the
# registry-derived classes exactly as vrxhost.exe running inside that prefix does.
set -euo pipefail
bin=${1:?folder of the Windows build}
vrxhost=${2:?the Linux vrxhost}
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"

# regedit reads UTF-16LE with a byte-order mark without widening hex strings twice.
{ printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE <<'REG'
Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\PrefixTestApp]
"DisplayName"="Prefix Test App café"
"DisplayVersion"="2.5.1"
"Publisher"="Test \"Quoted\" Publisher"
"InstallDate"="20240105"
"InstallLocation"="C:\\Program Files\\Prefix Test"

[HKEY_LOCAL_MACHINE\SOFTWARE\Wow6432Node\Microsoft\Windows\CurrentVersion\Uninstall\{01234567-89AB-CDEF-0123-456789ABCDEF}]
"DisplayName"="Prefix Test 32"
"DisplayVersion"="1.0"
"EstimatedSize"=dword:00000400

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Uninstall\UserApp]
"DisplayName"="Per-user App"

[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Session Manager\Environment]
"PREFIX_TEST_SYSTEM"="%SystemRoot%\\Zürich \"quoted\""

[HKEY_CURRENT_USER\Environment]
"PREFIX_TEST_USER"="C:\\users\\some where"
REG
} | sed 's/\x0a\x00/\x0d\x00\x0a\x00/g' >"$work/apps.reg"
wine regedit /S "$work/apps.reg"

cp "$bin"/*.exe "$bin"/*.dll "$bin"/qelto.mof "$work/"
cd "$work"
classes=(QELTO_InstalledApplication QELTO_SystemEnvironmentVariable QELTO_UserEnvironmentVariable
         QELTO_OperatingSystem QELTO_TimeZone QELTO_Account)
wine vrxhost.exe --output wine.json "${classes[@]}" >stdout.txt 2>stderr.txt \
  || { echo "FAIL: vrxhost.exe"; cat stderr.txt; exit 1; }
# The registry files on disk are written when the server exits.
wineserver -w
"$vrxhost" --machine "$WINEPREFIX" --output linux.json "${classes[@]}" 2>stderr.txt \
  || { echo "FAIL: vrxhost --machine"; cat stderr.txt; exit 1; }

# One class's instances by path; for the operating system and the zone only what the registry
# says (the rest are live figures and clocks a prefix does not keep).
registryFacts='def facts: if .class == "QELTO_OperatingSystem"
  then .properties |= {Version, BuildID, ProductName, ProductID, FixLevel, InstallDate, OSType}
  elif .class == "QELTO_TimeZone" then .properties |= {TheTimeZone, DaylightSaving}
  else . end;'
failed=0
for class in "${classes[@]}"; do
  filter="$registryFacts [.instances[] | select(.class == \"$class\") | facts] | sort_by(.path)"
  jq -S "$filter" wine.json >"wine.$class"
  jq -S "$filter" linux.json >"linux.$class"
  if [ "$(jq length "wine.$class")" -eq 0 ]; then
    echo "FAIL: no $class from vrxhost.exe"; failed=1
  elif ! diff -u "wine.$class" "linux.$class"; then
    echo "FAIL: $class differs (- under Wine, + from the prefix)"; failed=1
  fi
done
for expected in "Prefix Test App café" "Prefix Test 32" PREFIX_TEST_SYSTEM PREFIX_TEST_USER; do
  grep -q "$expected" linux.json || { echo "FAIL: $expected is missing"; failed=1; }
done
[ "$failed" -eq 0 ] || exit 1
echo "a Wine prefix inventories as vrxhost.exe inside it does"
