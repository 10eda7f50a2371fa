#!/bin/sh
# Builds the packages of the build tree $2 with the cpack $1, installs the Debian package into an
# empty root and uses the installed files.
set -eu
cpack=$1 build=$2
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }

"$cpack" --config "$build/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1 ||
    { cat "$work/log"; exit 1; }
deb=$(echo "$work"/*.deb)
dpkg-deb -I "$deb"
! dpkg-deb -f "$deb" Depends Pre-Depends Recommends | grep . || fail "the package has dependencies"

# The package database of the root is empty, so dpkg refuses a package with dependencies.
installed=$work/root
mkdir -p "$installed/var/lib/dpkg/updates" "$installed/var/lib/dpkg/info"
: >"$installed/var/lib/dpkg/status"
if [ "$(id -u)" = 0 ]; then
    dpkg --root="$installed" --log=/dev/null -i "$deb"
else
    dpkg-deb -x "$deb" "$installed"
fi

# The package must contain the user's files of the source tree, unchanged.
same() { cmp "$root/$1" "$installed/usr/$2"; }
cd "$root"
same docs/cmake.md share/doc/cmdtessaron/cmake.md
same CHANGELOG.md share/doc/cmdtessaron/CHANGELOG.md
[ ! -e docs/CmdTessaronManual.txt ] ||
    same docs/CmdTessaronManual.txt share/doc/cmdtessaron/CmdTessaronManual.txt
[ ! -e docs/CmdTessaron.1 ] || same docs/CmdTessaron.1 share/man/man1/CmdTessaron.1
same docs/tessaron.1 share/man/man1/tessaron.1
for file in $(git ls-files examples); do same "$file" "share/doc/cmdtessaron/$file"; done
for file in $(git ls-files editors); do same "$file" "share/cmdtessaron/$file"; done
while read -r file target; do
    cmp "completions/$file" "$installed/usr/share/$target"
done <<END
tessaron.bash bash-completion/completions/tessaron
tessaron.fish fish/vendor_completions.d/tessaron.fish
_tessaron zsh/site-functions/_tessaron
_tessaron zsh/vendor-completions/_tessaron
END
unsafe=$(find "$installed/usr" ! -user root -o -perm /022 ! -type l)
[ -z "$unsafe" ] || [ "$(id -u)" != 0 ] || fail "other users may write: $unsafe"

# The self-test shows that the program needs no other file. It runs in a chroot if that is possible.
program=$installed/usr/bin/CmdTessaron
if [ "$(id -u)" = 0 ] && chroot / true 2>/dev/null; then
    mkdir -p "$installed/KvTessaron/__sample_files"
    chroot "$installed" /usr/bin/CmdTessaron test >"$work/out"
else
    mkdir -p "$work/KvTessaron/__sample_files" "$work/run"
    (cd "$work/run" && "$program" test >"$work/out")
fi
grep -q '^ *asserts  *1  *1  *1  *0 ' "$work/out" ||
    { cat "$work/out"; fail "the self-test failed"; }

# The program tessaron needs no shared library.
tessaron=$installed/usr/bin/tessaron
! readelf -d "$tessaron" | grep NEEDED || fail "tessaron needs shared libraries"
cp "$root"/examples/firmware/* "$work"
(cd "$work" && "$tessaron" run release.tsn inFile=firmware.hex outFile=release.hex >/dev/null &&
    cmp release.hex expected.hex) || fail "tessaron does not run"

# A firmware project finds the installed package.
cmake -S "$installed/usr/share/doc/cmdtessaron/examples/cmake-firmware" -B "$work/firmware" \
      -DCMAKE_PREFIX_PATH="$installed/usr" >"$work/log"
cmake --build "$work/firmware" | grep 'CRC-32 in stored order' || fail "the example was not built"

# The archive holds the same files.
mkdir "$work/unpacked"
tar -xzf "$work"/*.tar.gz -C "$work/unpacked"
diff -r "$installed/usr" "$work"/unpacked/*
