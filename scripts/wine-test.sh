#!/bin/sh
# Runs a Windows program as wine-run.sh does and prints its output when it has ended. For CTest,
# which waits for the end of a test's output: the platform's desktop process, started by the first
# test that makes a window, would keep that output open for as long as other tests have windows.
# usage: wine-test.sh BUILD-DIR PROGRAM [ARGUMENT ...]
set -eu
output=$(mktemp "$1/output.XXXXXX")
trap 'rm -f "$output"' EXIT
status=0
"$(dirname "$0")/wine-run.sh" "$@" >"$output" 2>&1 || status=$?
cat "$output"
exit "$status"
