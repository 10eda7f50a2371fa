#!/bin/sh
# Says which lines of the program the tests reach, and fails below 92 % of them.
#   scripts/coverage.sh [gcovr option ...]     as in: --html-details build/coverage/report.html
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh coverage
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset coverage >"$log" 2>&1 || { cat "$log"; exit 1; }
# Figures of an older build would be counted as well.
find build/coverage -name '*.gcda' -delete
if ! cmake --build --preset coverage >"$log" 2>&1; then
    cat "$log"
    exit 1
fi
# A text of such length takes minutes without optimisation and reaches no line of its own.
if ! ctest --preset coverage --parallel "$(nproc)" \
    --exclude-regex script.variable-doubling >"$log" 2>&1; then
    cat "$log"
    exit 1
fi
gcovr --root . --object-directory build/coverage --exclude 'tests/|bench/|fuzz/|examples/' \
    --fail-under-line 92 --sort-percentage --print-summary "$@" build/coverage
