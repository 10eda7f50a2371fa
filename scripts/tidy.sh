#!/bin/sh
# Runs clang-tidy over the sources of the program, those for Windows left out: it has no headers for
# them.
#   scripts/tidy.sh              all of them
#   scripts/tidy.sh --changed    those changed since the last tag, or in the last 10 commits if there
#                                is no tag, and those beside a changed header
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh tidy
files=$(git ls-files -co --exclude-standard -- '*.cpp' |
    grep -vE '^(tests|bench|fuzz|examples)/|Windows\.cpp$')
if [ "${1:-}" = --changed ]; then
    # A shallow clone ends earlier; its first commit is then what the files are compared with.
    base=$(git describe --tags --abbrev=0 2>/dev/null ||
        git rev-list --first-parent --max-count=11 HEAD | tail -n 1)
    changed=$(git diff --name-only "$base" -- '*.cpp' '*.hpp' | sed 's/\.[ch]pp$//')
    files=$(for file in $files; do
        ! echo "$changed" | grep -qxF "${file%.cpp}" || echo "$file"
    done)
    echo "tidy: $(echo "$files" | grep -c .) sources changed since $(git log -1 --format=%h "$base")"
fi
[ -n "$files" ] || exit 0
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset clang -DCMAKE_UNITY_BUILD=OFF >"$log" 2>&1 || { cat "$log"; exit 1; }
# Findings go to standard output, counts of what was suppressed to the other one.
if ! echo "$files" | xargs -P "$(nproc)" -n 1 clang-tidy -p build/clang --quiet 2>"$log"; then
    cat "$log" >&2
    exit 1
fi
echo "tidy: clang-tidy has nothing to say"
