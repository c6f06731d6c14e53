#!/bin/sh
# Compares the plug-in's script methods with those that examples/README.md describes to page authors.
set -eu
cd "$(dirname "$0")/.."
tmp=$(mktemp -d)
trap 'rm -r "$tmp"' EXIT
sed -n 's/^ *[a-zA-Z]*("\([a-z][A-Za-z]*\)", &.*/\1/p' browsers/gecko/script_methods.cpp | LC_ALL=C sort -u >"$tmp/methods"
grep -o '`[a-z][A-Za-z]*(' examples/README.md | tr -d '`(' | LC_ALL=C sort -u >"$tmp/described"
[ -s "$tmp/methods" ] || { echo "no methods read from browsers/gecko/script_methods.cpp" >&2; exit 1; }
if ! diff "$tmp/methods" "$tmp/described" >&2; then
  echo "script methods (left) and examples/README.md (right) differ" >&2
  exit 1
fi
echo "methods: all $(wc -l <"$tmp/methods") are described"
