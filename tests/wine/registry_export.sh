#!/usr/bin/env bash
# The Linux vrxhost --export-registry against Wine's own regedit /E on one prefix: a key holding
# values of every type and of hex lists of every line width (imported with regedit), and the
# prefix's time zones, come out byte for byte the same.
set -euo pipefail
bin=${1:?folder of the Windows build}
vrxhost=${2:?the Linux vrxhost}
source "$(dirname "${BASH_SOURCE[0]}")/throwaway_prefix.sh"

# "00,01,…" for the first $1 byte values.
bytes() { seq 0 $(($1 - 1)) | xargs printf '%02x,' | sed 's/,$//'; }
{
  cat <<'REG'
Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\Software\Vendor\Clé de Ünïcode 𝄞]
@="default"
"Say \"hi\" \\ there"="a\\b\"c"
"Empty"=""
"Empty multi"=hex(7):
"Languages"=hex(7):65,00,6e,00,00,00,64,00,65,00,00,00,00,00
"Size"=hex(b):00,10,00,00,00,00,00,00
"Nothing"=hex(0):01,02
"Big type"=hex(100000):ff
"Count"=dword:0a0b0c0d
"Path"=hex(2):25,00,53,00,79,00,73,00,74,00,65,00,6d,00,52,00,6f,00,6f,00,74,00,25,00,00,00
"A value name so long that it goes past the width of one line all by itself, yes"=hex:01,02,03
REG
  # Names of one to three more characters start the hex list at each column a line can end on.
  for name in B B2 B23 B234 𝄞b; do echo "\"$name\"=hex:$(bytes 100)"; done
  printf '\n[HKEY_LOCAL_MACHINE\\Software\\Vendor\\b]\n\n'
  printf '[HKEY_LOCAL_MACHINE\\Software\\Vendor\\A]\n"x"="y"\n\n'
  printf '[HKEY_LOCAL_MACHINE\\Software\\Vendor\\a\\C]\n'
} | sed 's/$/\r/' | { printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE; } >"$work/values.reg"
wine regedit /S "$work/values.reg"

keys=('HKEY_LOCAL_MACHINE\Software\Vendor'
      'HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\Time Zones')
for i in "${!keys[@]}"; do wine regedit /E "$work/wine$i.reg" "${keys[$i]}"; done
# The registry files on disk are written when the server exits.
wineserver -w
failed=0
for i in "${!keys[@]}"; do
  "$vrxhost" --machine "$WINEPREFIX" --export-registry "${keys[$i]}" --output "$work/linux$i.reg"
  if ! cmp -s "$work/wine$i.reg" "$work/linux$i.reg"; then
    echo "FAIL: ${keys[$i]} differs (- regedit, + vrxhost)"
    diff -u <(iconv -f UTF-16 -t UTF-8 "$work/wine$i.reg") \
      <(iconv -f UTF-16 -t UTF-8 "$work/linux$i.reg") | head -40 || true
    failed=1
  fi
done
# Both sides empty would agree too (grep reads all, so that iconv never meets a closed pipe).
for expected in '"Count"=dword:0a0b0c0d' '"B234"=hex:00,01' 'Ünïcode 𝄞]'; do
  iconv -f UTF-16 -t UTF-8 "$work/linux0.reg" | grep -F "$expected" >/dev/null \
    || { echo "FAIL: $expected is not in the export"; failed=1; }
done
iconv -f UTF-16 -t UTF-8 "$work/linux1.reg" | grep -F '"TZI"=hex:' >/dev/null || { echo "FAIL: no TZI"; failed=1; }
[ "$failed" -eq 0 ] || exit 1
echo "vrxhost exports the prefix's registry as regedit does"
