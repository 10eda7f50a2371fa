#!/bin/sh
# Compares whole runs of CmdTessaron with cp and with other tools, and prints Markdown tables.
# Installs the packages that it needs, including the other tools.
#   bench/compare.sh [largest size in MiB; the default, 255, is the limit of FROM_FILE]
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh bench
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ cmake --preset release && cmake --build --preset release &&
    cmake --preset bench && cmake --build --preset bench --target measure; } >"$log" 2>&1 || {
    cat "$log"
    exit 1
}
python3 bench/compare.py build/release/CmdTessaron build/bench/bench "${1:-255}"
