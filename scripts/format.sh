#!/bin/sh
# Formats every C++ file; with --check only says which ones are not formatted.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh format
files=$(git ls-files -co --exclude-standard -- '*.cpp' '*.hpp')
if [ "${1:-}" = --check ]; then
    echo "$files" | xargs clang-format --dry-run -Werror
    echo "format: every C++ file is as .clang-format wants it"
else
    echo "$files" | xargs clang-format -i
fi
