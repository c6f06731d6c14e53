#!/bin/sh
# The demo itself, in the browser's Wine session: installs the stand-in client, runs the page that
# receives with no client running, then the page that sends, whose dialog a program answers as a user
# would, looks whether everything was so, and does it once more with both pages opened from disk.
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
mkdir -p "$client/bin" "$demo/remote" "$demo/downloads" "$demo/My documents"
cp "$build/tools/client/orvanevantrel.exe" "$client/bin/"
printf 'remote_root=%s\ndownload_root=%s\n' "$demo/remote" "$demo/downloads" |
  sed 's|=/|=Z:/|' >"$client/bin/orvanevantrel.conf"
head -c 3145728 /dev/urandom >"$demo/remote/demo.bin"
head -c 65536 /dev/urandom >"$demo/remote/disk.bin"
# What the user sends: a text whose name and words are not all English.
seq -f 'Grüße aus Zeile %.0f, 100 %% echt: naïve façade, Ελλάδα.' 1 30000 >"$demo/My documents/Größe 100%.txt"
for folder in "$demo" "$demo/My documents"; do
  echo 'Nobody may read this.' >"$folder/diary.txt"
done
windows reg add 'HKCU\SOFTWARE\Orvane\Orvane Vantrel\v2' /v InstallDir \
  /d "Z:$(printf %s "$client/" | tr / '\\')" /f >/dev/null

# What a client of an earlier run left behind: the session that it ran in has ended.
data="$build/wine-engine/prefix/drive_c/users/$(id -un)/AppData/Local/Orvane/Orvane Vantrel"
rm -rf "$data/var"

# browse PAGE ADDRESS ROOT PICTURE: opens the page at that address, whose paths begin in the folder
# ROOT, until its transfer is complete.
browse() {
  {
    "$repository/tools/engine/orvane-browser" --build "$build" \
      --page "$repository/examples/$1" --base-url "$2" --root "$3" --size 1024x"$height" \
      --until 'transfer completed' --fail-on 'error: ' --limit 60 --picture "$demo/$4" ||
      echo "$?" >"$demo/status"
  } | tee "$demo/console" | sed 's/^/  /'
  [ ! -f "$demo/status" ] || fail "the page did not finish (browser's exit status $(cat "$demo/status"))"
  [ -s "$demo/$4" ] || fail "there is no picture"
}

# receive ADDRESS ROOT FILE PICTURE: the page receives FILE.
receive() {
  height=768
  browse receive.html "$1/receive.html?source=/$3&start=1" "$2" "$4"
  cmp "$demo/remote/$3" "$demo/downloads/$3" || fail "the file did not arrive whole"
}

# send ADDRESS ROOT FILE PICTURE: the user chooses FILE in the page's dialog, and the page sends it.
# The file beside it the page asks for in vain.
send() {
  height=1100
  windows "$build/tools/user/dialog_user.exe" "Z:$(printf %s "$3" | tr / '\\')" &
  user=$!
  browse send.html "$1/send.html?start=1" "$2" "$4"
  wait "$user" || fail "the dialog was not answered"
  cmp "$3" "$demo/remote/incoming/${3##*/}" || fail "the file was not sent whole"
  for what in read send; do
    grep -q "^refused to $what: .*diary.txt" "$demo/console" || fail "nothing was refused to $what"
  done
  [ ! -e "$demo/remote/incoming/diary.txt" ] || fail "a file was sent that nobody chose"
}

web=http://demo.orvane.test
echo "the page that receives says:"
receive "$web" "$repository/examples" demo.bin finished.png
log=$(ls "$data/var/log/"*.log 2>/dev/null | head -n 1)
[ -n "$log" ] || fail "the plug-in wrote no log"
grep -q 'Launching Orvane Vantrel' "$log" || fail "the plug-in did not start the client"
echo "the client was started by the plug-in; the file arrived byte for byte"
echo "the page that sends says:"
send "$web" "$repository/examples" "$demo/My documents/Größe 100%.txt" sent.png
echo "the chosen file was sent byte for byte; another was refused"
echo "opened from disk, they say:"
receive "file://$repository/examples" / disk.bin disk.png
send "file://$repository/examples" / "$demo/finished.png" disk-sent.png
echo "pictures of the finished pages: build/demo/finished.png, build/demo/sent.png"
