#!/bin/sh
# The demo itself, in the browser's Wine session: installs the stand-in client, runs the page with no
# client running, looks whether everything was so, and does it once more with the page opened from disk.
# usage: tools/engine/with-display BUILD scripts/demo.sh BUILD
set -eu
build=$(cd "$1" && pwd)
repository=$(cd "$(dirname "$0")/.." && pwd)
demo=$repository/build/demo
fail() { echo "demo: $1" >&2; exit 1; }
windows() { "$repository/scripts/wine-run.sh" "$build" "$@"; }

rm -rf "$demo"
# A folder with a blank in its name, as real installations have one.
client="$demo/Orvane Vantrel"
mkdir -p "$client/bin" "$demo/remote" "$demo/downloads"
cp "$build/tools/client/orvanevantrel.exe" "$client/bin/"
printf 'remote_root=%s\ndownload_root=%s\n' "$demo/remote" "$demo/downloads" |
  sed 's|=/|=Z:/|' >"$client/bin/orvanevantrel.conf"
head -c 3145728 /dev/urandom >"$demo/remote/demo.bin"
head -c 65536 /dev/urandom >"$demo/remote/disk.bin"
windows reg add 'HKCU\SOFTWARE\Orvane\Orvane Vantrel\v2' /v InstallDir \
  /d "Z:$(printf %s "$client/" | tr / '\\')" /f >/dev/null

# What a client of an earlier run left behind: the session that it ran in has ended.
data="$build/wine-engine/prefix/drive_c/users/$(id -un)/AppData/Local/Orvane/Orvane Vantrel"
rm -rf "$data/var"

# receive ADDRESS ROOT FILE PICTURE: opens the page at that address, whose paths begin in the folder
# ROOT; the page receives FILE.
receive() {
  {
    "$repository/tools/engine/orvane-browser" --build "$build" \
      --page "$repository/examples/receive.html" --base-url "$1?source=/$3&start=1" --root "$2" \
      --until 'transfer completed' --fail-on 'error: ' --limit 60 --picture "$demo/$4" ||
      echo "$?" >"$demo/status"
  } | sed 's/^/  /'
  [ ! -f "$demo/status" ] || fail "the page did not finish (browser's exit status $(cat "$demo/status"))"
  cmp "$demo/remote/$3" "$demo/downloads/$3" || fail "the file did not arrive whole"
}

echo "the page says:"
receive http://demo.orvane.test/receive.html "$repository/examples" demo.bin finished.png
log=$(ls "$data/var/log/"*.log 2>/dev/null | head -n 1)
[ -n "$log" ] || fail "the plug-in wrote no log"
grep -q 'Launching Orvane Vantrel' "$log" || fail "the plug-in did not start the client"
[ -s "$demo/finished.png" ] || fail "there is no picture"
echo "the client was started by the plug-in; the file arrived byte for byte"
echo "opened from disk, the page says:"
receive "file://$repository/examples/receive.html" / disk.bin disk.png
echo "picture of the finished page: build/demo/finished.png"
