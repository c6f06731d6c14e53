#!/bin/sh
# Keeps the Wine session of one build directory alive between programs, or ends it. A session that
# ends after every program costs half a second each time.
# usage: wine-session.sh BUILD-DIR start|stop
set -eu
here=$(cd "$(dirname "$0")" && pwd)
BUILD=$(cd "$1" && pwd)
. "$here/wine-env.sh"
case $2 in
  start)
    "$here/wine-prefix.sh" "$BUILD"
    wineserver -p
    # The platform's services start with the first program and keep its output open as long as the
    # session lives: whoever waits for the end of that output would wait for them.
    "$here/wine-run.sh" "$BUILD" cmd.exe /c exit </dev/null >/dev/null 2>&1
    ;;
  stop) wineserver -k || true ;;
esac
