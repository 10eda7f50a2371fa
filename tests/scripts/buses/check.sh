# What srec_cat makes of the same file.
command -v srec_cat >/dev/null || exit 0
same() {
    file=$1
    shift
    srec_cat "$@" -o wanted.srec 2>/dev/null
    srec_cmp "$file" -intel wanted.srec 2>/dev/null || echo "$file"
}
same even.hex rom.hex -intel -split 2 0
same odd.hex rom.hex -intel -split 2 1
srec_cat rom.hex -intel -split 3 2 -o third.srec
first=$(srec_info third.srec 2>/dev/null | sed -n 's/^Data: *\([0-9A-F]*\) -.*/\1/p')
same third.hex third.srec -offset -0x$first
same high.hex rom.hex -intel -byte-swap 2 -split 8 6 2
same cut.hex rom.hex -intel -crop 0x08001248 0x08001268 -split 8 0 4
same two.hex rom.hex -intel -byte-swap 2
same four.hex rom.hex -intel -byte-swap 4
same eight.hex rom.hex -intel -byte-swap 8
same back.hex rom.hex -intel
same part.hex odd.hex -intel -crop 0x04000928 0x04000938 -unsplit 6 0 2 \
    even.hex -intel -crop 0x04000928 0x04000938 -unsplit 6 2 2 \
    odd.hex -intel -crop 0x04000928 0x04000938 -unsplit 6 4 2
