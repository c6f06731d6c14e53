#!/bin/sh
# The demo of the control, in a Wine session as scripts/demo.sh, behind which it runs: registers the
# library, runs a page's script with the control while no desktop client runs, looks whether
# everything was so, and takes the registration back.
# usage: tools/engine/with-display BUILD scripts/demo-control.sh BUILD
set -eu
build=$(cd "$1" && pwd)
repository=$(cd "$(dirname "$0")/.." && pwd)
demo=$repository/build/demo
fail() { echo "demo: $1" >&2; exit 1; }
windows() { "$repository/scripts/wine-run.sh" "$build" "$@"; }
# A path as Windows programs under Wine know it.
windows_path() { printf 'Z:%s' "$1" | tr / '\\'; }

# What a client of an earlier run left behind: the session that it ran in has ended.
data="$build/wine-engine/prefix/drive_c/users/$(id -un)/AppData/Local/Orvane/Orvane Vantrel"
rm -rf "$data/var" "$demo/control"
mkdir -p "$demo/control"
head -c 3145728 /dev/urandom >"$demo/remote/control.bin"
echo 'Read by the page because the user chose it.' >"$demo/control/chosen.txt"
echo 'Dropped later.' >"$demo/control/diary.txt"

library=$(windows_path "$build/nporvaneweb.dll")
windows regsvr32 /s "$library" || fail "the control was not registered"
unregister() { windows regsvr32 /s /u "$library" || true; }
trap unregister EXIT

windows "$build/tools/user/dialog_user.exe" "$(windows_path "$demo/control/chosen.txt")" &
user=$!
status=0
windows "$build/tools/scripthost/orvane_script_host.exe" --parameter drop-mode=callback \
  --image "$(windows_path "$repository/examples/control.png")" \
  --picture "$(windows_path "$demo/control.png")" \
  "$(windows_path "$repository/examples/control.js")" host=demo.orvane.test source=/control.bin \
  "other=$(windows_path "$demo/control/diary.txt")" >"$demo/control.log" || status=$?
echo "the control's page says:"
tr -d '\r' <"$demo/control.log" | sed 's/^/  /'
[ "$status" = 0 ] || fail "the script did not finish (status $status)"
wait "$user" || fail "the dialog was not answered"
cmp "$demo/remote/control.bin" "$demo/downloads/control.bin" || fail "the file did not arrive whole"
for line in 'refused session: ' 'refused to read: .*diary.txt' 'refused to send: ' 'transfer completed: ' \
  'chosen: chosen.txt' 'dropped: diary.txt' 'event dropex: ' 'refused call: '; do
  grep -q "^$line" "$demo/control.log" || fail "the page did not say: $line"
done
[ -s "$demo/control.png" ] || fail "there is no picture"
unregister
trap - EXIT
if windows reg query 'HKCR\Orvane.OrvaneWebCtrl.1' >/dev/null 2>&1; then
  fail "the registration was not taken back"
fi
echo "the file arrived byte for byte; picture of the control: build/demo/control.png"
