#!/bin/sh
# Makes the packages in build/packages, in place of those that are there: .deb and .tar.gz for x86-64
# and for ARM, .zip and an installer for Windows, and .tar.gz of the source of the last commit.
#   scripts/package.sh [source|preset ...]     source, release, aarch64 and windows without one
# All dates in them are that of the last commit or, save those of the source, SOURCE_DATE_EPOCH, so the
# packages of a commit are the same wherever they are made with the same compilers.
set -eu
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- source release aarch64 windows
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(scripts/commit-date.sh)}
export SOURCE_DATE_EPOCH
umask 022
log=$(mktemp)
trap 'rm -f "$log"' EXIT
rm -rf build/packages
mkdir -p build/packages

# The archive has the files of the commit and, by .gitattributes, its name and time.
package_source() {
    if [ ! -e .git ]; then
        echo "package.sh: the source is packed from a checkout, which this is not" >&2
        exit 1
    fi
    version=$(sed -n 's/^project(Tessaron VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
    name=cmdtessaron-$version
    git -c tar.umask=0022 archive --prefix="$name/" HEAD >"build/packages/$name.tar"
    gzip -9n "build/packages/$name.tar"
}

for preset in "$@"; do
    echo "== packages of preset $preset"
    case $preset in
        source) package_source; continue ;;
        aarch64 | windows) scripts/setup.sh "$preset" ;;
        *) scripts/setup.sh package ;;
    esac
    # Without the tests, a build makes what is packaged and nothing else.
    cmake --preset "$preset" -DTESSARON_TESTS=OFF >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset"
    rm -rf "build/$preset/packages"
    (cd "build/$preset" && cpack) >"$log" 2>&1 || { cat "$log"; exit 1; }
    find "build/$preset/packages" -maxdepth 1 -type f -exec cp {} build/packages \;
done
cd build/packages
sha256sum *
