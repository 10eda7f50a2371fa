#!/bin/sh
# Makes the packages in build/packages, in place of those that are there: .deb and .tar.gz for x86-64
# and for ARM, .zip and an installer for Windows.
#   scripts/package.sh [preset ...]     release, aarch64 and windows without one
# All dates in them are that of the last commit, or SOURCE_DATE_EPOCH, so the packages of a commit are
# the same wherever they are made with the same compilers.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh package
[ $# -gt 0 ] || set -- release aarch64 windows
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
umask 022
log=$(mktemp)
trap 'rm -f "$log"' EXIT
rm -rf build/packages
mkdir -p build/packages
for preset in "$@"; do
    echo "== packages of preset $preset"
    # Without the tests, a build makes what is packaged and nothing else.
    cmake --preset "$preset" -DTESSARON_TESTS=OFF >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset"
    rm -rf "build/$preset/packages"
    (cd "build/$preset" && cpack) >"$log" 2>&1 || { cat "$log"; exit 1; }
    find "build/$preset/packages" -maxdepth 1 -type f -exec cp {} build/packages \;
done
cd build/packages
sha256sum *
