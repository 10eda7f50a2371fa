#!/bin/sh
# Runs a Windows program under wine, in a prefix of the build folder.
#   scripts/wine.sh program.exe [argument ...]
# Debian's wine64 puts its programs where no PATH leads to. A server that stays makes a start take
# 0.2 s instead of a second; `scripts/wine.sh --stop` ends it.
set -eu
folder=${TESSARON_WINE_FOLDER:-$(cd "$(dirname "$0")/.." && pwd)/build/wine}
export WINEPREFIX="$folder/prefix" WINEDEBUG=-all WINEARCH=win64 LC_ALL=C.UTF-8
# Neither a browser engine nor .NET: wine would ask for them in a window.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=" DISPLAY=
wine=/usr/lib/wine
if [ "${1:-}" = --stop ]; then
    [ ! -d "$WINEPREFIX" ] || "$wine/wineserver64" -k || true
    exit 0
fi
# Stays for a minute after the last program. One that runs already goes on.
serve() {
    "$wine/wineserver64" -p60 </dev/null >/dev/null 2>&1 || true
}
if [ ! -e "$folder/ready" ]; then
    mkdir -p "$WINEPREFIX"
    # Of several programs that come first, one makes the prefix and the others wait.
    exec 9>"$folder/lock"
    flock 9
    if [ ! -e "$folder/ready" ]; then
        serve 9>&-
        "$wine/wine64" wineboot --init 9>&- </dev/null >"$folder/log" 2>&1
        touch "$folder/ready"
    fi
    exec 9>&-
fi
serve
exec "$wine/wine64" "$@"
