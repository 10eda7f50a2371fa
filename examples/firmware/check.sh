#!/bin/sh
# Prepares the same image with srecord, as Debian packages it, and compares the two files:
#   sh check.sh release.hex
set -eu
firmware="$(dirname "$0")/firmware.hex"
expected=$(mktemp)
trap 'rm -f "$expected"' EXIT
srec_cat '(' "$firmware" -intel -crop 0x08000000 0x0800FFFC \
             -generate 0x08000000 0x0800FFFC -repeat-data 0xFF 0xDE 0xAD 0x00 \
             -exclude -within "$firmware" -intel ')' \
         -crc32-l-e 0x0800FFFC -o "$expected" -intel
srec_cmp "$expected" -intel "$1" -intel
echo "srecord agrees: $(srec_info "$1" -intel | tail -n 1), CRC-32 and all"
