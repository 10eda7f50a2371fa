#!/bin/sh
# Runs the examples with the programs $1 (CmdTessaron) and $2 (tessaron) in a copy of their folder and
# checks them with other tools.
set -eu
program=$1
strict=$2
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/examples/." "$work"

cd "$work/firmware"
python3 make_firmware.py | cmp - firmware.hex
"$program" inFile=firmware.hex outFile=release.hex release.tsn >release.out
cmp release.hex expected.hex
sh check.sh release.hex
grep -q 'CRC-32 in stored order 0xA3487E35' release.out

# The blocks of the README are a script, a run of it and a run with a late area.
block() { awk -v n="$1" '/^```/ { ++fences; next } fences == 2 * n - 1' "$root/README.md"; }
block 1 >crc.tsn
{ "$strict" run crc.tsn && tail -n 2 release.hex; } >crc.out
block 2 | sed 1d | cmp - crc.out
sed 's/endOf(@Flash) - 4/endOf(@Flash) - 2/' crc.tsn >late.tsn
! "$strict" run late.tsn 2>late.err
block 3 | sed 1d | cmp - late.err

# srecord fills the gaps before it lays the settings, which are above all data, over them.
cd "$work/variants"
"$strict" run release.tsn
variant() {
    srec_cat '(' ../firmware/firmware.hex -intel -fill 0xFF 0x08000000 0x0800F000 \
                 -generate 0x0800F000 0x0800F002 -constant-l-e "$2" 2 \
                 -generate 0x0800F002 0x0800F004 -constant-l-e "$3" 2 \
                 -generate 0x0800F004 0x0800FFFC -constant 0xFF ')' \
             -crc32-l-e 0x0800FFFC -o expected.hex -intel
    srec_cmp expected.hex -intel "release-$1.hex" -intel
}
variant eu 1 868
variant us 2 915
variant jp 3 920

cd "$work/all-formats"
"$program" inFile=../firmware/firmware.hex all-formats.tsn >run.out
! grep 'Operation aborted' run.out
srec_cat ../firmware/firmware.hex -intel -fill 0xFF -over ../firmware/firmware.hex -intel \
         -o expected.hex -intel -disable=exec-start-address
srec_cmp expected.hex -intel flash.hex -intel
# The formats differ in the execution address that they store, so only the bytes are compared.
srec_cat flash.s37 -motorola -offset -0x08000000 -o s37.bin -binary
cmp s37.bin flash.bin
srec_cat expected.hex -intel -offset -0x08000000 -o expected.bin -binary
cmp expected.bin flash.bin
srec_cat flash-low.hex -intel -o low.bin -binary
cmp expected.bin low.bin
objcopy -I ihex -O binary flash.hex objcopy.bin
cmp objcopy.bin flash.bin
objcopy -I srec -O binary flash.s37 objcopy.bin
cmp objcopy.bin flash.bin
# The byte directives of the assembler format hold the same bytes.
sed -n 's/^\t\.byte //p' flash.inc | tr -d ' \n' | sed 's/0x/,/g;s/,,*/ /g' | tr ' ' '\n' |
    grep . | xxd -r -p | cmp - flash.bin
crc=$(python3 -c "import zlib;print(zlib.crc32(open('flash.bin','rb').read()).to_bytes(4,'little').hex().upper())")
grep -q -- "--file flash.bin --crc 0x$crc" run.out

cd "$work/digest"
"$program" inFile=../firmware/firmware.hex outFile=flash.bin digest.tsn >run.out
digest=$(head -c 65504 flash.bin | sha256sum | cut -d ' ' -f 1)
test "$(tail -c 32 flash.bin | xxd -p -c 32)" = "$digest"
test "$(head -c 65504 flash.bin | openssl dgst -sha256 -r | cut -d ' ' -f 1)" = "$digest"
grep -qi "  HashValue: $digest" run.out
# The bytes below the digest are those of the firmware with its gaps filled.
srec_cat ../firmware/firmware.hex -intel -crop 0x08000000 0x0800FFE0 \
         -fill 0xFF 0x08000000 0x0800FFE0 -offset -0x08000000 -o expected.bin -binary
head -c 65504 flash.bin | cmp - expected.bin
