#!/bin/sh
# Runs clang-tidy over the sources of the program.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh test
cmake --preset clang >/dev/null
git ls-files -- '*.cpp' | grep -vE '^(tests|bench|fuzz|examples)/' |
    xargs -P 2 -n 4 clang-tidy -p build/clang --quiet
