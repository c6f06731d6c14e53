#!/bin/sh
# Runs clang-tidy over the sources of the plug-in; what has passed is not read again until it, a header or the
# settings change. GoogleTest cases are left out: what the checks find there is in its macros, and
# each file costs half a minute.
# usage: tidy.sh    (needs build/host and build/windows to be configured)
set -eu
cd "$(dirname "$0")/.."
stamps=build/tidy
mkdir -p "$stamps"
# Where MinGW's compiler has its C++ library, which clang does not find by itself.
MINGW_ARGUMENTS=${MINGW_ARGUMENTS:-"--extra-arg=--target=x86_64-w64-mingw32 $(
  x86_64-w64-mingw32-g++-posix -E -x c++ - -v </dev/null 2>&1 | grep '^ .*include/c++' |
    sed 's/^ /--extra-arg=-isystem/')"}
export MINGW_ARGUMENTS
common=$({ cat "$0"; git ls-files -z -- '*.h' '.clang-tidy' '**/.clang-tidy' | xargs -0 cat; } | sha256sum | cut -c1-16)

# Windows sources are read as MinGW's compiler sees them.
tidy_one() {
  source=$1
  hash=$({ echo "$2"; cat "$source"; } | sha256sum | cut -c1-32)
  [ -f "build/tidy/$hash" ] && return 0
  case $source in
    *_win.cpp)
      build=build/windows extra=$MINGW_ARGUMENTS ;;
    *) build=build/host extra= ;;
  esac
  grep -q "/$source\"" "$build/compile_commands.json" || return 0
  # shellcheck disable=SC2086 # one word each
  if clang-tidy -quiet -p "$build" $extra "$source" >"build/tidy/$hash.log" 2>&1; then
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
git ls-files -z -- 'browsers/*.cpp' 'core/*.cpp' 'runtime/*.cpp' 'service/*.cpp' 'text/*.cpp' 'threads/*.cpp' \
  ':!*_test.cpp' |
  xargs -0 -n 1 -P "${OV_TIDY_JOBS:-$(nproc)}" "$0" --one "$common"
