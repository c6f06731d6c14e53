#!/bin/sh
# Prints the names that a library exports, one a line, sorted.
# usage: exported-names.sh LIBRARY
set -eu
x86_64-w64-mingw32-objdump -p "$1" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' |
  awk '/\[ *[0-9]+\]/ { print $NF }' | LC_ALL=C sort
