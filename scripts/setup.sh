#!/bin/sh
# Installs the Debian packages that a purpose needs, if they are not there yet.
# For aarch64 and windows, it fetches the source of CUnit as well.
#   scripts/setup.sh build|test|demo|bench|package|aarch64|windows ...
set -eu

build="g++ cmake ninja-build libboost-dev libcunit1-dev libcli11-dev nlohmann-json3-dev"
test="$build clang clang-format clang-tidy git libgtest-dev python3 valgrind gcovr srecord binutils dfu-util
      gcc-arm-none-eabi
      openssl xxd libclang-rt-14-dev libdigest-crc-perl make nodejs npm groff-base mandoc vim strace
      zsh fish python3-jsonschema chromium dpkg-dev lintian"
demo="$build python3 srecord"
bench="$build libbenchmark-dev libgcrypt20-dev libcrypto++-dev libssl-dev zlib1g-dev python3
       python3-intelhex srecord binutils openssl"
libcxx="$build clang-16 libc++-16-dev libc++abi-16-dev python3"
cross="$build git googletest python3 python3-jsonschema srecord xxd"
aarch64="$cross g++-aarch64-linux-gnu libc6-dev-arm64-cross qemu-user-static dpkg-dev lintian"
windows="$cross g++-mingw-w64-x86-64-posix wine64 nsis file"
package="$aarch64 $windows"

wanted=""
sources=no
for purpose in "$@"; do
    case $purpose in
        build) wanted="$wanted $build" ;;
        test) wanted="$wanted $test" ;;
        demo) wanted="$wanted $demo" ;;
        bench) wanted="$wanted $bench" ;;
        libcxx) wanted="$wanted $libcxx" ;;
        package) wanted="$wanted $package"; sources=yes ;;
        aarch64) wanted="$wanted $aarch64"; sources=yes ;;
        windows) wanted="$wanted $windows"; sources=yes ;;
        *) echo "setup.sh: what is '$purpose'?" >&2; exit 2 ;;
    esac
done

has() {
    # A tool that came another way serves as well; the machine's own npm may not be Debian's.
    case $1 in
        nodejs) command -v node >/dev/null && return ;;
        npm) command -v npm >/dev/null && return ;;
    esac
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q 'ok installed'
}

missing=""
for package in $wanted; do
    has "$package" || missing="$missing $package"
done
install() {
    root=""
    if [ "$(id -u)" != 0 ]; then
        root=sudo
        if ! command -v sudo >/dev/null; then
            echo "setup.sh: you are not root and there is no sudo; ask an administrator to run:" \
                "apt-get install --no-install-recommends$missing" >&2
            exit 1
        fi
    fi
    echo "installing:$missing"
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    export DEBIAN_FRONTEND=noninteractive
    if ! { $root apt-get update && $root apt-get install -y --no-install-recommends $missing; } \
        >"$log" 2>&1; then
        cat "$log"
        exit 1
    fi
}
[ -z "$missing" ] || install
[ $sources = no ] || "$(dirname "$0")/fetch-sources.sh"
