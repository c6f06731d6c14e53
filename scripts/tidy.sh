#!/bin/sh
# Runs clang-tidy over the sources; what has passed is not read again until it, a header or the
# settings change.
# usage: tidy.sh    (needs build/host and build/windows to be configured)
set -eu
cd "$(dirname "$0")/.."
stamps=build/tidy
mkdir -p "$stamps"
common=$({ cat .clang-tidy "$0"; git ls-files -z -- '*.h' | xargs -0 cat; } | sha256sum | cut -c1-16)

# Windows sources are read as MinGW's compiler sees them.
tidy_one() {
  source=$1
  hash=$({ echo "$2"; cat "$source"; } | sha256sum | cut -c1-32)
  [ -f "build/tidy/$hash" ] && return 0
  case $source in
    *_win.cpp | *_win_test.cpp | tests/host/* | tests/plugin/*)
      build=build/windows extra='--extra-arg=--target=x86_64-w64-mingw32' ;;
    *) build=build/host extra='--extra-arg=-Wno-unknown-warning-option' ;;
  esac
  grep -q "/$source\"" "$build/compile_commands.json" || return 0
  if clang-tidy -quiet -p "$build" "$extra" "$source" >"build/tidy/$hash.log" 2>&1; then
    rm "build/tidy/$hash.log"
    touch "build/tidy/$hash"
  else
    cat "build/tidy/$hash.log"
    return 1
  fi
}
if [ "${1:-}" = --one ]; then
  tidy_one "$3" "$2"
  exit
fi
git ls-files -z -- '*.cpp' ':!tools/engine' |
  xargs -0 -n 1 -P "$(nproc)" "$0" --one "$common"
