#!/bin/sh
# Fetches the sources of Botan and CUnit into build/sources/ from the Debian mirror of this machine, with
# Debian's corrections: no package has the libraries for the targets of cross compilers. The machine's
# package lists need no deb-src lines and remain as they are.
set -eu
cd "$(dirname "$0")/.."
sources=$PWD/build/sources
missing=""
[ -e "$sources/cunit/VERSION" ] || missing="$missing cunit"
[ -e "$sources/botan/configure.py" ] || missing="$missing botan"
[ -n "$missing" ] || exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$sources"
# The mirror and the release of the packages that the machine installs.
keys=/usr/share/keyrings/debian-archive-keyring.gpg
apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' 'Component: main' \
    'Origin: Debian' | grep -vE -e '-(updates|security|backports)$' | sort -u |
    sed "s|.*|deb-src [signed-by=$keys] & main|" >"$work/sources.list"
# A machine whose package lists were removed, as in images of containers, does not know its release.
[ -s "$work/sources.list" ] || (
    . /etc/os-release
    echo "deb-src [signed-by=$keys] http://deb.debian.org/debian $VERSION_CODENAME main"
) >"$work/sources.list"
apt() {
    apt-get -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" \
        -o APT::Sandbox::User="$(id -un)" "$@"
}
echo "fetching the sources of$missing"
cd "$work"
if ! { apt update && apt source --only-source --download-only $missing; } >log 2>&1; then
    cat log >&2
    exit 1
fi
for name in $missing; do
    mkdir unpacked
    tar -xf "$name"_*.orig.tar.* -C unpacked --strip-components 1
    tar -xf "$name"_*.debian.tar.* -C unpacked
    for patch in $(sed 's/#.*//' unpacked/debian/patches/series); do
        patch -d unpacked -p1 --quiet <"unpacked/debian/patches/$patch"
    done
    rm -rf "$sources/$name"
    mv unpacked "$sources/$name"
done
