# Runs the named steps of run-demo and run-tests; to be sourced from the repository's root.
#
# step NAME COMMAND ...   runs the command with its output in build/logs/NAME.log, and says how long
#                         it took; a failure prints the end of the output and ends the script
# shown NAME COMMAND ...  the same with the output on the terminal as well
logs=$PWD/build/logs
mkdir -p "$logs"

step_failed() {
  echo "step failed: $1 (all of its output: build/logs/$1.log)" >&2
  exit 1
}

step() {
  step_name=$1
  shift
  step_start=$(date +%s)
  printf '%s ... ' "$step_name"
  if "$@" >"$logs/$step_name.log" 2>&1; then
    echo "ok ($(($(date +%s) - step_start)) s)"
  else
    echo "failed"
    tail -n 60 "$logs/$step_name.log" >&2
    step_failed "$step_name"
  fi
}

shown() {
  step_name=$1
  shift
  echo "$step_name:"
  # The status of the command, not of tee.
  { "$@" 2>&1 || echo "$?" >"$logs/$step_name.status"; } | tee "$logs/$step_name.log"
  if [ -f "$logs/$step_name.status" ]; then
    rm -f "$logs/$step_name.status"
    step_failed "$step_name"
  fi
}
