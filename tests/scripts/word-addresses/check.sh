# What was read is written as it was, but for lines that end in another way.
[ "$(tr -d '\r' <again.hex)" = "$(cat c28x.hex)" ] || echo again.hex
cmp s.bin code.bin
cmp t.bin code.bin
# The digits of the file are the bytes.
[ "$(sed -n 's/^:..\(....\)00\(.*\)..$/\2/p' code.hex | tr -d '\n')" = \
    "$(od -An -v -tx1 code.bin | tr -d ' \n' | tr a-f A-F)" ] || echo code.bin
# readelf says that the bytes of the second segment begin at 0x7C of the file.
cmp -l c28x.elf dsp.elf | awk '$1 != 125 && $1 != 126 { print }'
[ "$(od -An -tx1 -j 124 -N 2 dsp.elf)" = " ab cd" ] || echo dsp.elf
command -v srec_cat >/dev/null || exit 0
# The addresses are those that srec_cat gives words.
srec_cat code.bin -binary -offset 0x15960 -o code.vmem -vmem 16 2>/dev/null
address() { sed -n 's/^@0*\([0-9A-F]*\).*/\1/p' code.vmem | head -n 1; }
[ "$(sed -n 's/^:..\(....\)00.*/\1/p' code.hex | head -n 1)" = "$(address)" ] || echo code.hex
[ "$(sed -n 's/^S1..\(....\).*/\1/p' code.s28 | head -n 1)" = "$(address)" ] || echo code.s28
