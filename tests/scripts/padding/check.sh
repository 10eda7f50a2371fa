command -v srec_cat >/dev/null || exit 0
same() {
    file=$1 format=$2
    shift 2
    srec_cat "$@" -o wanted.srec 2>/dev/null
    srec_cmp "$file" $format wanted.srec 2>/dev/null || echo "$file"
}
same short.hex -intel rom.hex -intel -fill 0xFF 0x08001250 0x08001251 \
    -fill 0xFF 0x08001256 0x08001257 -fill 0xFF 0x080012A0 0x080012A1
same rows.hex -intel rom.hex -intel -fill 0xFF -within rom.hex -intel -range-pad 8
same both.hex -intel rom.hex -intel -fill 0xFF 0x08001240 0x08001280 \
    -fill 0xFF 0x08001290 0x080012C0
same none.hex -intel rom.hex -intel
same swapped.hex -intel rom.hex -intel -fill 0xFF -within rom.hex -intel -range-pad 4 -byte-swap 4
same cut.srec "" rom.hex -intel -crop 0x0800124A 0x0800126B -fill 0xFF 0x08001240 0x08001280
srec_cat cut.srec -offset -0x08001240 -o cut.wanted -binary 2>/dev/null
cmp cut.bin cut.wanted
