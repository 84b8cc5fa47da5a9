#!/bin/bash
# Fails when a folder includes one that lies above it or beside it: includes point down the
# layers. Prints each offending include as file:line. Usage: check_layers.sh [source root]
set -euo pipefail
root=${1:-$(dirname "$0")/..}
cd "$root"

collectors="software os accounts components"
# What each folder may include besides itself.
declare -A allowed=(
  [host]=""
  [vrxcore]="host"
  [kelmon]="host vrxcore"
  [frame]="host"
  [software]="frame host"
  [os]="frame host"
  [accounts]="frame host"
  [components]="frame host"
  [plugin]="frame host $collectors"
  [store]="host vrxcore"
  [tools/vrxhost]="host vrxcore kelmon store"
  [tools/vrxstore]="host vrxcore store"
)
# The platform seam: the files that alone may reach the Linux Win32 layer.
seam() {
  case "$1" in
    tools/vrxhost/*) [[ $1 == tools/vrxhost/platform_linux.cpp ]] ;;
    frame/platform.h | *_machine.cpp) true ;;
    *) false ;;
  esac
}
# The folder of ours that an include names, or nothing for one of another project or a
# neighbour in the same folder.
target_of() {
  case "$1" in
    tools/vrxhost/*) echo tools/vrxhost ;;
    tools/vrxstore/*) echo tools/vrxstore ;;
    */*)
      local top=${1%%/*}
      [[ -v allowed[$top] || $top == winapi ]] && echo "$top"
      ;;
  esac
  return 0
}

status=0
for folder in $(printf "%s\n" "${!allowed[@]}" | sort); do
  [[ -d $folder ]] || continue
  while IFS=: read -r file line text; do
    included=$(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' <<<"$text")
    target=$(target_of "$included")
    [[ -z $target || $target == "$folder" ]] && continue
    [[ " ${allowed[$folder]} " == *" $target "* ]] && continue
    [[ $target == winapi ]] && seam "$file" && continue
    echo "$file:$line: includes \"$included\": $folder/ may not include $target/"
    status=1
  done < <(grep -rn --include='*.h' --include='*.cpp' -E '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' "$folder" | sort -t: -k1,1 -k2,2n || true)
done
exit $status
