#!/bin/sh
# Runs a Windows program under Wine in the build's own prefix, which is made at the first use.
# usage: wine-run.sh BUILD-DIR PROGRAM [ARGUMENT ...]
#
# OV_WINE_NAME, OV_WINE_DISPLAY as in wine-env.sh
# OV_WINE_PASS   names of the environment variables that the program gets, separated by blanks
set -eu
BUILD=$(cd "$1" && pwd)
shift
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine-env.sh"
[ -f "$WINEPREFIX/complete" ] || "$here/wine-prefix.sh" "$BUILD" >&2
# A clean environment: Wine shows every Unix variable to the program.
set -- wine "$@"
for name in ${DISPLAY:+DISPLAY} ${OV_WINE_PASS:-}; do
  eval "value=\${$name-}"
  set -- "$name=$value" "$@"
done
# At a fixed layout: with a random one Wine sometimes finds the one address taken at which every
# Windows program has its shared data, and ends without a word. Some sandboxes do not let us choose.
fixed=$(setarch -R true 2>/dev/null && echo "setarch -R") || true
# shellcheck disable=SC2086 # two words or none
exec $fixed env -i PATH="$PATH" HOME="$HOME" LC_ALL="$LC_ALL" TZ="$TZ" WINEPREFIX="$WINEPREFIX" \
  WINEARCH="$WINEARCH" WINEDEBUG="$WINEDEBUG" WINEDLLOVERRIDES="$WINEDLLOVERRIDES" "$@"
