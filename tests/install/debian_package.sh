#!/usr/bin/env bash
# The Debian package, unpacked into a scratch root as dpkg would install it (dpkg-deb -x), holds
# the programs, plug-in, schema, sample machine and manual pages where the platform keeps them;
# its dependencies are computed; and the installed vrxhost, run from another folder, inventories
# the installed sample as the build tree's vrxhost inventories the build's.
#   debian_package.sh BUILD_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/package" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$work"/package/vrx_*.deb)
dpkg-deb -f "$deb" Depends | grep -q libhivex || { echo "$deb: Depends lacks libhivex"; exit 1; }
root=$work/root
dpkg-deb -x "$deb" "$root"
multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
for file in usr/bin/vrxhost usr/bin/vrxstore usr/lib/$multiarch/vrx/libinstalledapps.so \
  usr/lib/$multiarch/vrx/libvrxwinapi.so usr/share/vrx/qelto.mof \
  usr/share/vrx/examples/sample/machine.json usr/share/man/man1/vrxhost.1.gz \
  usr/share/man/man1/vrxstore.1.gz; do
  [ -e "$root/$file" ] || { echo "$deb: no $file"; exit 1; }
done
cd "$work"
"$root/usr/bin/vrxhost" --version | grep -q '^vrxhost [0-9.]* (commit ' ||
  { echo "installed vrxhost --version: $("$root/usr/bin/vrxhost" --version)"; exit 1; }
"$root/usr/bin/vrxhost" --now 2026-11-22T10:15:30Z >installed.json
"$build/bin/vrxhost" --now 2026-11-22T10:15:30Z >built.json
cmp installed.json built.json
