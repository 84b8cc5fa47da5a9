#!/usr/bin/env bash
# Installs two packages built with wixl into a throwaway prefix with msiexec, then removes the
# second one's Uninstall key so that only Classes\Installer\Products knows it. vrxhost.exe inside
# the prefix and the Linux vrxhost given the prefix must both list the first from its Uninstall
# key and the second from its packed Installer version, once each.
set -euo pipefail
bin=${1:?folder of the Windows build}
vrxhost=${2:?the Linux vrxhost}
command -v wixl >/dev/null || { echo "wixl is not installed"; exit 77; }
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"
wxs="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/test_package.wxs"
cp "$bin"/*.exe "$bin"/*.dll "$bin"/qelto.mof "$work/"
cd "$work"
echo "installed by a test" >readme.txt

install() {  # name version guid-stem
  wixl -a x64 -D Name="$1" -D Version="$2" -D Guid="$3" -o package.msi "$wxs"
  wine msiexec /i package.msi /qn || { echo "FAIL: msiexec of $1 ($?)"; exit 1; }
}
install "Vrx Test Editor" 2.7.1234 6F2C1A10-3B4D-4E5F-8A9B-0C1D2E3F4A5
install "Vrx Test Runtime" 12.10.4000 6F2C1A10-3B4D-4E5F-8A9B-0C1D2E3F4B5
wine reg delete \
  'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\{6F2C1A10-3B4D-4E5F-8A9B-0C1D2E3F4B51}' \
  /f >/dev/null

wine vrxhost.exe --output wine.json QELTO_InstalledApplication >stdout.txt 2>stderr.txt \
  || { echo "FAIL: vrxhost.exe"; cat stderr.txt; exit 1; }
wineserver -w   # the registry files on disk are written when the server exits
"$vrxhost" --machine "$WINEPREFIX" --output linux.json QELTO_InstalledApplication 2>stderr.txt \
  || { echo "FAIL: vrxhost --machine"; cat stderr.txt; exit 1; }

# The identifying number is the packed Version DWORD (major << 24 | minor << 16 | build).
expected='[{"ProductIdentifyingNumber":"34014418","ProductName":"Vrx Test Editor","ProductVersion":"2.7.1234"},
  {"ProductIdentifyingNumber":"201985952","ProductName":"Vrx Test Runtime","ProductVersion":"12.10.4000"}]'
failed=0
for output in wine.json linux.json; do
  got=$(jq -c '[.instances[] | select(.properties.ProductName? // "" | startswith("Vrx Test"))
                | .properties | {ProductIdentifyingNumber: (.ProductIdentifyingNumber | tostring),
                                 ProductName, ProductVersion}]
               | sort_by(.ProductName)' "$output")
  if [ "$got" != "$(jq -c . <<<"$expected")" ]; then
    echo "FAIL: $output lists"; jq . <<<"$got"; failed=1
  fi
done
[ "$failed" -eq 0 ] || exit 1
echo "installed packages are listed from both keys, under Wine and from the prefix"
