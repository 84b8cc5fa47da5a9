#!/usr/bin/env bash
# Checks that the includes between winapi/'s sub-folders point down the roles: a DLL folder may
# include machine/ and everything below it; machine/ image/, files/, formats/, support/ and
# include/; image/ (disk images) files/ and below; files/ (the files of a machine) formats/ and
# below; formats/ support/ and include/; support/ include/ only; include/ nothing but itself. Every
# folder may include its own files. Prints each include that points up, or leaves winapi/'s
# roles, and exits 1 when there is one.
#   bash tools/check_winapi_includes.sh [SOURCE_DIR]        default: the checkout of this script
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

dlls="kernel32 advapi32 netapi32 pdh setupapi version com msvcrt"

# The folders that files of `folder` may include, besides their own.
allowed() {
  case $1 in
    include) echo "" ;;
    support) echo "include" ;;
    formats) echo "support include" ;;
    files) echo "formats support include" ;;
    image) echo "files formats support include" ;;
    machine) echo "image files formats support include" ;;
    *) echo "machine image files formats support include" ;;
  esac
}

known() {
  local folder
  for folder in include support formats files image machine $dlls; do
    [[ $1 == "$folder" ]] && return 0
  done
  return 1
}

status=0
while IFS= read -r file; do
  folder=${file#winapi/}
  folder=${folder%%/*}
  if [[ $file != winapi/*/* ]] || ! known "$folder"; then
    echo "$file: not in one of winapi's role folders"
    status=1
    continue
  fi
  while IFS=: read -r line target; do
    target_folder=${target#winapi/}
    target_folder=${target_folder%%/*}
    [[ $target_folder == "$folder" ]] && continue
    if [[ " $(allowed "$folder") " != *" $target_folder "* ]]; then
      echo "$file:$line: includes $target, which $folder/ may not"
      status=1
    fi
  done < <(grep -no '^[[:space:]]*#[[:space:]]*include[[:space:]]*"winapi/[^"]*"' "$file" |
    sed 's/^\([0-9]*\):.*"\(winapi\/[^"]*\)"/\1:\2/')
done < <(find winapi -type f \( -name '*.h' -o -name '*.cpp' \) | sort)
exit $status
