#!/bin/sh
# Runs scripts to their end on a machine that has nothing: a chroot with the smallest Debian, into which
# the last commit is cloned. Needs root. It takes a while, so it is run by hand.
#   scripts/fresh.sh RELEASE [SCRIPT ...]     RELEASE is bookworm or trixie; demo and test without a SCRIPT
# The chroot is build/fresh/RELEASE, or RELEASE in the folder TESSARON_FRESH. It is removed in the end
# and stays if a script fails. CMAKE_BUILD_PARALLEL_LEVEL limits the jobs of the builds.
set -eu
cd "$(dirname "$0")/.."
release=${1:?which release of Debian? bookworm or trixie}
shift
[ $# -gt 0 ] || set -- demo test
if [ "$(id -u)" != 0 ]; then
    echo "fresh.sh: only root can make a chroot" >&2
    exit 1
fi
scripts/setup.sh fresh
mkdir -p "${TESSARON_FRESH:-build/fresh}"
root=$(cd "${TESSARON_FRESH:-build/fresh}" && pwd)/$release
# Nothing below another mount is removed, should somebody have mounted anything there.
rm -rf --one-file-system "$root"

# The mirror from which this machine installs its packages; without one, debootstrap has its own.
mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' \
    'Component: main' 'Origin: Debian' | grep -vE -e '-(updates|security|backports)$' |
    sed -n '1s/ .*//p')
echo "== a bare machine: $release in $root"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
debootstrap --variant=minbase "$release" "$root" $mirror >"$log" 2>&1 || { cat "$log"; exit 1; }
cp /etc/resolv.conf /etc/hosts "$root/etc/"
apt-config dump Acquire::http >"$root/etc/apt/apt.conf.d/90machine"
apt-config dump Acquire::https >>"$root/etc/apt/apt.conf.d/90machine"
git clone -q --depth 1 "file://$PWD" "$root/root/tessaron"

# The mounts are those of a namespace: they end with its last process, whatever happens. The environment
# is that of a login, with the proxies by which this machine reaches the mirror.
for script in "$@"; do
    echo "== scripts/$script.sh on $release"
    unshare --mount sh -euc '
        mount -t proc proc "$1/proc"
        mount -t devpts -o newinstance,ptmxmode=0666 devpts "$1/dev/pts"
        mount -t tmpfs tmpfs "$1/dev/shm"
        exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
            TERM="${TERM:-dumb}" ${http_proxy:+http_proxy="$http_proxy"} \
            ${https_proxy:+https_proxy="$https_proxy"} \
            ${CMAKE_BUILD_PARALLEL_LEVEL:+CMAKE_BUILD_PARALLEL_LEVEL="$CMAKE_BUILD_PARALLEL_LEVEL"} \
            "/root/tessaron/scripts/$2.sh"' sh "$root" "$script"
done
rm -rf --one-file-system "$root"
echo "== all of it ran to the end on $release"
