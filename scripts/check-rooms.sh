#!/bin/sh
# Checks every include of the product's sources against docs/rooms.txt: no arrow runs up, no test
# helper is part of the product, and no room is missing from the table.
# usage: check-rooms.sh
set -eu
cd "$(dirname "$0")/.."
git ls-files -- '*.cpp' '*.h' '*.c' '*.rc' '*.idl' |
  # Tests, what serves them, and benches look into every room.
  grep -vE '^(tests|bench)/|_test(_c|_win)?\.(cpp|c)$|^tools/engine/probe/' |
  xargs grep -HE '^[[:space:]]*#[[:space:]]*include[[:space:]]+"' |
  awk -F: '
    FILENAME == "docs/rooms.txt" {
      sub(/#.*/, "")
      if ($1 ~ /[^ ]/) { known[$1] = 1; below[$1] = " " $2 " " }
      next
    }
    function room_of(file) { sub(/\/[^\/]*$/, "", file); return file }
    {
      room = room_of($1)
      split($0, part, "\"")
      target = part[2] ~ /\// ? room_of(part[2]) : room
      if (!(room in known)) { print room " is not in docs/rooms.txt (" $1 ")"; wrong = 1; next }
      gsub(/[ \t]+/, " ", below[room])
      if (target != room && index(below[room], " " target " ") == 0) {
        print $1 ": " room " must not include " part[2]
        wrong = 1
      }
      ++count
    }
    END {
      if (!count) { print "no includes read"; wrong = 1 }
      if (!wrong) print "rooms: " count " includes, all along docs/rooms.txt"
      exit wrong
    }' docs/rooms.txt -
