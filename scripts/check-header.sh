#!/bin/sh
# Compares the base runtime's names that the library exports with those its public header declares.
# usage: check-header.sh LIBRARY    (from the root of the repository)
set -eu
tmp=$(mktemp -d)
trap 'rm -r "$tmp"' EXIT
printf '#include "runtime/ov_runtime.h"\n' >"$tmp/header.c"
compiler="x86_64-w64-mingw32-gcc-posix -std=c11 -I."

# The compiler's own list of function declarations, and what the header marks as imported data.
$compiler -c -o "$tmp/object" -aux-info "$tmp/functions" "$tmp/header.c"
$compiler -E -P "$tmp/header.c" >"$tmp/text"
{
  sed -n 's|^/\* ./runtime/ov_[^ ]* \*/ extern [^(]*[ *]\([A-Za-z_0-9]*\) (.*|\1|p' "$tmp/functions"
  sed -n 's|^extern __attribute__((dllimport)).*[ *]\([A-Za-z_0-9]*\)\(\[[^]]*\]\)*;$|\1|p' "$tmp/text"
} | LC_ALL=C sort -u >"$tmp/declared"

scripts/exported-names.sh "$1" | grep -vE '^(NP_|Dll)' >"$tmp/exported"
[ -s "$tmp/declared" ] && [ -s "$tmp/exported" ] || { echo "no names read" >&2; exit 1; }
if ! diff "$tmp/declared" "$tmp/exported" >"$tmp/difference"; then
  echo "runtime/ov_runtime.h (left) and the exports of $1 (right) differ:" >&2
  cat "$tmp/difference" >&2
  exit 1
fi
echo "header: $(wc -l <"$tmp/declared") names, all exported"
