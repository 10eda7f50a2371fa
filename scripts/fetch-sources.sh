#!/bin/sh
# Fetches the source of CUnit into build/sources/cunit from the Debian mirror of this machine: no
# package has the library for the targets of cross compilers. The machine's package lists need no
# deb-src lines and remain as they are.
set -eu
cd "$(dirname "$0")/.."
target=$PWD/build/sources/cunit
[ ! -e "$target/VERSION" ] || exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$work/unpacked"
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
echo "fetching the source of cunit"
cd "$work"
if ! { apt update && apt source --only-source --download-only cunit; } >log 2>&1; then
    cat log >&2
    exit 1
fi
tar -xf cunit_*.orig.tar.* -C unpacked --strip-components 1
mkdir -p "${target%/*}"
rm -rf "$target"
mv unpacked "$target"
