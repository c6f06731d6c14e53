#!/bin/sh
# Runs the fuzz programs for a long time, as many at once as there are processors. What they learn
# stays in build/fuzz/corpus for the next run; an input on which one fails is named at the end and
# stays in build/fuzz/found.
# usage: fuzz.sh HOURS [TARGET ...]    (each target runs for HOURS, 0.05 is three minutes; all targets
#                                       of tests/fuzz if none is named)
set -eu
cd "$(dirname "$0")/.."
programs=build/host/tests/fuzz
corpora=build/fuzz/corpus
found=build/fuzz/found
logs=build/fuzz/logs

# One target: fuzz.sh --one SECONDS TARGET. Leaves the status of a failure in its log's name.
if [ "${1:-}" = --one ]; then
  mkdir -p "$corpora/$3" "$found" "$logs"
  rm -f "$logs/$3.failed"
  "$programs/$3" -max_total_time="$2" -max_len=4096 -timeout=25 -print_final_stats=1 \
    -artifact_prefix="$found/$3-" "$corpora/$3" "tests/fuzz/seeds/$3" >"$logs/$3.log" 2>&1 ||
    mv "$logs/$3.log" "$logs/$3.failed"
  exit 0
fi

if [ $# -lt 1 ]; then
  sed -n 's/^# usage: /usage: /p' "$0" >&2
  exit 2
fi
seconds=$(awk -v hours="$1" 'BEGIN { printf "%d", hours * 3600 }')
[ "$seconds" -gt 0 ] || { echo "no time to run for: $1" >&2; exit 2; }
shift
if [ $# -eq 0 ]; then
  for source in tests/fuzz/*_fuzz.cpp; do
    set -- "$@" "$(basename "$source" .cpp)"
  done
fi
[ -f build/host/build.ninja ] || cmake --preset host
cmake --build --preset host --target "$@"
printf '%s\n' "$@" | xargs -n 1 -P "$(nproc)" "$0" --one "$seconds"

status=0
for target in "$@"; do
  if [ -f "$logs/$target.failed" ]; then
    status=1
    reproducer=$(sed -n 's/.*Test unit written to //p' "$logs/$target.failed" | tail -n 1)
    echo "$target failed; again with: $programs/$target ${reproducer:-(no input: $logs/$target.failed)}"
  else
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$logs/$target.log")
    echo "$target: $runs runs, $(find "$corpora/$target" -type f | wc -l) inputs kept"
  fi
done
exit $status
