#!/bin/sh
# Runs a Windows program as wine-run.sh does and prints its output when it has ended. For CTest,
# which waits for the end of a test's output: the platform's desktop process, started by the first
# test that makes a window, would keep that output open for as long as other tests have windows.
# usage: wine-test.sh BUILD-DIR PROGRAM [ARGUMENT ...]
set -eu
output=$(mktemp "$1/output.XXXXXX")
trap 'rm -f "$output"' EXIT
# Where wine-run.sh cannot fix the layout, about one start in three thousand ends within ten
# milliseconds, with status 1 and not a word: the program was never there. A test that fails has said
# so by then, and one that crashes ends with another status; so only a silent 1 is started again.
for attempt in 1 2 3; do
  status=0
  "$(dirname "$0")/wine-run.sh" "$@" >"$output" 2>&1 || status=$?
  [ "$status" -eq 1 ] && [ ! -s "$output" ] || break
  echo "wine-test: start $attempt of $2 ended with $status and said nothing" >&2
done
cat "$output"
exit "$status"
