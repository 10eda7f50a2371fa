# Holes, but for a byte on each side of the last address that counts.
truncate -s 4294967306 huge.bin
printf 'A' | dd of=huge.bin bs=1 seek=4294967294 conv=notrunc status=none
printf 'B' | dd of=huge.bin bs=1 seek=4294967295 conv=notrunc status=none
