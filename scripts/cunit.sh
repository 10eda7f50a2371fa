#!/bin/sh
# Fetches the sources of CUnit into build/third-party/cunit, from the Debian mirror of this machine:
# no package has it for other targets than Debian's own. The machine's lists of sources stay as they
# are.
set -eu
cd "$(dirname "$0")/.."
folder=$PWD/build/third-party
[ ! -e "$folder/cunit/VERSION" ] || exit 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The mirror and the release of the packages that the machine installs.
keys=/usr/share/keyrings/debian-archive-keyring.gpg
apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' 'Component: main' \
    'Origin: Debian' | grep -vE -e '-(updates|security|backports)$' | sort -u |
    sed "s|.*|deb-src [signed-by=$keys] & main|" >"$work/sources.list"
mkdir -p "$work/lists/partial" "$work/cache/archives/partial"
fetch() {
    apt-get -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" \
        -o APT::Sandbox::User="$(id -un)" "$@"
}
cd "$work"
if ! { fetch update && fetch source --only-source --download-only cunit; } >log 2>&1; then
    cat log >&2
    exit 1
fi
mkdir -p unpacked "$folder"
tar -xf cunit_*.orig.tar.* -C unpacked --strip-components 1
rm -rf "$folder/cunit"
mv unpacked "$folder/cunit"
