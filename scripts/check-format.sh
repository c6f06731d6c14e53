#!/bin/sh
# Checks that every C and C++ source has the tree's format.
set -eu
cd "$(dirname "$0")/.."
git ls-files -z -- '*.cpp' '*.h' '*.c' | xargs -0 clang-format --dry-run --Werror
