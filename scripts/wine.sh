#!/bin/sh
# Runs a Windows program under wine, in a prefix of the build folder.
#   scripts/wine.sh program.exe [argument ...]
#   scripts/wine.sh --stop
# Debian's wine64 puts its programs where no PATH leads to. A server that stays makes a start take
# 0.1 s instead of two seconds; it ends a minute after the last program, or by --stop.
set -eu
folder=${TESSARON_WINE_FOLDER:-$(cd "$(dirname "$0")/.." && pwd)/build/wine}
export WINEPREFIX="$folder/prefix" WINEDEBUG=-all WINEARCH=win64 LC_ALL=C.UTF-8 DISPLAY=
# Neither a browser engine nor .NET: wine would ask for them in a window.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
wine=/usr/lib/wine
if [ "${1:-}" = --stop ]; then
    [ ! -d "$WINEPREFIX" ] || "$wine/wineserver64" -k || true
    exit 0
fi
mkdir -p "$WINEPREFIX"
# A new server has no services yet. The program that needs them first starts them, and they would
# keep its standard streams open: whoever reads these would wait for their end. If that fails, the
# program itself shows whether it matters.
(
    flock 9
    if "$wine/wineserver64" -p60 </dev/null >/dev/null 2>&1 9>&-; then
        "$wine/wine64" wineboot --init </dev/null >"$folder/log" 2>&1 9>&- || true
    fi
) 9>"$folder/lock"
exec "$wine/wine64" "$@"
