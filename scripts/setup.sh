#!/bin/sh
# Installs the Debian packages that a purpose needs, if they are not there yet: on Debian 12 and 13,
# which have all of them, and on what is made from them, less those that it lacks. Elsewhere it names
# them. For aarch64 and windows, it fetches the sources of Botan and CUnit as well.
#   scripts/setup.sh build|demo|test|test-all|bench|package|aarch64|windows|... ...
# test has the tools of nearly all tests; test-all adds those of some hundred MB each, which few tests
# need: a browser, a cross compiler, npm, and what makes HTML of the book.
set -eu

build="g++ cmake ninja-build libboost-dev libbotan-2-dev libcunit1-dev libcli11-dev nlohmann-json3-dev"
demo="$build python3 srecord"
test="$build git libgtest-dev python3 python3-jsonschema srecord binutils openssl xxd make
      libdigest-crc-perl dfu-util groff-base mandoc vim strace zsh fish dpkg-dev"
book="mkdocs mkdocs-material"
test_all="$test $book gcc-arm-none-eabi nodejs npm neovim chromium lintian"
clang="clang libclang-rt-dev"
format="git clang-format"
tidy="$build git clang clang-tidy libgtest-dev python3"
valgrind="$build python3 valgrind"
coverage="$test_all gcovr"
bench="$build libbenchmark-dev libgcrypt20-dev libcrypto++-dev libssl-dev zlib1g-dev python3
       python3-intelhex srecord binutils openssl"
libcxx="$build clang-16 libc++-16-dev libc++abi-16-dev python3"
package="$build $book python3 dpkg-dev"
cross="$build $book git patch googletest python3 python3-jsonschema srecord openssl xxd"
aarch64="$cross g++-aarch64-linux-gnu libc6-dev-arm64-cross qemu-user-static dpkg-dev lintian"
windows="$cross g++-mingw-w64-x86-64-posix wine64 nsis file"

wanted=""
sources=no
for purpose in "$@"; do
    case $purpose in
        build) wanted="$wanted $build" ;;
        demo) wanted="$wanted $demo" ;;
        test) wanted="$wanted $test" ;;
        test-all) wanted="$wanted $test_all" ;;
        clang) wanted="$wanted $clang" ;;
        format) wanted="$wanted $format" ;;
        tidy) wanted="$wanted $tidy" ;;
        valgrind) wanted="$wanted $valgrind" ;;
        coverage) wanted="$wanted $coverage" ;;
        fuzz) wanted="$wanted $build $clang python3" ;;
        fresh) wanted="$wanted git debootstrap util-linux" ;;
        bench) wanted="$wanted $bench" ;;
        libcxx) wanted="$wanted $libcxx" ;;
        package) wanted="$wanted $package" ;;
        container) wanted="$wanted $build git" ;;
        aarch64) wanted="$wanted $aarch64"; sources=yes ;;
        windows) wanted="$wanted $windows"; sources=yes ;;
        *) echo "setup.sh: what is '$purpose'?" >&2; exit 2 ;;
    esac
done

has() {
    # A tool that came another way serves as well: any C++ compiler, and npm, which may not be Debian's.
    case $1 in
        g++) command -v "${CXX:-c++}" >/dev/null || command -v clang++ >/dev/null && return ;;
        nodejs) command -v node >/dev/null && return ;;
        cmake | git | make | npm | python3) command -v "$1" >/dev/null && return ;;
        ninja-build) command -v ninja >/dev/null && return ;;
    esac
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q 'ok installed'
}

# The packages among the arguments for which the test `$1` fails.
lacking() {
    is_there=$1
    shift
    for package in "$@"; do
        $is_there "$package" || printf ' %s' "$package"
    done
}

can_be_installed() { apt-cache show --no-all-versions "$1" >/dev/null 2>&1; }

install() {
    root=""
    if [ "$(id -u)" != 0 ]; then
        root=sudo
        if ! command -v sudo >/dev/null; then
            echo "setup.sh: going on with what is there; you are not root and there is no sudo, so" \
                "ask an administrator to run: apt-get install --no-install-recommends$missing" >&2
            return 0
        fi
    fi
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    export DEBIAN_FRONTEND=noninteractive
    $root apt-get update >"$log" 2>&1 || { cat "$log"; exit 1; }
    absent=$(lacking can_be_installed $missing)
    if [ -n "$absent" ]; then
        echo "setup.sh: going on without what this system does not have, as Debian 12 and 13 name" \
            "it:$absent" >&2
    fi
    present=""
    for package in $missing; do
        case "$absent " in *" $package "*) ;; *) present="$present $package" ;; esac
    done
    [ -n "$present" ] || return 0
    echo "installing:$present"
    $root apt-get install -y --no-install-recommends $present >"$log" 2>&1 || { cat "$log"; exit 1; }
}

if command -v apt-get >/dev/null; then
    missing=$(lacking has $(printf '%s\n' $wanted | sort -u))
    [ -z "$missing" ] || install
    [ $sources = no ] || "$(dirname "$0")/fetch-sources.sh"
else
    echo "setup.sh: going on with what is there, since there is no apt-get; what is needed, as Debian" \
        "names it:" \
        $(printf '%s\n' $wanted | sort -u) >&2
fi
