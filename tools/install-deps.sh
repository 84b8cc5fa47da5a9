#!/usr/bin/env bash
# Installs, from Debian's packages, everything the build and the tests use.
set -euo pipefail
packages=(cmake ninja-build g++ clang libboost-dev nlohmann-json3-dev libcli11-dev
          libgtest-dev libgmock-dev libbenchmark-dev mingw-w64 wine64 libxml2-utils
          libhivex-dev libhivex-bin libwin-hivex-perl msitools wixl valgrind time jq ccache
          libjemalloc-dev clang-format libtsk-dev libvhdi-dev libvmdk-dev libqcow-dev
          libewf-dev ntfs-3g-dev ntfs-3g gdisk fdisk mtools dosfstools qemu-utils ewf-tools
          dpkg-dev mandoc
          libsqlite3-dev sqlite3 libpq-dev postgresql libxml2-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=; [ "$(id -u)" -eq 0 ] || SUDO=sudo
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y "${missing[@]}"
fi
