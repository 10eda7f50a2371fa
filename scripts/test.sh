#!/bin/sh
# Builds everything and runs all tests, after setting up what that needs.
#   scripts/test.sh [preset ...]     dev (default), asan, debug, clang, coverage
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh test
[ $# -gt 0 ] || set -- dev
for preset in "$@"; do
    echo "== preset $preset"
    cmake --preset "$preset" >build-log.tmp || { cat build-log.tmp; rm build-log.tmp; exit 1; }
    rm build-log.tmp
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel 2
done
