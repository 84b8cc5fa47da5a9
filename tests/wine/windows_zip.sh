#!/usr/bin/env bash
# The Windows zip, unpacked into a folder of its own, runs from another folder under Wine: its
# vrxhost.exe finds the plug-in, the libraries and the schema beside itself and says its version.
set -euo pipefail
build=${1:?the Windows build folder}
bin=$build/bin
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"
wineserver -w
cpack --config "$build/CPackConfig.cmake" -G ZIP -B "$work/package" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; exit 1; }
unzip -q "$work"/package/vrx-*-windows-x64.zip -d "$work/unpacked"
exe=$(ls "$work"/unpacked/*/vrxhost.exe)
mkdir "$work/elsewhere" && cd "$work/elsewhere"
fail() { echo "FAIL: $*"; cat stderr.txt 2>/dev/null; exit 1; }
wine "$exe" --version >version.txt 2>stderr.txt || fail "--version"
tr -d '\r' <version.txt | grep -q '^vrxhost [0-9.]* (commit ' || fail "version: $(cat version.txt)"
wine "$exe" QELTO_OperatingSystem --output out.json >stdout.txt 2>stderr.txt || fail "inventory"
grep -q '"class": "QELTO_OperatingSystem"' out.json || fail "no operating system instance"
echo "ok: $(tr -d '\r' <version.txt) from $(dirname "$exe")"
