#!/bin/sh
# Builds everything and runs all tests, after setting up what that needs.
#   scripts/test.sh [preset ...]     dev (default), asan, debug, clang, coverage, aarch64, windows
# Tests whose tools are missing are skipped, and the last lines name them with the reason. Those that
# need a browser, a cross compiler or npm are skipped unless scripts/setup.sh test-all was run.
# With TESSARON_REQUIRE_ALL=1, everything is set up, and a missing tool makes its tests fail.
set -eu
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- dev
tests=test
[ "${TESSARON_REQUIRE_ALL:-}" != 1 ] || tests=test-all
log=$(mktemp)
trap 'rm -f "$log"; scripts/wine.sh --stop' EXIT
for preset in "$@"; do
    echo "== preset $preset"
    case $preset in
        aarch64) scripts/setup.sh "$tests" aarch64 ;;
        asan) scripts/setup.sh "$tests" fuzz ;;
        clang) scripts/setup.sh "$tests" clang ;;
        windows) scripts/setup.sh windows ;;
        *) scripts/setup.sh "$tests" ;;
    esac
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset"
    results=$PWD/build/$preset/tests.xml
    passed=yes
    # One test more than processors, since many wait for a program or a file.
    ctest --preset "$preset" --parallel $(($(nproc) + 1)) --output-junit "$results" || passed=no
    python3 tests/skipped.py "$results"
    [ $passed = yes ]
done
