#!/bin/sh
# Runs the script cases under valgrind: no error of memory, no definite leak.
#   scripts/valgrind.sh [case ...]     folders of tests/scripts; all of them without one
# Left out are cases that limit the address space, since valgrind needs more, and variable-doubling
# and variable-relabelling, whose long texts take minutes.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh valgrind
[ $# -gt 0 ] || set -- $(ls -dr tests/scripts/*/ | grep -vE 'variable-(doubling|relabelling)')
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake --preset dev && cmake --build --preset dev --target CmdTessaron_watched; } >"$log" 2>&1; then
    cat "$log"
    exit 1
fi
watch="valgrind -q --leak-check=full --errors-for-leak-kinds=definite --error-exitcode=99"
watched="$watch '$PWD/build/dev/tests/scripts/CmdTessaron_watched'"
# A leak on purpose: a run that does not find it would find nothing.
cat >build/dev/leak.cpp <<'LEAK'
#include <cstddef>
int main() {
    static_cast<void>(*new volatile int[3]);
}
LEAK
"${CXX:-c++}" -o build/dev/leak build/dev/leak.cpp
if $watch build/dev/leak >/dev/null 2>&1; then
    echo "valgrind.sh: valgrind finds no leak here" >&2
    exit 1
fi
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 1 \
    tests/scripts/run_case.py --no-limits --timeout 600 "$watched"
echo "valgrind: $# cases"
