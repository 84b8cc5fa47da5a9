#!/bin/bash
# check_layers.sh on a small tree: each kind of wrong include is reported at its file and line,
# and the includes the layers allow (the seam's among them) pass.
set -uo pipefail
check=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
put() { mkdir -p "$tree/$(dirname "$1")" && printf '%s\n' "${@:2}" >"$tree/$1"; }

put frame/platform.h '#include "winapi/include/windows.h"'
put frame/get_info.cpp '#include "frame/get_info.h"' '#include <string>' '#include "os/os_names.h"'
put os/os_info.cpp '#include "frame/get_info.h"' '#include "host/status.h"' '#include "accounts/a.h"'
put accounts/a.cpp '#include "winapi/machine/machine.h"'
put plugin/table.cpp '#include "os/os_info.h"' '#include "accounts/a.h"' '#include "frame/get_info.h"'
put vrxcore/os_specific.cpp '#include "host/os_specific.h"' '#include "frame/platform.h"'
put vrxcore/spawn_machine.cpp '#include "winapi/machine/machine.h"'
put kelmon/root_object.cpp '#include "vrxcore/core_logger.h"' '#include "plugin/registration.h"'
put host/plugin.h '#include "vrxcore/repository.h"'
put tools/vrxhost/platform_linux.cpp '#include "winapi/machine/machine.h"' '#include "kelmon/library_loader.h"'
put tools/vrxhost/output.cpp '#include "winapi/support/code_pages.h"'

output=$("$check" "$tree")
status=$?
expected='accounts/a.cpp:1: includes "winapi/machine/machine.h": accounts/ may not include winapi/
frame/get_info.cpp:3: includes "os/os_names.h": frame/ may not include os/
host/plugin.h:1: includes "vrxcore/repository.h": host/ may not include vrxcore/
kelmon/root_object.cpp:2: includes "plugin/registration.h": kelmon/ may not include plugin/
os/os_info.cpp:3: includes "accounts/a.h": os/ may not include accounts/
tools/vrxhost/output.cpp:1: includes "winapi/support/code_pages.h": tools/vrxhost/ may not include winapi/
vrxcore/os_specific.cpp:2: includes "frame/platform.h": vrxcore/ may not include frame/'
[[ $status == 1 ]] || { echo "expected exit status 1, got $status"; exit 1; }
[[ $output == "$expected" ]] || { printf 'expected:\n%s\ngot:\n%s\n' "$expected" "$output"; exit 1; }
