#!/bin/sh
# Fetches the source of CUnit, of which Debian has no package for the targets of cross compilers,
# from the Debian mirror that the machine uses, and unpacks it in build/sources/cunit.
# It needs dpkg-dev. The machine's package lists need no deb-src lines and remain as they are.
set -eu
cd "$(dirname "$0")/.."
target=build/sources/cunit
[ ! -e $target/CUnit/Headers/CUnit.h.in ] || exit 0

state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT
chmod 755 "$state"
mkdir -p "$state/lists/partial" "$state/cache/archives/partial" "$state/source" build/sources
mirror=$(apt-get indextargets --format '$(CODENAME) $(SITE)' 'Created-By: Packages' |
    sed -n 's/^bookworm //p' | head -n 1)
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]" \
    "${mirror:-http://deb.debian.org/debian} bookworm main" >"$state/sources.list"
apt() {
    apt-get -o Dir::Etc::sourcelist="$state/sources.list" -o Dir::Etc::sourceparts=- \
        -o Dir::State::lists="$state/lists" -o Dir::Cache="$state/cache" "$@"
}
echo "fetching the source of cunit"
root=$PWD
if ! { apt update && cd "$state/source" && apt source cunit=2.1-3-dfsg-2.6; } >"$state/log" 2>&1; then
    cat "$state/log" >&2
    exit 1
fi
cd "$root"
rm -rf $target
mv "$state"/source/cunit-*/ $target
