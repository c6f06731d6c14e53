#!/bin/sh
# Checks the C++ sources by .clang-tidy; what has passed is not read again until it, a header or the
# settings change.
#
# What ships is read by clang-tidy, with its headers and all checks. Tests, tools and benches are
# read by clangd, which makes the same checks for the file itself only, those of clang's analyzer
# excepted: clang-tidy would search the headers of GoogleTest and Qt as well, half a minute a file.
# usage: tidy.sh    (needs build/host, build/windows and, for tools/engine, build/engine configured)
set -eu
cd "$(dirname "$0")/.."
stamps=build/tidy
mingw=x86_64-w64-mingw32-g++-posix

# Windows sources are read as MinGW's compiler sees them, all others as the native build does.
build_of() {
  case $1 in
    tools/engine/*) echo engine ;;
    *_win.cpp|*_win_test.cpp|*_test_win.cpp) echo windows ;;
    *) if grep -q "/$1\"" $stamps/host/compile_commands.json; then echo host; else echo windows; fi ;;
  esac
}

read_by_clang_tidy() {
  clang-tidy -quiet -p "$stamps/$2" "$1" 2>&1
}

# Its warnings are those that the compilers make errors; without a function's use in a header's
# template it sees some wrongly.
read_by_clangd() {
  clangd --check="$1" --check-lines=1-1 --compile-commands-dir="$stamps/$2" --log=error \
    >"$3.raw" 2>&1 || true
  grep -E '^E\[' "$3.raw" | grep -vF ' [-W' | sed "s|^E[^]]*\]|$1:|" || true
  rm -f "$3.raw"
}

if [ "${1:-}" = --one ]; then
  source=$3
  hash=$({ echo "$2"; cat "$source"; } | sha256sum | cut -c1-32)
  [ ! -f "$stamps/$hash" ] || exit 0
  build=$(build_of "$source")
  grep -q "/$source\"" "$stamps/$build/compile_commands.json" || exit 0
  case $source in
    tests/*|tools/*|bench/*|*_test.cpp|*_test_win.cpp) found=$(read_by_clangd "$source" "$build" "$stamps/$hash") ;;
    *) found=$(read_by_clang_tidy "$source" "$build") && found= ;;
  esac
  [ -z "$found" ] || { echo "$found"; exit 1; }
  touch "$stamps/$hash"
  exit 0
fi

# The builds' commands, but with clang for MinGW's compiler, which has its C++ library where clang
# does not find it by itself, and without precompiled headers: every source is read with its own
# includes only.
clang="clang++ --target=x86_64-w64-mingw32 $(
  $mingw -E -x c++ - -v </dev/null 2>&1 | sed -n 's/^ \(.*include\/c++\)/-isystem \1/p' | tr '\n' ' ')"
for build in host windows engine; do
  mkdir -p "$stamps/$build"
  commands=build/$build/compile_commands.json
  if [ -f "$commands" ]; then
    sed -E "s| -Xclang -include(-pch)? -Xclang [^ ]+||g; s| -Winvalid-pch||
      s| -include [^ ]*cmake_pch\.hxx||; s| -Wno-maybe-uninitialized||; s|\"[^ ]*-w64-mingw32-g\+\+-posix |\"$clang|" "$commands"
  else
    echo '[]'
  fi >"$stamps/$build/compile_commands.json"
done
common=$({ cat "$0" .clangd; git ls-files -z -- '*.h' '.clang-tidy' '**/.clang-tidy' | xargs -0 cat; } |
  sha256sum | cut -c1-16)
git ls-files -z -- '*.cpp' | xargs -0 -n 1 -P "${OV_TIDY_JOBS:-$(nproc)}" "$0" --one "$common"
