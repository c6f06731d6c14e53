#!/bin/sh
# Checks what the shipped library may import and how it is protected.
# usage: check-library.sh LIBRARY
set -eu
headers=$(x86_64-w64-mingw32-objdump -p "$1")
fail() { echo "$1" >&2; exit 1; }

system='advapi32 urlmon gdi32 gdiplus kernel32 msvcrt ole32 oleaut32 psapi shell32 shlwapi user32 ws2_32 iphlpapi
        netapi32 userenv'
for dll in $(printf '%s\n' "$headers" | awk '/DLL Name:/ { print tolower($3) }'); do
  case " $(echo $system) " in
    *" ${dll%.dll} "*) ;;
    *) fail "imports $dll, which is no system library we know of" ;;
  esac
done
# The library is set up under the loader's lock, where a crypto provider must not be loaded.
crypto=$(printf '%s\n' "$headers" | awk '/DLL Name:/ { on = 1 } on && NF == 3 { print $3 }' |
  grep -E '^(Crypt|BCrypt|NCrypt|SystemFunction|ProcessPrng)' | tr '\n' ' ' || true)
[ -z "$crypto" ] || fail "imports functions of a crypto provider: $crypto"
for flag in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
  printf '%s\n' "$headers" | grep -q "$flag" || fail "lacks $flag"
done
x86_64-w64-mingw32-objdump -h "$1" | grep -q ' \.debug_info' && fail "carries debug information"
[ -s "$1.debug" ] || fail "has no debug file beside it"
echo "library: $(stat -c %s "$1") bytes, imports: $(printf '%s\n' "$headers" |
  awk '/DLL Name:/ { print $3 }' | sort -fu | tr '\n' ' ')"
