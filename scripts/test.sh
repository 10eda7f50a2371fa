#!/bin/sh
# Builds everything and runs all tests, after setting up what that needs.
#   scripts/test.sh [preset ...]     dev (default), asan, debug, clang, coverage, aarch64, windows
# Tests whose tools are missing are skipped; with TESSARON_REQUIRE_ALL=1 they fail.
set -eu
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- dev
log=$(mktemp)
trap 'rm -f "$log"; scripts/wine.sh --stop' EXIT
for preset in "$@"; do
    echo "== preset $preset"
    case $preset in
        aarch64) scripts/setup.sh test aarch64 ;;
        windows) scripts/setup.sh windows ;;
        *) scripts/setup.sh test ;;
    esac
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$(nproc)"
done
