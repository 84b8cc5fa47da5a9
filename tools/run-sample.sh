#!/usr/bin/env bash
# Builds vrxhost for Linux and inventories the sample machine; any further
# arguments go to vrxhost.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh >/dev/null
cmake --preset linux >/dev/null
cmake --build --preset linux >/dev/null
exec build/linux/bin/vrxhost "$@"
