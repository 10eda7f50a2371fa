"""Checks the copies byte by byte: two segments of the template change and nothing else."""
import sys

TEMPLATE = bytearray(open("firmware.elf", "rb").read())
FILLED = {0x8000 + i: 0xEE for i in range(0x44)}
# The pattern begins anew in each area.
WRITTEN = {0x8002: 1, 0x8003: 2, 0x8004: 3, 0x8005: 4, 0x8006: 5, 0x802B: 1, 0x8040: 1, 0x8041: 2}
OVER = {0x8004: 0xA0, 0x8005: 0xA1, 0x8006: 0xA2, 0x8007: 0xA3}


def check(name, *images):
    wanted = bytearray(TEMPLATE)
    for image in images:
        for address, byte in image.items():
            if 0x8000 <= address < 0x802C:
                wanted[0x100 + address - 0x8000] = byte
            if 0x8040 <= address < 0x8044:
                wanted[0x200 + address - 0x8040] = byte
    if open(name, "rb").read() != wanted:
        sys.exit("%s is not as expected" % name)


check("same.elf")
check("filled.elf", FILLED, WRITTEN)
check("gaps.elf", WRITTEN)
check("last.elf", FILLED, WRITTEN, OVER)
check("first.elf", OVER, WRITTEN)
check("whole.elf")
check("place.elf", OVER)
