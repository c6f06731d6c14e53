#!/bin/sh
# Compares the names that the library exports with those of its .def file.
# usage: check-exports.sh LIBRARY DEF-FILE
set -eu
wanted=$(sed -n '/^EXPORTS/,$p' "$2" | sed -e 1d -e 's/;.*//' | awk 'NF { print $1 }' | LC_ALL=C sort)
found=$("$(dirname "$0")/exported-names.sh" "$1")
[ -n "$found" ] || { echo "no exports read from $1" >&2; exit 1; }
duplicates=$(printf '%s\n' "$wanted" | uniq -d)
[ -z "$duplicates" ] || { echo "named twice in $2: $duplicates" >&2; exit 1; }
if [ "$wanted" != "$found" ]; then
  echo "exports differ from $2 (wanted left, found right):" >&2
  tmp=$(mktemp -d)
  printf '%s\n' "$wanted" >"$tmp/wanted"
  printf '%s\n' "$found" >"$tmp/found"
  diff "$tmp/wanted" "$tmp/found" >&2 || true
  rm -r "$tmp"
  exit 1
fi
echo "exports: $(printf '%s\n' "$found" | wc -l), as many as in the .def file"
