#!/bin/sh
# Prints reference_output.hex: what sample_script.tsn makes of the Intel HEX file $1, worked out by
# tools that share no code with this project.
set -eu
input=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
start=0x08000000 digest=0x0801FFEC

# The firmware and, where it is silent up to the digest, the filler.
srec_cat '(' "$input" -intel -generate $start $digest -repeat-data 0x00 0xA0 0xF0 0xF7 \
             -exclude -within "$input" -intel ')' -offset -$start -o "$work/image" -binary
openssl md5 -binary "$work/image" >"$work/digest"
cat "$work/digest" >>"$work/image"

# CRC-32 with polynomial 0x04C11DB7, initial value 0, no reflection, no final xor: once by Perl's
# Digest::CRC, once by zlib, whose CRC is the mirror image.
perl -MDigest::CRC -e '
    open my $file, "<:raw", $ARGV[0] or die;
    my $crc = Digest::CRC->new(width => 32, poly => 0x04C11DB7, init => 0, xorout => 0,
                               refin => 0, refout => 0);
    print pack "N", $crc->addfile($file)->digest' "$work/image" >"$work/crc"
python3 -c '
import sys, zlib
mirror = bytes(int("{:08b}".format(n)[::-1], 2) for n in range(256))
data = open(sys.argv[1], "rb").read().translate(mirror)
crc = (zlib.crc32(data, 0xFFFFFFFF) ^ 0xFFFFFFFF).to_bytes(4, "little")
sys.stdout.buffer.write(crc.translate(mirror))' "$work/image" | cmp - "$work/crc"
cat "$work/crc" >>"$work/image"

srec_cat "$work/image" -binary -offset $start -o - -intel -line-length=44
