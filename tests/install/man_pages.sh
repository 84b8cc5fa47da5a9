#!/usr/bin/env bash
# The manual pages read without a warning (mandoc -T lint), and each names every option its
# program's --help lists, so that the two do not drift apart.
#   man_pages.sh MAN_DIR PROGRAM...
set -euo pipefail
man_dir=$1
shift
status=0
for program in "$@"; do
  name=$(basename "$program")
  page=$man_dir/$name.1
  mandoc -T lint -W warning "$page" || status=1
  help=$("$program" --help)
  for command in $(sed -n 's/^  \([a-z][a-z-]*\)  .*/\1/p' <<<"$help"); do
    help+=$'\n'$("$program" "$command" --help)
  done
  for option in $(grep -o -- '--[a-z][a-z-]*' <<<"$help" | sort -u); do
    grep -q -- "Fl -${option#--}\b" "$page" || { echo "$page: no $option, which --help lists"; status=1; }
  done
done
exit $status
