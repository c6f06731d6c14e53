# Sets up the environment in which our Windows programs run; to be sourced with BUILD set to the
# build directory. One Wine prefix per build: loading the plug-in deletes files in the profile.
#
# OV_WINE_NAME     folder below BUILD that holds the prefix; "wine" if not set
# OV_WINE_DISPLAY  X display of the programs; not set: windows without an X server. All programs
#                  of one prefix must agree, because the first one settles it for the rest.
prefix=$BUILD/${OV_WINE_NAME:-wine}/prefix
export HOME="$BUILD/${OV_WINE_NAME:-wine}/home"
export WINEPREFIX="$prefix" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}"
# winedbg off: with it a crash hangs the test or ends it with status 0.
export WINEDLLOVERRIDES="winemenubuilder.exe=d;winedbg.exe=d;mscoree=d;mshtml=d"
# Non-ASCII file names need an existing UTF-8 locale; msvcrt misreads most values of TZ.
export LC_ALL=C.UTF-8 TZ=UTC
unset USER LOGNAME DISPLAY TMPDIR || true
if [ -n "${OV_WINE_DISPLAY:-}" ]; then export DISPLAY="$OV_WINE_DISPLAY"; fi
