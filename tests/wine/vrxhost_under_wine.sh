#!/usr/bin/env bash
# Runs vrxhost.exe under Wine in a throwaway prefix on all its default classes and
# checks the exit status, the plug-in's lifecycle lines in the log, the instances
# of the classes Wine can answer, and that its CIM-XML validates against the DTD
# given as the second argument, if any.
set -euo pipefail
bin=${1:?folder of the Windows build}
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"
wineserver -w

cp "$bin"/*.exe "$bin"/*.dll "$bin"/qelto.mof "$work/"
cd "$work"
status=0
wine vrxhost.exe --log log.txt --output out.json >stdout.txt 2>stderr.txt || status=$?
fail() { echo "FAIL: $*"; echo "--- stderr"; cat stderr.txt; echo "--- log"; cat log.txt 2>/dev/null; exit 1; }
[ "$status" -eq 0 ] || fail "exit status $status"
tr -d '\r' <log.txt >log.lf
grep -qx $'3\tTInstalledAppsCallbacks::Init -Initializing the plugin.' log.lf || fail "no Init line"
grep -qx $'3\tNormal exit from plugin.' log.lf || fail "no normal exit line"
tail -n 1 log.lf | grep -qx $'3\tTInstalledAppsCallbacks::DeInit -De-Initializing the plugin.' \
  || fail "DeInit is not the last line"
grep -q '"class": "QELTO_ComputerSystem"' out.json || fail "no computer system instance"
grep -q '"CreationClassName": "QELTO_ComputerSystem"' out.json || fail "no CreationClassName"
# A fresh prefix has no applications, page files, boot.ini or optional components; these answer.
for class in Account AccountOnSystem CurrentAccountOnSystem InstalledFix OperatingSystem \
             OSEnvironmentVariable SystemEnvironmentVariable UserEnvironmentVariable TimeZone; do
  grep -q "\"class\": \"QELTO_$class\"" out.json || fail "no QELTO_$class instance"
done
wine vrxhost.exe --format xml --output out.xml QELTO_Account QELTO_TimeZone \
  >stdout.txt 2>stderr.txt || fail "--format xml"
# There is no machine directory to export on Windows.
status=0
wine vrxhost.exe --export-registry HKLM >stdout.txt 2>stderr.txt || status=$?
[ "$status" -eq 2 ] && grep -q "is for Linux" stderr.txt || fail "--export-registry not refused"
dtd=${2:-}
if [ -f "$dtd" ]; then
  xmllint --noout --dtdvalid "$dtd" out.xml 2>stderr.txt || fail "CIM-XML does not validate"
fi
echo "vrxhost.exe ran under Wine"
