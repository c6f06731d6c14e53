# Sets up the environment in which our Windows programs run; to be sourced with BUILD set to the
# build directory. One Wine prefix per build: loading the plug-in deletes files in the profile.
prefix=$BUILD/wine/prefix
export HOME="$BUILD/wine/home"
export WINEPREFIX="$prefix" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}"
# winedbg off: with it a crash hangs the test or ends it with status 0.
export WINEDLLOVERRIDES="winemenubuilder.exe=d;winedbg.exe=d;mscoree=d;mshtml=d"
# Non-ASCII file names need an existing UTF-8 locale; msvcrt misreads most values of TZ.
export LC_ALL=C.UTF-8 TZ=UTC
unset USER LOGNAME DISPLAY TMPDIR || true
