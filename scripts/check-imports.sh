#!/bin/sh
# Checks that test programs use every name of the base runtime that the library exports: a name that
# none of them imports is one that no test calls through the library.
# usage: check-imports.sh LIBRARY PROGRAM ...
set -eu
library=$1
shift
tmp=$(mktemp -d)
trap 'rm -r "$tmp"' EXIT
"$(dirname "$0")/exported-names.sh" "$library" | grep -vE '^(NP_|Dll)' >"$tmp/exported"
for program in "$@"; do
  x86_64-w64-mingw32-objdump -p "$program" |
    sed -n "/DLL Name: $(basename "$library")/,/^\$/p" | awk '/^\t[0-9a-f]+/ { print $NF }'
done | LC_ALL=C sort -u >"$tmp/imported"
[ -s "$tmp/imported" ] && [ -s "$tmp/exported" ] || { echo "no names read" >&2; exit 1; }
LC_ALL=C comm -23 "$tmp/exported" "$tmp/imported" >"$tmp/unused"
if [ -s "$tmp/unused" ]; then
  echo "exported names that no test calls through the library:" >&2
  cat "$tmp/unused" >&2
  exit 1
fi
echo "imports: all $(wc -l <"$tmp/exported") names of the base runtime are used"
