# Sourced by the Wine tests with the Windows build's folder as $bin: skips the test (77) without
# that build or Wine, then makes a fresh prefix, $WINEPREFIX under $work, both removed on exit.
[ -f "$bin/vrxhost.exe" ] || { echo "no Windows build in $bin"; exit 77; }
command -v wine >/dev/null || { echo "wine is not installed"; exit 77; }

work=$(mktemp -d)
export WINEPREFIX="$work/prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# With a Unix-style TZ Wine's C runtime makes up a zone; unset, it follows the host's.
unset TZ DISPLAY
trap 'wineserver -k 2>/dev/null || true; rm -rf "$work"' EXIT
wineboot -i >/dev/null 2>&1
