#!/bin/sh
# Installs the packages of packages.txt, or those named, that are missing. Needs root or sudo only if
# any are.
# usage: install-packages.sh [PACKAGE ...]
set -eu
# shellcheck disable=SC2046 # one word each
[ $# -gt 0 ] || set -- $(sed 's/#.*//' "$(dirname "$0")/packages.txt")
missing=
for package in "$@"; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
as_root=
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "neither root nor sudo; missing:$missing" >&2; exit 1; }
  as_root=sudo
fi
$as_root apt-get update
# shellcheck disable=SC2086 # one word each
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing
