#!/bin/sh
# Unpacks Debian's yajl source package, security patches applied, into DIR/source.
# usage: fetch-yajl.sh DIR
# Needs dpkg-dev, no root: the package lists it asks for live below DIR.
set -eu
dir=$1
[ -f "$dir/complete" ] && exit 0
rm -rf "$dir"
mkdir -p "$dir/lists/partial" "$dir/cache/archives/partial"
# A bare machine lists binary packages only; the same places serve the sources.
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
  [ -f "$list" ] && sed -n 's/^deb[[:space:]]/deb-src /p' "$list" >>"$dir/sources.list"
done
for list in /etc/apt/sources.list.d/*.sources; do
  [ -f "$list" ] && { sed 's/^Types:.*/Types: deb-src/' "$list"; echo; } >>"$dir/machine.sources"
done
mkdir "$dir/parts"
[ -f "$dir/machine.sources" ] && mv "$dir/machine.sources" "$dir/parts/machine.sources"
[ -f "$dir/sources.list" ] && mv "$dir/sources.list" "$dir/parts/machine.list"
apt() {
  apt-get -qq -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$dir/parts" \
    -o Dir::State::lists="$dir/lists" -o Dir::Cache="$dir/cache" -o APT::Sandbox::User=root "$@"
}
apt update
cd "$dir"
apt source yajl
mv yajl-*/ source
rm -rf lists cache
touch complete
