#!/bin/sh
# Makes the Wine prefix of one build directory; does nothing when it stands already.
# usage: wine-prefix.sh BUILD-DIR     (OV_WINE_NAME, OV_WINE_DISPLAY as in wine-env.sh)
set -eu
BUILD=$(cd "$1" && pwd)
. "$(dirname "$0")/wine-env.sh"
mkdir -p "$HOME"
state=$(dirname "$WINEPREFIX")
exec 9>"$state/lock"
flock 9
[ -f "$WINEPREFIX/complete" ] && exit 0
# No descriptor 9 for Wine: its server outlives us and would keep the lock. Now and then the first
# server of a new prefix does not start, within a moment; then a second one does.
boot() {
  rm -rf "$WINEPREFIX"
  wineboot -i 9>&- >"$state/wineboot.log" 2>&1
}
boot || { sleep 1 && boot; } || { cat "$state/wineboot.log" >&2; exit 1; }
# Windows without an X server; no two-second wait per window where there is one.
if [ -z "${DISPLAY:-}" ]; then
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f 9>&- >/dev/null
fi
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f 9>&- >/dev/null
wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f 9>&- >/dev/null
wineserver -w 9>&-
touch "$WINEPREFIX/complete"
