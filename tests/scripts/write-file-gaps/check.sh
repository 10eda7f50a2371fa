# What srec_cat finds in the files, and what it makes of the same bytes at the same places.
command -v srec_cat >/dev/null || exit 0
srec_cat -generate 0xFFF4 0xFFF5 -constant 0x11 -generate 0xFFF5 0xFFF6 -constant 0x22 \
    -generate 0xFFFF 0x10000 -constant 0x11 -generate 0x10000 0x10001 -constant 0x22 \
    -generate 0x10001 0x10002 -constant 0x11 -generate 0x1000F 0x10010 -constant 0x11 \
    -o wanted.srec
for file in 'gaps.hex -intel' 'segment.hex -intel' gaps.srec; do
    srec_cmp $file wanted.srec 2>/dev/null || echo "$file"
done
# The bytes of the last address by objcopy; srec_cat never ends at the top of the address space.
printf 3 >far.bin
objcopy -I binary -O srec --change-addresses 0xFFFFFFFF far.bin wanted.srec
[ "$(grep ^S3 far.srec)" = "$(tr -d '\r' <wanted.srec | grep ^S3)" ] || echo far.srec
