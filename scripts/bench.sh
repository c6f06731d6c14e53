#!/bin/sh
# Builds the programs of bench/, runs them natively and under Wine with the library as it ships, and
# prints every row: name, median, quartiles, aim, and "ok" or "over". A row that is over fails
# nothing; a program that cannot do its work does. The rows are also left in build/bench-rows.txt.
# usage: scripts/bench.sh [PROGRAM ...]   (without "_bench"; all programs if none is named)
#
# Ratios hold on a machine that does little else: with other work on all processors the quartiles
# show it.
set -eu
cd "$(dirname "$0")/.."
. scripts/steps.sh
rows=$PWD/build/bench-rows.txt
native="encodings check growth"
windows="$native log exchange reply memory page files"

# Those of the programs "$1" that were asked for, "$2"; all of them if none was.
chosen() {
  for bench in $1; do
    case " ${2:-$1} " in *" $bench "*) echo "$bench" ;; esac
  done
}

# Runs one program, whose rows go to the terminal and to the file.
run() {
  output=$logs/bench-$1.log
  shift
  # Into a file: what Wine starts beside the program would keep a pipe open.
  "$@" >"$output" 2>&1 || { cat "$output" >&2; step_failed "$(basename "$output" .log)"; }
  tr -d '\r' <"$output" | tee -a "$rows"
}

heading() {
  printf '%s:\n' "$1" | tee -a "$rows"
}

for bench in "$@"; do
  case " $windows " in
    *" $bench "*) ;;
    *) echo "no program $bench; there are: $windows" >&2 && exit 2 ;;
  esac
done

step bench-configure-native cmake --preset bench
step bench-build-native cmake --build --preset bench
[ -f build/windows/build.ninja ] || step bench-configure-windows cmake --preset windows
step bench-build-windows cmake --build --preset windows --target benches

: >"$rows"
for bench in $(chosen "$native" "$*"); do
  [ -s "$rows" ] || heading "natively"
  run "native-$bench" "build/bench/${bench}_bench"
done

step bench-wine-start scripts/wine-session.sh build/windows start
trap 'scripts/wine-session.sh build/windows stop' EXIT
heading "under Wine"
for bench in $(chosen "$windows" "$*"); do
  run "wine-$bench" scripts/wine-run.sh build/windows "build/windows/${bench}_bench.exe"
done
echo "$(grep -c ' \(ok\|over\|-\)$' "$rows") rows, $(grep -c ' over$' "$rows" || true) over"
