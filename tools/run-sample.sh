#!/usr/bin/env bash
# Builds only what inventorying the sample machine needs (vrxhost, the
# plug-in and the sample machine; configuring puts the schema beside them),
# then runs vrxhost with any further arguments. .ci/run builds the rest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh >/dev/null
cmake --preset linux >/dev/null
cmake --build --preset linux --target vrxhost installedapps vrx_sample_machine >/dev/null
exec build/linux/bin/vrxhost "$@"
